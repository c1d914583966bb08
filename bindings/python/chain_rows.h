// What pins of a chain show, as dictionaries.
#pragma once

#include <bscan/live_chain.h>

#include <pybind11/pybind11.h>

namespace bscan::python {

/// A pin's name in the chain, its package pin, direction and level.
pybind11::dict StateRow(const Chain& chain, const PinState& state);

}  // namespace bscan::python
