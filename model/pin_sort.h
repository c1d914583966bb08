// The order of the pins of a package: a pin's number is its place in it, counted from 1.
#pragma once

#include <bscan/pin_name.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Takes a designator such as AB12 apart: its letters and the value of its digits (the low 16 bits),
// wherever they stand. Other characters do not count.
PIN_NAME SplitDesignator(std::string_view designator);

// The pins of a package, each once.
struct SortedPins {
    // In the order of pin_smaller, letters before digits, without leading zeros.
    std::vector<std::string> designators;
    // For each pin that was handed in, in that order, where among the designators it is.
    std::vector<std::size_t> places;
};
SortedPins SortPins(const std::vector<PIN_NAME>& pins);

// The place among sorted designators of the one that is spelled like this, by binary search; their
// count when there is none.
std::size_t PlaceOfPin(const std::vector<std::string>& sorted, std::string_view designator);

}  // namespace bscan::detail
