// Findings about the language: what was expected, and the very words that stand there.
#pragma once

#include "bsdl/findings.h"
#include "bsdl/reading.h"

#include <string>
#include <string_view>

namespace bscan::detail {

// A text in backquotes, cut when it is long.
std::string Quoted(std::string_view text);

// A mark such as `;` is missing behind a word.
void FindMissing(Reading& reading, Rule rule, const Word& last, std::string_view mark);

// A mark stands in the place of another one.
void FindInstead(Reading& reading, Rule rule, const Word& found, std::string_view mark);

// A word looks like another one that is meant.
void FindMisspelt(Reading& reading, const Word& word, std::string_view meant);

// No value stands behind the word that announces one.
void FindValueMissing(Reading& reading, const Word& last);

// A mark stands where none belongs.
void FindSurplus(Reading& reading, Rule rule, const Word& mark);

}  // namespace bscan::detail
