// Characters eight at a time, as the bytes of a number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace bscan::detail {

// The first bytes of a text, as many as a Word has; the first of them is the lowest. The text must
// have them.
template <class Word = std::uint64_t>
constexpr std::uint64_t LoadWord(const char* text) {
    if (std::is_constant_evaluated()) {
        std::uint64_t word = 0;
        for (std::size_t i = sizeof(Word); i > 0; --i) {
            word = word << 8 | static_cast<unsigned char>(text[i - 1]);
        }
        return word;
    }
    Word word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// A text of up to eight characters, in two reads of a fixed size that may overlap: texts of one
// length are equal when their words are.
constexpr std::uint64_t ShortWord(std::string_view text) {
    const std::size_t size = text.size();
    const char* const begin = text.data();
    if (size >= 4) {
        return LoadWord<std::uint32_t>(begin) << 32 | LoadWord<std::uint32_t>(begin + size - 4);
    }
    if (size >= 2) {
        return LoadWord<std::uint16_t>(begin) << 16 | LoadWord<std::uint16_t>(begin + size - 2);
    }
    return size == 0 ? 0 : LoadWord<std::uint8_t>(begin);
}

// The same byte eight times.
constexpr std::uint64_t EachByte(std::uint8_t byte) { return byte * 0x0101010101010101U; }

// The highest bit of each byte that lies between two ASCII characters, both included. Without its
// own highest bit, a byte reaches that bit in `from_first` when it is not below the first
// character, and in `behind_last` when it is above the last one; no sum carries into the next byte.
constexpr std::uint64_t BytesBetween(std::uint64_t word, char first, char last) {
    const std::uint64_t low_bits = word & EachByte(0x7F);
    const std::uint64_t from_first = low_bits + EachByte(static_cast<std::uint8_t>(0x80 - first));
    const std::uint64_t behind_last = low_bits + EachByte(static_cast<std::uint8_t>(0x7F - last));
    return (from_first ^ behind_last) & ~word & EachByte(0x80);
}

// Turns the letters of a word into upper case: two places to the right of a byte's highest bit is
// the one in which lower case differs from upper case.
struct UpperCasing {
    constexpr std::uint64_t operator()(std::uint64_t word) const {
        return word - (BytesBetween(word, 'a', 'z') >> 2);
    }
};
inline constexpr UpperCasing UpperCaseWord;

// Compares texts of one length word by word; `map` is applied to each word first. The last word
// ends where the text ends, and so may overlap the one before.
template <class Map>
bool EqualWords(std::string_view left, std::string_view right, Map map) {
    const std::size_t size = left.size();
    if (size <= 8) return map(ShortWord(left)) == map(ShortWord(right));
    for (std::size_t at = 0; at + 8 < size; at += 8) {
        if (map(LoadWord(left.data() + at)) != map(LoadWord(right.data() + at))) return false;
    }
    return map(LoadWord(left.data() + size - 8)) == map(LoadWord(right.data() + size - 8));
}

}  // namespace bscan::detail
