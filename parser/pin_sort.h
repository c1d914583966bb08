// Bringing the pins of a package into their order.
#pragma once

#include <bscan/pin_name.h>

#include <vector>

namespace bscan::detail {

// Sorts by pin_smaller and leaves one of equal pins.
void SortPins(std::vector<PIN_NAME>& pins);

}  // namespace bscan::detail
