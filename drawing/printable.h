// Names and paths made fit to be printed. A file may hold any bytes in its names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bscan::drawing {

/// A character of UTF-8 text and the bytes that it takes; none for a byte that begins no character.
struct Character {
    char32_t code = 0;
    std::size_t length = 0;
};

/// The first character of a text that is not empty.
Character FirstCharacter(std::string_view text);

/// Text for people and for CSV: one line, free of control characters, marks that turn the writing
/// direction, and bytes that are not UTF-8. Such a byte becomes \xNN, a backslash becomes two.
std::string Printable(std::string_view text);

/// Text for JSON, whose writer escapes control characters itself: only bytes that are not UTF-8
/// become \xNN.
std::string JsonText(std::string_view text);

/// The columns that UTF-8 text takes, one for each character.
std::size_t Width(std::string_view text);

}  // namespace bscan::drawing
