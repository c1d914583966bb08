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
    const char* at = text.data();
    const char* const end = at + text.size();
    // The conversion skips vertical tab and form feed too, which trimming keeps.
    while (at != end && (*at == ' ' || (*at >= '\t' && *at <= '\r'))) ++at;
    bool negative = false;
    if (at != end && (*at == '-' || *at == '+')) negative = *at++ == '-';
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t limit = negative ? kMost + 1 : kMost;
    std::uint64_t value = 0;
    for (; at != end && IsDigit(*at); ++at) {
        const auto digit = static_cast<std::uint64_t>(*at - '0');
        // One digit more fits for certain below a tenth of the limit.
        if (value >= kMost / 10 && value > (limit - digit) / 10) {
            value = limit;
            break;
        }
        value = value * 10 + digit;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? 0 - value : value));
}

}  // namespace bscan::detail
