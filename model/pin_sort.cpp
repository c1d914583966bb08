#include "model/pin_sort.h"

#include <bscan/pin_order.h>

#include "support/text_view.h"

#include <algorithm>
#include <numeric>

namespace bscan::detail {

PIN_NAME SplitDesignator(std::string_view designator) {
    PIN_NAME pin;
    std::string digits;
    for (const char c : designator) {
        if (IsLetter(c)) pin.letters.push_back(c);
        if (IsDigit(c)) digits.push_back(c);
    }
    pin.number = static_cast<unsigned short>(DecimalValue(digits));
    return pin;
}

SortedPins SortPins(const std::vector<PIN_NAME>& pins) {
    std::vector<std::size_t> order(pins.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return pin_smaller(pins[left], pins[right]);
    });
    SortedPins sorted;
    sorted.designators.reserve(pins.size());
    sorted.places.resize(pins.size());
    const PIN_NAME* previous = nullptr;
    for (const std::size_t index : order) {
        const PIN_NAME& pin = pins[index];
        if (previous == nullptr || pin_smaller(*previous, pin)) {
            sorted.designators.emplace_back(pin.letters).append(std::to_string(pin.number));
        }
        previous = &pin;
        sorted.places[index] = sorted.designators.size() - 1;
    }
    return sorted;
}

std::size_t PlaceOfPin(const std::vector<std::string>& sorted, std::string_view designator) {
    const PIN_NAME sought = SplitDesignator(designator);
    const auto first = std::partition_point(
        sorted.begin(), sorted.end(),
        [&](const std::string& pin) { return pin_smaller(SplitDesignator(pin), sought); });
    // Designators such as A1 and A01 are equal in the order; which one it is, the spelling tells.
    for (auto pin = first; pin != sorted.end() && !pin_smaller(sought, SplitDesignator(*pin));
         ++pin) {
        if (*pin == designator) return static_cast<std::size_t>(pin - sorted.begin());
    }
    return sorted.size();
}

}  // namespace bscan::detail
