// The parts of the module, a subject each.
#pragma once

#include <pybind11/pybind11.h>

namespace bscan::python {

void BindDevice(pybind11::module_& module);
void BindChain(pybind11::module_& module);
void BindOpenOcd(pybind11::module_& module);

}  // namespace bscan::python
