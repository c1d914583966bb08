// What the characters of a BSDL text can be part of.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace bscan::detail {

// The double quotes that word processors make of two straight ones.
inline constexpr std::string_view kOpeningQuote = "\xE2\x80\x9C";
inline constexpr std::string_view kClosingQuote = "\xE2\x80\x9D";

enum class CharacterClass : std::uint8_t { kWord, kDash, kBlank, kLineEnd, kSymbol, kQuote };

inline constexpr auto kCharacterClasses = [] {
    std::array<CharacterClass, 256> classes{};
    // Control characters, such as the 0x1A that ends some old files, separate words.
    for (std::size_t code = 0; code <= ' '; ++code) classes[code] = CharacterClass::kBlank;
    classes[0x7F] = CharacterClass::kBlank;
    // A blank that does not break: A0 in Latin-1, C2 A0 in UTF-8.
    classes[0xA0] = CharacterClass::kBlank;
    classes[0xC2] = CharacterClass::kBlank;
    for (const char c : {'\r', '\n'}) {
        classes[static_cast<unsigned char>(c)] = CharacterClass::kLineEnd;
    }
    for (const char c : {'(', ')', '[', ']', ',', ':', ';', '=', '&'}) {
        classes[static_cast<unsigned char>(c)] = CharacterClass::kSymbol;
    }
    classes['"'] = CharacterClass::kQuote;
    classes['-'] = CharacterClass::kDash;
    return classes;
}();

constexpr CharacterClass ClassOf(char character) {
    return kCharacterClasses[static_cast<unsigned char>(character)];
}

// In a value a dash is like any other character of a word.
constexpr bool IsWordCharacter(char character) {
    return ClassOf(character) <= CharacterClass::kDash;
}

constexpr bool IsSpace(char character) {
    return ClassOf(character) == CharacterClass::kBlank ||
           ClassOf(character) == CharacterClass::kLineEnd;
}

// How many characters a text has in its first line, without the end of that line.
constexpr std::size_t LineSize(std::string_view text) {
    std::size_t size = 0;
    while (size < text.size() && text[size] != '\n' && text[size] != '\r') ++size;
    return size;
}

}  // namespace bscan::detail
