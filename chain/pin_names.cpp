#include "chain/pin_names.h"

#include "support/text_view.h"

#include <charconv>
#include <optional>

namespace bscan::detail {
namespace {

std::string Upper(std::string_view text) {
    std::string upper(text);
    UpperCase(upper);
    return upper;
}

std::optional<int> ParseNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

struct PortText {
    std::string_view name;
    std::optional<int> index;
};

// D(3) and D[3] are element 3 of D; anything else is a name.
PortText SplitIndex(std::string_view text) {
    const std::size_t open = text.find_first_of("([");
    if (open == std::string_view::npos) return {text, std::nullopt};
    const char closing = text[open] == '(' ? ')' : ']';
    if (text.back() != closing) return {text, std::nullopt};
    const auto index = ParseNumber(text.substr(open + 1, text.size() - open - 2));
    return index ? PortText{text.substr(0, open), index} : PortText{text, std::nullopt};
}

std::vector<int> ListFor(const std::unordered_map<std::string, std::vector<int>>& lists,
                         const std::string& name) {
    const auto found = lists.find(name);
    return found == lists.end() ? std::vector<int>() : found->second;
}

}  // namespace

PinNames::PinNames(const PinDriver& pins, const Facts* facts) {
    std::unordered_map<std::string, IndexRange> ranges;
    if (facts != nullptr) {
        for (const Port& port : facts->ports) {
            if (port.range) ranges.emplace(Upper(port.name.text), *port.range);
        }
    }
    for (int i = 0; i < pins.ElementCount(); ++i) {
        Named& named = elements_.emplace_back();
        const LPinNode* const node = pins.Node(i);
        if (node == nullptr) continue;
        named.port = View(PortName(*node));
        named.pin = View(PinName(*node));
        named.index = node->GetVectorIndex();
        named.number = node->GetPinNumber();
        const std::string upper = Upper(named.port);
        if (const auto range = ranges.find(upper); range != ranges.end()) {
            named.index += range->second.Lowest();
            named.is_vector = true;
        }
        by_port_[upper].push_back(i);
        if (!named.pin.empty()) by_pin_[named.pin].push_back(i);
    }
    for (Named& named : elements_) {
        const bool several = ListFor(by_port_, Upper(named.port)).size() > 1;
        named.is_vector = named.is_vector || several || named.index > 0;
    }
}

std::vector<int> PinNames::ByPin(std::string_view text) const {
    return ListFor(by_pin_, std::string(text));
}

std::vector<int> PinNames::ByPort(std::string_view text) const {
    const PortText wanted = SplitIndex(text);
    std::vector<int> found = ListFor(by_port_, Upper(wanted.name));
    if (wanted.index) {
        std::erase_if(found, [&](int element) {
            return elements_[static_cast<std::size_t>(element)].index != *wanted.index;
        });
    }
    return found;
}

std::vector<int> PinNames::ByNumber(std::string_view text) const {
    const std::optional<int> number = ParseNumber(text);
    std::vector<int> found;
    if (!number || *number < 1) return found;
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        if (elements_[i].number == *number) found.push_back(static_cast<int>(i));
    }
    return found;
}

std::vector<int> PinNames::Find(std::string_view text) const {
    struct Way {
        std::string_view prefix;
        std::vector<int> (PinNames::*find)(std::string_view) const;
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
        std::vector<int> found = (this->*way.find)(text);
        if (!found.empty()) return found;
    }
    return {};
}

std::string PinNames::Label(int element) const {
    if (element < 0 || static_cast<std::size_t>(element) >= elements_.size()) return {};
    const Named& named = elements_[static_cast<std::size_t>(element)];
    return named.is_vector ? named.port + "(" + std::to_string(named.index) + ")" : named.port;
}

}  // namespace bscan::detail
