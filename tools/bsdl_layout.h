// How statements of BSDL are laid out over lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// The width that lines keep to where their parts allow it.
constexpr std::size_t kBsdlWidth = 100;

/// A statement whose value is one word: on one line where it fits.
/// @param head  from its first word up to `is` or `:=`.
std::string WordStatement(const std::string& head, const std::string& value);

/// A statement whose value is a string with parts that have commas between them: a line for each,
/// and more lines for one that is too long.
std::string ListStatement(const std::string& head, const std::vector<std::string>& parts);

/// The same with parts that have their own commas, and each may have a comment behind it.
struct ListPart {
    std::string text;
    std::string comment;
};
std::string PartsStatement(const std::string& head, const std::vector<ListPart>& parts);

/// A statement whose value is a text, kept letter by letter, in strings of at most a line.
std::string TextStatement(const std::string& head, std::string_view text);

/// "(A, B)"
std::string InParentheses(const std::vector<std::string>& items);

}  // namespace tool
