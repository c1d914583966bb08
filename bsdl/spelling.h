// Words that were meant to be others.
#pragma once

#include <optional>
#include <string_view>

namespace bscan::detail {

// How many slips make one word of another: a character that is wrong, missing or too many, or two
// that changed places. Nothing when the words have little in common: more than one slip, or two in
// a word of eight characters or more. Letter case does not matter.
std::optional<int> Slips(std::string_view word, std::string_view meant);

// Whether a word looks like another one that was mistyped; equal words are no mistake.
bool IsMisspelt(std::string_view word, std::string_view meant);

}  // namespace bscan::detail
