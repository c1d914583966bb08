#include "parser/pin_sort.h"

#include <bscan/pin_order.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace bscan::detail {
namespace {

constexpr unsigned kByte = 8;
constexpr std::uint64_t kByteMask = 0xFF;

// From the highest bits of a key: larger numbers first, then fewer letters, then the first letters,
// unless there are more than the key can count.
constexpr std::size_t kLettersInKey = 5;
constexpr std::size_t kUncounted = kByteMask;
constexpr unsigned kNumberShift = 48;
constexpr unsigned kCountShift = 40;

std::uint64_t Key(std::string_view letters, unsigned short number) {
    std::uint64_t key = std::uint64_t{0xFFFFU} - number;
    key = key << kByte | std::min(letters.size(), kUncounted);
    unsigned shift = kCountShift;
    key <<= shift;
    if (letters.size() >= kUncounted) return key;
    for (const char letter : letters.substr(0, kLettersInKey)) {
        key |= std::uint64_t{static_cast<unsigned char>(letter)} << (shift -= kByte);
    }
    return key;
}

unsigned short NumberIn(std::uint64_t key) {
    return static_cast<unsigned short>(0xFFFFU - (key >> kNumberShift));
}

bool HoldsLetters(std::uint64_t key) { return (key >> kCountShift & kByteMask) <= kLettersInKey; }

std::string LettersIn(std::uint64_t key) {
    char letters[kLettersInKey];
    const std::size_t count = key >> kCountShift & kByteMask;
    for (std::size_t i = 0; i < count; ++i) {
        letters[i] = static_cast<char>(key >> (kCountShift - kByte * (i + 1)) & kByteMask);
    }
    return {letters, count};
}

}  // namespace

void PinSet::Add(std::string_view letters, unsigned short number) {
    const std::uint64_t key = Key(letters, number);
    if (!HoldsLetters(key)) letters_.emplace_back(letters);
    pins_.push_back({key, letters_.size()});
}

// Sorts by the bytes of the keys, from the lowest to the highest. Most bytes are the same in all
// keys, and need nothing to be moved.
void PinSet::SortByKey() {
    std::vector<Keyed> sorted(pins_.size());
    std::uint64_t different = 0;
    for (const Keyed& pin : pins_) different |= pin.key ^ pins_.front().key;
    for (unsigned shift = 0; shift < 64; shift += kByte) {
        if ((different >> shift & kByteMask) == 0) continue;
        const auto byte = [shift](const Keyed& pin) { return pin.key >> shift & kByteMask; };
        std::size_t places[kByteMask + 1] = {};
        for (const Keyed& pin : pins_) ++places[byte(pin)];
        std::size_t place = 0;
        for (std::size_t& count : places) place += std::exchange(count, place);
        for (const Keyed& pin : pins_) sorted[places[byte(pin)]++] = pin;
        pins_.swap(sorted);
    }
}

// Sorts the pins of each key that does not hold their letters.
void PinSet::SortByLetters() {
    const auto smaller = [&](const Keyed& left, const Keyed& right) {
        return ::operator<(letters_[left.letters - 1], letters_[right.letters - 1]);
    };
    for (auto begin = pins_.begin(), end = begin; begin != pins_.end(); begin = end) {
        end = std::find_if(begin, pins_.end(),
                           [&](const Keyed& pin) { return pin.key != begin->key; });
        if (!HoldsLetters(begin->key)) std::sort(begin, end, smaller);
    }
}

std::vector<PIN_NAME> PinSet::Sorted() {
    SortByKey();
    if (!letters_.empty()) SortByLetters();
    const auto equal = [&](const Keyed& left, const Keyed& right) {
        return left.key == right.key && (HoldsLetters(left.key) || letters_[left.letters - 1] ==
                                                                       letters_[right.letters - 1]);
    };
    pins_.erase(std::unique(pins_.begin(), pins_.end(), equal), pins_.end());
    std::vector<PIN_NAME> sorted;
    sorted.reserve(pins_.size());
    for (const Keyed& pin : pins_) {
        std::string letters =
            HoldsLetters(pin.key) ? LettersIn(pin.key) : letters_[pin.letters - 1];
        sorted.push_back({std::move(letters), NumberIn(pin.key)});
    }
    return sorted;
}

}  // namespace bscan::detail
