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

// Sorts by the bytes of the keys, from the lowest to the highest. Most bytes are the same in all
// keys, and need nothing to be moved.
void SortByKey(std::vector<Keyed>& keys) {
    std::vector<Keyed> sorted(keys.size());
    for (unsigned shift = 0; shift < 64; shift += 8) {
        const auto byte = [shift](const Keyed& pin) { return pin.key >> shift & 0xFFU; };
        std::size_t places[0x100] = {};
        for (const Keyed& pin : keys) ++places[byte(pin)];
        if (keys.empty() || places[byte(keys.front())] == keys.size()) continue;
        std::size_t place = 0;
        for (std::size_t& count : places) place += std::exchange(count, place);
        for (const Keyed& pin : keys) sorted[places[byte(pin)]++] = pin;
        keys.swap(sorted);
    }
}

bool Equal(const PIN_NAME& left, const PIN_NAME& right) {
    return left.number == right.number && left.letters == right.letters;
}

}  // namespace

void SortPins(std::vector<PIN_NAME>& pins) {
    std::vector<Keyed> keys;
    keys.reserve(pins.size());
    for (std::size_t i = 0; i < pins.size(); ++i) keys.push_back({Key(pins[i]), i});
    SortByKey(keys);
    // Pins whose letters differ behind those in the key.
    const auto smaller = [&](const Keyed& left, const Keyed& right) {
        return pin_smaller(pins[left.pin], pins[right.pin]);
    };
    for (auto begin = keys.begin(), end = begin; begin != keys.end(); begin = end) {
        end = std::find_if(begin, keys.end(),
                           [&](const Keyed& pin) { return pin.key != begin->key; });
        if (pins[begin->pin].letters.size() > kLettersInKey) std::sort(begin, end, smaller);
    }
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
