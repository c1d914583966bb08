// Cutting, comparing and converting text without copying it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace bscan::detail {

// The text behind a pointer from outside; null counts as empty.
inline std::string_view View(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

inline bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
inline char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

inline std::string_view TrimLeft(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

inline std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

inline std::string_view Trim(std::string_view text) { return TrimLeft(TrimRight(text)); }

// The position of the first space, tab or line feed; npos without one. A carriage return is blank,
// and trimmed, but ends no word.
inline std::size_t FindSpace(std::string_view text) {
    const auto* const found = std::find_if(
        text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
    return found == text.end() ? text.npos : static_cast<std::size_t>(found - text.begin());
}

// A text cut in two at a character, which neither part holds.
struct Parts {
    std::string_view before;
    std::string_view after;
};

// Cuts at a position that a search gave. Where the search found nothing, the part before is empty
// and the part after is the whole text; the readers rely on that for malformed statements.
inline Parts CutAt(std::string_view text, std::size_t position) {
    if (position == std::string_view::npos) return {{}, text};
    return {text.substr(0, position), text.substr(position + 1)};
}

inline Parts CutAt(std::string_view text, char character) {
    return CutAt(text, text.find(character));
}

// Cuts at a character and trims the part before on its right, the part after on its left.
inline Parts CutTrimmed(std::string_view text, char character) {
    const Parts parts = CutAt(text, character);
    return {TrimRight(parts.before), TrimLeft(parts.after)};
}

// Cuts at the first space, tab or line feed and trims as CutTrimmed does. A text of one word alone
// is the part after, as with CutAt.
Parts CutWord(std::string_view text);

inline bool Contains(std::string_view text, std::string_view sought) {
    return text.find(sought) != std::string_view::npos;
}

inline bool Contains(std::string_view text, char sought) {
    return text.find(sought) != std::string_view::npos;
}

// Whether a text is what UpperCase would make of it.
inline bool IsUpperCase(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

void UpperCase(char* text, std::size_t length);
void UpperCase(std::string& text);
void LowerCase(std::string& text);

inline bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return a == b || ToUpper(a) == ToUpper(b); });
}

// Compares as strcmp does, with all letters taken as lower case.
int CompareIgnoringCase(std::string_view left, std::string_view right);

// The value of the decimal number at the start of a text: white space, a sign and digits; 0 without
// digits. It saturates at 64 bits, of which the low 32 are the result.
std::int32_t DecimalValue(std::string_view text);

}  // namespace bscan::detail
