#include "parser/pin_sort.h"

#include <bscan/pin_order.h>

#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <iterator>
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

std::uint64_t NumberIn(std::uint64_t key) { return 0xFFFFU - (key >> kNumberShift); }

std::size_t LetterCountIn(std::uint64_t key) { return key >> kCountShift & kByteMask; }

bool HoldsLetters(std::uint64_t key) { return LetterCountIn(key) <= kLettersInKey; }

// Puts the letters of a key at a place, and tells the place behind them.
char* PutLetters(std::uint64_t key, char* place) {
    unsigned shift = kCountShift;
    for (std::size_t count = LetterCountIn(key); count > 0; --count) {
        *place++ = static_cast<char>(key >> (shift -= kByte) & kByteMask);
    }
    return place;
}

}  // namespace

// In most designators the digits follow the letters.
void PinSet::Add(std::string_view designator) {
    const auto* const first_digit =
        std::find_if_not(designator.begin(), designator.end(), IsLetter);
    if (std::all_of(first_digit, designator.end(), IsDigit)) {
        const auto count = static_cast<std::size_t>(first_digit - designator.begin());
        return Add(designator.substr(0, count), designator.substr(count));
    }
    std::string letters;
    std::string digits;
    std::copy_if(designator.begin(), designator.end(), std::back_inserter(letters), IsLetter);
    std::copy_if(designator.begin(), designator.end(), std::back_inserter(digits), IsDigit);
    Add(letters, digits);
}

void PinSet::Add(std::string_view letters, std::string_view digits) {
    const std::uint64_t key = Key(letters, static_cast<unsigned short>(DecimalValue(digits)));
    if (!HoldsLetters(key)) letters_.emplace_back(letters);
    pins_.push_back({key, static_cast<std::uint32_t>(letters_.size()),
                     static_cast<std::uint32_t>(pins_.size())});
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

// Sorts the pins of each key that does not hold their letters: fewer letters come first.
void PinSet::SortByLetters() {
    const auto smaller = [&](const Keyed& left, const Keyed& right) {
        return ::operator<(Letters(left), Letters(right));
    };
    for (auto begin = pins_.begin(), end = begin; begin != pins_.end(); begin = end) {
        end = std::find_if(begin, pins_.end(),
                           [&](const Keyed& pin) { return pin.key != begin->key; });
        if (!HoldsLetters(begin->key)) std::sort(begin, end, smaller);
    }
}

void PinSet::Sort() {
    SortByKey();
    if (!letters_.empty()) SortByLetters();
}

bool PinSet::Equal(const Keyed& left, const Keyed& right) const {
    return left.key == right.key && (HoldsLetters(left.key) || Letters(left) == Letters(right));
}

std::vector<std::uint32_t> PinSet::Places() const {
    std::vector<std::uint32_t> places(pins_.size());
    std::uint32_t place = 0;
    for (std::size_t i = 0; i < pins_.size(); ++i) {
        if (i > 0 && !Equal(pins_[i - 1], pins_[i])) ++place;
        places[pins_[i].coming] = place;
    }
    return places;
}

std::vector<std::string> PinSet::Designators() const {
    std::vector<std::string> designators;
    designators.reserve(pins_.size());
    for (std::size_t i = 0; i < pins_.size(); ++i) {
        const Keyed& pin = pins_[i];
        if (i > 0 && Equal(pins_[i - 1], pin)) continue;
        constexpr std::size_t kMostDigits = 5;
        char text[kLettersInKey + kMostDigits];
        const bool is_short = HoldsLetters(pin.key);
        char* const digits = is_short ? PutLetters(pin.key, text) : text;
        const char* const end = std::to_chars(digits, std::end(text), NumberIn(pin.key)).ptr;
        std::string& designator =
            is_short ? designators.emplace_back() : designators.emplace_back(Letters(pin));
        designator.append(text, static_cast<std::size_t>(end - text));
    }
    return designators;
}

}  // namespace bscan::detail
