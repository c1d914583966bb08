// A few characters as one number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace bscan::detail {

// The first bytes of a text, as many as a Word has. The text must have them.
template <class Word = std::uint64_t>
std::uint64_t LoadWord(const char* text) {
    Word word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// A text of up to eight characters, in two reads of a fixed size that may overlap: texts of one
// length are equal when their words are.
inline std::uint64_t ShortWord(std::string_view text) {
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

}  // namespace bscan::detail
