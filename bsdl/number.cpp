#include "bsdl/number.h"

#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace bscan::detail {
namespace {

// Beyond this a number is none of ours, however long it is written.
constexpr std::int64_t kBeyond = std::int64_t{1} << 40;

int DigitValue(char c) {
    if (IsDigit(c)) return c - '0';
    return IsLetter(c) ? ToLower(c) - 'a' + 10 : std::numeric_limits<int>::max();
}

std::optional<std::int64_t> ParseDigits(std::string_view text, int base) {
    if (text.empty() || text.front() == '_') return {};
    std::int64_t value = 0;
    for (const char c : text) {
        if (c == '_') continue;
        const int digit = DigitValue(c);
        if (digit >= base) return {};
        value = std::min(value * base + digit, kBeyond);
    }
    return value;
}

std::optional<std::int64_t> ParseBased(std::string_view text, std::size_t mark) {
    const auto base = ParseDigits(text.substr(0, mark), 10);
    const std::string_view digits = text.substr(mark + 1);
    if (!base || *base < 2 || *base > 36 || digits.empty() || digits.back() != '#') return {};
    return ParseDigits(digits.substr(0, digits.size() - 1), static_cast<int>(*base));
}

std::optional<std::int64_t> ParseWide(std::string_view text) {
    const std::size_t mark = text.find('#');
    return mark == std::string_view::npos ? ParseDigits(text, 10) : ParseBased(text, mark);
}

}  // namespace

std::optional<int> ParseInteger(std::string_view text) {
    // Nearly all numbers are short and plain.
    if (text.size() < 8) {
        int value = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (stop == end && error == std::errc() && text[0] != '-') return value;
    }
    const auto value = ParseWide(text);
    if (value && *value <= std::numeric_limits<int>::max()) return static_cast<int>(*value);
    // A whole number with an exponent, such as 1E3.
    const auto real = value ? std::nullopt : ParseReal(text);
    if (!real || *real != std::floor(*real) || *real > std::numeric_limits<int>::max()) return {};
    return static_cast<int>(*real);
}

std::optional<double> ParseReal(std::string_view text) {
    if (text.empty() || !IsDigit(text.front()) || text.size() > 64) return {};
    std::string digits(text);
    std::erase(digits, '_');
    double value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) return {};
    return value;
}

}  // namespace bscan::detail
