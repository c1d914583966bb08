// bscan._bscan: the library under the Python package, which gives it its form.

#include "module.h"

#include <bscan/version.h>

#include "problem.h"

PYBIND11_MODULE(_bscan, module) {
    module.doc() = "The library under the package bscan. Programs use the package.";
    module.attr("version") = bscan::Version();
    bscan::python::BindProblems();
    bscan::python::BindDevice(module);
    bscan::python::BindChain(module);
    bscan::python::BindOpenOcd(module);
}
