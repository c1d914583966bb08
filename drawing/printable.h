// Names and paths made fit to be printed. A file may hold any bytes in its names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bscan::drawing {

/// Text for people and for CSV: one line, free of control characters, marks that turn the writing
/// direction, and bytes that are not UTF-8. Such a byte becomes \xNN, a backslash becomes two.
std::string Printable(std::string_view text);

/// Text for JSON, whose writer escapes control characters itself: only bytes that are not UTF-8
/// become \xNN.
std::string JsonText(std::string_view text);

/// The columns that UTF-8 text takes, one for each character.
std::size_t Width(std::string_view text);

}  // namespace bscan::drawing
