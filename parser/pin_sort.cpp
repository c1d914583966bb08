#include "parser/pin_sort.h"

#include <bscan/pin_order.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace bscan::detail {
namespace {

constexpr std::size_t kLettersInKey = 5;

struct Keyed {
    std::uint64_t key;
    std::size_t pin;
};

// A number that orders most pins as pin_smaller does, so that their texts need not be compared:
// larger numbers first, then fewer letters, then the first letters.
std::uint64_t Key(const PIN_NAME& pin) {
    std::uint64_t key = 0xFFFFU - pin.number;
    key = key << 8 | std::min<std::size_t>(pin.letters.size(), 0xFF);
    for (std::size_t i = 0; i < kLettersInKey; ++i) {
        const char letter = i < pin.letters.size() ? pin.letters[i] : '\0';
        key = key << 8 | static_cast<unsigned char>(letter);
    }
    return key;
}

bool Equal(const PIN_NAME& left, const PIN_NAME& right) {
    return left.number == right.number && left.letters == right.letters;
}

}  // namespace

void SortPins(std::vector<PIN_NAME>& pins) {
    std::vector<Keyed> keys;
    keys.reserve(pins.size());
    for (std::size_t i = 0; i < pins.size(); ++i) keys.push_back({Key(pins[i]), i});
    std::sort(keys.begin(), keys.end(), [&](const Keyed& left, const Keyed& right) {
        if (left.key != right.key) return left.key < right.key;
        return pin_smaller(pins[left.pin], pins[right.pin]);
    });
    std::vector<PIN_NAME> sorted;
    sorted.reserve(pins.size());
    for (const Keyed& next : keys) {
        if (sorted.empty() || !Equal(sorted.back(), pins[next.pin])) {
            sorted.push_back(std::move(pins[next.pin]));
        }
    }
    pins = std::move(sorted);
}

}  // namespace bscan::detail
