#include "pin_selector.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace tool {
namespace {

using Elements = std::vector<const Element*>;

template <typename Matches>
Elements Where(const Device& device, Matches matches) {
    Elements found;
    for (const Element& element : device.elements()) {
        if (matches(element)) found.push_back(&element);
    }
    return found;
}

std::optional<int> ParseNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

char Upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

bool SameWithoutCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Upper(a) == Upper(b); });
}

Elements ByPin(const Device& device, std::string_view text) {
    return Where(device, [&](const Element& element) { return element.pin == text; });
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

Elements ByPort(const Device& device, std::string_view text) {
    const PortText wanted = SplitIndex(text);
    return Where(device, [&](const Element& element) {
        if (!SameWithoutCase(element.port, wanted.name)) return false;
        return !wanted.index || element.index.value_or(0) == *wanted.index;
    });
}

Elements ByNumber(const Device& device, std::string_view text) {
    const std::optional<int> number = ParseNumber(text);
    if (!number || *number < 1) return {};
    return Where(device, [&](const Element& element) { return element.number == *number; });
}

struct Way {
    std::string_view prefix;
    Elements (*find)(const Device&, std::string_view);
};

constexpr std::array<Way, 3> kWays = {{{"pin:", ByPin}, {"port:", ByPort}, {"number:", ByNumber}}};

}  // namespace

Elements Select(const Device& device, std::string_view text) {
    if (text.empty()) return {};
    for (const Way& way : kWays) {
        if (text.substr(0, way.prefix.size()) == way.prefix) {
            return way.find(device, text.substr(way.prefix.size()));
        }
    }
    for (const Way& way : kWays) {
        Elements found = way.find(device, text);
        if (!found.empty()) return found;
    }
    return {};
}

}  // namespace tool
