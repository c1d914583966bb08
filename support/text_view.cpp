#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

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
    // Unlike trimming, this also skips vertical tab and form feed.
    const auto is_space = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return 0;  // one sign at the most
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        value = text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                    : std::numeric_limits<std::int64_t>::max();
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

}  // namespace bscan::detail
