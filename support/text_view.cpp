#include "support/text_view.h"

#include <algorithm>
#include <limits>

namespace bscan::detail {

Parts CutWord(std::string_view text) {
    const Parts parts = CutAt(text, FindSpace(text));
    return {TrimRight(parts.before), TrimLeft(parts.after)};
}

void UpperCase(char* text, std::size_t length) {
    std::transform(text, text + length, text, ToUpper);
}

void UpperCase(std::string& text) { UpperCase(text.data(), text.size()); }

void LowerCase(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), ToLower);
}

int CompareIgnoringCase(std::string_view left, std::string_view right) {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto a = static_cast<unsigned char>(ToLower(left[i]));
        const auto b = static_cast<unsigned char>(ToLower(right[i]));
        if (a != b) return a < b ? -1 : 1;
    }
    if (left.size() == right.size()) return 0;
    return left.size() < right.size() ? -1 : 1;
}

std::int32_t DecimalValue(std::string_view text) {
    std::size_t at = 0;
    // The conversion skips vertical tab and form feed too, which trimming keeps.
    while (at < text.size() && (IsBlank(text[at]) || text[at] == '\v' || text[at] == '\f')) ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    std::uint64_t value = 0;
    // So many digits fit whatever they are.
    const std::size_t safe =
        std::min(text.size(), at + std::numeric_limits<std::int64_t>::digits10);
    for (; at < safe && IsDigit(text[at]); ++at) {
        value = value * 10 + static_cast<std::uint64_t>(text[at] - '0');
    }
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t limit = negative ? kMost + 1 : kMost;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        const auto digit = static_cast<std::uint64_t>(text[at] - '0');
        if (value > (limit - digit) / 10) {
            value = limit;
            break;
        }
        value = value * 10 + digit;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? 0 - value : value));
}

}  // namespace bscan::detail
