// How people name the pins of a device.

#include <bscan/pin_names.h>

#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>

namespace bscan {
namespace {

std::string Upper(std::string_view text) {
    std::string upper(text);
    detail::UpperCase(upper);
    return upper;
}

std::optional<int> ParseNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<IndexRange> ParseRange(std::string_view text) {
    const std::size_t dots = text.find("..");
    const auto left = ParseNumber(text.substr(0, dots));
    const auto right = dots == std::string_view::npos ? left : ParseNumber(text.substr(dots + 2));
    return left && right ? std::optional(IndexRange{*left, *right}) : std::nullopt;
}

struct PortText {
    std::string_view name;
    std::optional<IndexRange> range;
};

// D(3) and D[3] are element 3 of D, D(3..0) four of them; anything else is a name.
PortText SplitIndex(std::string_view text) {
    const std::size_t open = text.find_first_of("([");
    if (open == std::string_view::npos) return {text, std::nullopt};
    const char closing = text[open] == '(' ? ')' : ']';
    if (text.back() != closing) return {text, std::nullopt};
    const auto range = ParseRange(text.substr(open + 1, text.size() - open - 2));
    return range ? PortText{text.substr(0, open), range} : PortText{text, std::nullopt};
}

// Whether a name fits a pattern in which '*' is any characters.
bool Fits(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t from = 0;  // where the last '*' has matched up to
    std::size_t star = std::string_view::npos;
    for (std::size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            from = i;
        } else if (at < pattern.size() && pattern[at] == name[i]) {
            ++at;
            ++i;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            i = ++from;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

template <typename Key>
std::vector<int> ListFor(const std::unordered_map<Key, std::vector<int>>& lists, const Key& name) {
    const auto found = lists.find(name);
    return found == lists.end() ? std::vector<int>() : found->second;
}

std::unordered_map<std::string, const Port*> PortsByName(const Facts* facts) {
    std::unordered_map<std::string, const Port*> ports;
    if (facts == nullptr) return ports;
    for (const Port& port : facts->ports) ports.emplace(Upper(port.name.text), &port);
    return ports;
}

}  // namespace

PinNames::PinNames(const PinDriver& pins, const Facts* facts) {
    const std::unordered_map<std::string, const Port*> ports = PortsByName(facts);
    for (int i = 0; i < pins.ElementCount(); ++i) {
        Named& named = elements_.emplace_back();
        const LPinNode* const node = pins.Node(i);
        if (node == nullptr) continue;
        named.port = detail::View(PortName(*node));
        named.pin = detail::View(PinName(*node));
        named.index = node->GetVectorIndex();
        named.number = node->GetPinNumber();
        const std::string upper = Upper(named.port);
        if (const auto port = ports.find(upper); port != ports.end()) {
            named.port = port->second->name.text;
            if (const auto& range = port->second->range) {
                named.index += range->Lowest();
                named.is_vector = true;
            }
        }
        by_port_[upper].push_back(i);
        if (!named.pin.empty()) by_pin_[named.pin].push_back(i);
        if (named.number > 0) by_number_[named.number].push_back(i);
    }
    for (const auto& [port, places] : by_port_) {
        for (const int place : places) {
            Named& named = elements_[static_cast<std::size_t>(place)];
            named.is_vector = named.is_vector || places.size() > 1 || named.index > 0;
        }
    }
}

PinNames::Places PinNames::ByPin(std::string_view text) const {
    return ListFor(by_pin_, std::string(text));
}

// A pattern costs a walk over all ports.
PinNames::Places PinNames::OfPort(std::string_view name) const {
    const std::string upper = Upper(name);
    if (!IsPinPattern(name)) return ListFor(by_port_, upper);
    Places found;
    for (const auto& [port, places] : by_port_) {
        if (Fits(port, upper)) found.insert(found.end(), places.begin(), places.end());
    }
    std::sort(found.begin(), found.end());
    return found;
}

// The element of an index; the elements of a vector are declared one behind the other.
PinNames::Places PinNames::OfIndex(const std::string& upper, int index) const {
    const auto found = by_port_.find(upper);
    if (found == by_port_.end()) return {};
    const Places& places = found->second;
    const auto index_of = [&](int place) {
        return std::int64_t{elements_[static_cast<std::size_t>(place)].index};
    };
    const auto distance = static_cast<std::size_t>(std::abs(index - index_of(places.front())));
    if (distance < places.size() && index_of(places[distance]) == index) return {places[distance]};
    const auto place = std::find_if(places.begin(), places.end(),
                                    [&](int other) { return index_of(other) == index; });
    return place == places.end() ? Places() : Places{*place};
}

PinNames::Places PinNames::ByPort(std::string_view text) const {
    const PortText wanted = SplitIndex(text);
    if (!wanted.range) return OfPort(wanted.name);
    const auto [left, right] = *wanted.range;
    if (left == right && !IsPinPattern(wanted.name)) return OfIndex(Upper(wanted.name), left);
    Places found = OfPort(wanted.name);
    const auto index = [&](int place) { return elements_[static_cast<std::size_t>(place)].index; };
    std::erase_if(found, [&](int place) { return !wanted.range->Contains(index(place)); });
    if (IsPinPattern(wanted.name)) return found;
    const bool upwards = left < right;
    std::stable_sort(found.begin(), found.end(), [&](int a, int b) {
        return upwards ? index(a) < index(b) : index(a) > index(b);
    });
    const std::int64_t span = std::abs(std::int64_t{left} - right);
    return found.size() < static_cast<std::size_t>(span) + 1 ? Places() : found;
}

PinNames::Places PinNames::ByNumber(std::string_view text) const {
    const std::optional<int> number = ParseNumber(text);
    return number ? ListFor(by_number_, *number) : Places();
}

PinNames::Places PinNames::Find(std::string_view text) const {
    struct Way {
        std::string_view prefix;
        Places (PinNames::*find)(std::string_view) const;
    };
    constexpr Way kWays[] = {
        {"pin:", &PinNames::ByPin}, {"port:", &PinNames::ByPort}, {"number:", &PinNames::ByNumber}};
    if (text.empty()) return {};
    for (const Way& way : kWays) {
        if (text.substr(0, way.prefix.size()) == way.prefix) {
            return (this->*way.find)(text.substr(way.prefix.size()));
        }
    }
    for (const Way& way : kWays) {
        Places found = (this->*way.find)(text);
        if (!found.empty()) return found;
    }
    return {};
}

const PinNames::Named* PinNames::At(int element) const {
    const bool known = element >= 0 && static_cast<std::size_t>(element) < elements_.size();
    return known ? &elements_[static_cast<std::size_t>(element)] : nullptr;
}

std::string PinNames::Label(int element) const {
    const Named* const named = At(element);
    if (named == nullptr) return {};
    return named->is_vector ? named->port + "(" + std::to_string(named->index) + ")" : named->port;
}

std::string_view PinNames::PortOf(int element) const {
    const Named* const named = At(element);
    return named == nullptr ? std::string_view() : named->port;
}

std::optional<int> PinNames::IndexOf(int element) const {
    const Named* const named = At(element);
    return named == nullptr || !named->is_vector ? std::nullopt : std::optional(named->index);
}

namespace {

// The bits of a hexadecimal digit; empty for no digit.
std::string BitsOf(char digit) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const std::size_t value = kDigits.find(detail::ToUpper(digit));
    std::string bits;
    for (unsigned bit = 4; value < kDigits.size() && bit-- > 0;) {
        bits += (value >> bit & 1U) != 0 ? '1' : '0';
    }
    return bits;
}

// The bits of 0x5A or 0b1010; empty for no number.
std::string NumberBits(std::string_view text) {
    if (text.size() < 3 || text[0] != '0') return {};
    const char base = detail::ToUpper(text[1]);
    if (base != 'X' && base != 'B') return {};
    std::string bits;
    for (const char digit : text.substr(2)) {
        if (digit == '_') continue;
        const std::string more = BitsOf(digit);
        if (more.empty() || (base == 'B' && digit != '0' && digit != '1')) return {};
        bits += base == 'X' ? more : more.substr(3);
    }
    return bits;
}

}  // namespace

std::optional<PinLevels> PinLevels::Parse(std::string_view text) {
    PinLevels levels;
    if (text == "0" || text == "1") {
        levels.level_ = text == "0" ? SIG_0 : SIG_1;
        return levels;
    }
    if (text == "Z" || text == "z") {
        levels.level_ = SIG_Z;
        return levels;
    }
    const std::string bits = NumberBits(text);
    if (bits.empty()) return std::nullopt;
    levels.is_number_ = true;
    levels.bits_ = bits.substr(std::min(bits.find('1'), bits.size()));
    return levels;
}

eSignal PinLevels::Of(std::size_t place, std::size_t count) const {
    if (!is_number_) return level_;
    const std::size_t weight = count - 1 - place;
    const bool one = weight < bits_.size() && bits_[bits_.size() - 1 - weight] == '1';
    return one ? SIG_1 : SIG_0;
}

bool IsPinPattern(std::string_view name) { return name.find('*') != std::string_view::npos; }

}  // namespace bscan
