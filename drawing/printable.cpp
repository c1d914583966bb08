#include "drawing/printable.h"

#include <string_view>

namespace bscan::drawing {
namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

std::size_t AnnouncedLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    if (lead >= 0xF0 && lead < 0xF5) return 4;
    return 0;
}

bool IsWellFormed(char32_t code, std::size_t length) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code >= kSmallest[length] && code <= 0x10FFFF && !surrogate;
}

bool IsControl(char32_t code) {
    const bool direction = (code >= 0x200E && code <= 0x200F) ||
                           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    const bool line = code == 0x2028 || code == 0x2029;
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || direction || line;
}

void AppendEscaped(std::string& out, std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        out.append("\\x").append(1, kDigits[value / 16]).append(1, kDigits[value % 16]);
    }
}

template <typename MustEscape>
std::string Escape(std::string_view text, MustEscape must_escape) {
    std::string out;
    while (!text.empty()) {
        const Character first = FirstCharacter(text);
        const std::string_view bytes = text.substr(0, first.length == 0 ? 1 : first.length);
        if (first.length == 0 || must_escape(first.code)) {
            AppendEscaped(out, bytes);
        } else {
            out += bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string DoubleBackslashes(std::string_view text) {
    std::string out;
    for (const char character : text) out.append(character == '\\' ? 2U : 1U, character);
    return out;
}

}  // namespace

Character FirstCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = AnnouncedLength(lead);
    if (length == 0 || length > text.size()) return {};
    if (length == 1) return {lead, 1};
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) return {};
        code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    return IsWellFormed(code, length) ? Character{code, length} : Character{};
}

std::string Printable(std::string_view text) { return Escape(DoubleBackslashes(text), IsControl); }

std::string JsonText(std::string_view text) {
    return Escape(text, [](char32_t) { return false; });
}

std::size_t Width(std::string_view text) {
    std::size_t width = 0;
    for (const char byte : text) width += IsContinuation(byte) ? 0U : 1U;
    return width;
}

}  // namespace bscan::drawing
