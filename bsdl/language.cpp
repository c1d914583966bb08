#include "bsdl/language.h"

#include "bsdl/lexer.h"
#include "support/text_view.h"

#include <functional>

namespace bscan::detail {
namespace {

constexpr std::size_t kLongest = 60;

// What stands in the line of a word up to its end; the word alone when it was put together from
// several pieces, and so is not in the text.
std::string_view LineThrough(const std::string& text, const Word& word) {
    const auto indent = static_cast<std::size_t>(word.column - 1);
    const char* const begin = word.text.data();
    const std::less<> before;
    const bool in_text = !before(begin, text.data()) && !before(text.data() + text.size(), begin);
    if (!in_text || static_cast<std::size_t>(begin - text.data()) < indent) return word.text;
    return Trim({begin - indent, indent + word.text.size()});
}

std::string_view LastPart(std::string_view text) {
    if (text.size() <= kLongest) return text;
    text.remove_prefix(text.size() - kLongest);
    const std::size_t blank = text.find(' ');
    return blank == std::string_view::npos ? text : TrimLeft(text.substr(blank));
}

}  // namespace

std::string Quoted(std::string_view text) {
    if (text.size() <= kLongest) return '`' + std::string(text) + '`';
    return '`' + std::string(text.substr(0, kLongest)) + "...`";
}

void FindMissing(Reading& reading, Rule rule, const Word& last, std::string_view mark) {
    const std::string behind = Quoted(LastPart(LineThrough(reading.text, last)));
    const std::string what = Quoted(mark);
    reading.found.Add(rule, Behind(last), what + " is missing behind " + behind,
                      "write " + what + " behind " + behind);
}

void FindInstead(Reading& reading, Rule rule, const Word& found, std::string_view mark) {
    reading.found.Add(rule, found,
                      Quoted(found.text) + " stands where " + Quoted(mark) + " belongs",
                      "write " + Quoted(mark));
}

void FindMisspelt(Reading& reading, const Word& word, std::string_view meant) {
    reading.found.Add(Rule::kWordMisspelt, word,
                      Quoted(word.text) + ": did you mean " + Quoted(meant) + "?",
                      "write " + Quoted(meant));
}

void FindValueMissing(Reading& reading, const Word& last) {
    reading.found.Add(Rule::kValueMissing, Behind(last),
                      "no value stands behind " + Quoted(LastPart(LineThrough(reading.text, last))),
                      "");
}

void FindSurplus(Reading& reading, Rule rule, const Word& mark) {
    reading.found.Add(rule, mark, Quoted(mark.text) + " stands where none belongs", "leave it out");
}

}  // namespace bscan::detail
