#include "bsdl/port_range.h"

#include <bscan/limits.h>

#include "bsdl/language.h"
#include "bsdl/number.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace bscan::detail {
namespace {

struct RangeWords {
    std::string_view left, direction, right;

    std::string With(std::string_view other_direction) const {
        return Quoted(
            std::string(left).append(" ").append(other_direction).append(" ").append(right));
    }
};

// Cuts "0 to 3" and also "0to3" into its words.
RangeWords CutRange(std::string_view text) {
    const auto stop = std::find_if_not(text.begin(), text.end(), IsDigit);
    const auto left = static_cast<std::size_t>(stop - text.begin());
    const std::string_view rest = text.substr(left);
    const std::size_t right = std::min(rest.find_last_not_of("0123456789") + 1, rest.size());
    return {text.substr(0, left), Trim(rest.substr(0, right)), rest.substr(right)};
}

// The range in words that have one blank between them.
void ParseRange(SourceReader& source, Port& port, const Word& first, std::string_view words) {
    Reading& reading = source.reading;
    const RangeWords cut = CutRange(words);
    const auto left = ParseInteger(cut.left);
    const auto right = ParseInteger(cut.right);
    const bool up = EqualIgnoringCase(cut.direction, "to");
    const bool down = EqualIgnoringCase(cut.direction, "downto");
    if (!left || !right || std::abs(*left - *right) >= kMaxPortElements) {
        reading.found.Add(Rule::kRangeMalformed, first, Quoted(words) + " is no range",
                          "write it as `0 to 7` or `7 downto 0`");
        const bool lacks_end = (up || down) && left.has_value() != right.has_value();
        source.lost_ranges.push_back({port.name, left, right, down, lacks_end});
        return;
    }
    port.range = IndexRange{*left, *right};
    const bool blanks = std::count(words.begin(), words.end(), ' ') == 2;
    const std::string_view meant = *left > *right ? "downto" : "to";
    if (!up && !down) {
        reading.found.Add(Rule::kRangeMalformed, first, Quoted(words) + " is no range",
                          "write " + cut.With(meant));
    } else if (up ? *left > *right : *left < *right) {
        reading.found.Add(Rule::kRangeReversed, first, Quoted(words) + " points the wrong way",
                          "write " + cut.With(meant));
    } else if (!blanks) {
        reading.found.Add(Rule::kBlankMissing, first, "blanks are missing in " + Quoted(words),
                          "write " + cut.With(cut.direction));
    }
}

// Whether a `)` in another line ends the port clause rather than a range.
bool EndsClause(const Lexer& lexer) {
    if (lexer.Current().word.line == lexer.Last().line) return false;
    Lexer ahead = lexer;
    ahead.Advance();
    if (ahead.Current().Is(';')) ahead.Advance();
    return BeginsDeclaration(ahead);
}

// Whether words are a range as a whole: "0 to 7", "0to7".
bool IsComplete(std::string_view words) {
    const RangeWords cut = CutRange(words);
    return !cut.left.empty() && !cut.direction.empty() && !cut.right.empty();
}

// Whether a word belongs to the range, which may go on in the next line.
bool Continues(const Lexer& lexer, std::string_view words) {
    if (!lexer.Current().IsWord() || IsComplete(words)) return false;
    if (lexer.Current().word.line == lexer.Last().line) return true;
    Lexer ahead = lexer;
    ahead.Advance();
    return ahead.Current().IsWord() || ahead.Current().Is(')');
}

// The number of pins that the first map gives a port; 0 for none.
int CountPins(const Facts& facts, std::string_view port) {
    if (facts.pin_maps.empty()) return 0;
    for (const PinMapEntry& entry : facts.pin_maps.front().entries) {
        if (!EqualIgnoringCase(entry.port.port.text, port) || entry.port.index) continue;
        return static_cast<int>(entry.pins.size());
    }
    return 0;
}

}  // namespace

void ReadPortRange(SourceReader& source, Port& port, std::string_view digits) {
    Lexer& lexer = source.lexer;
    for (; lexer.Current().Is('('); lexer.Advance()) {
        FindSurplus(source.reading, Rule::kParenthesisSurplus, lexer.Current().word);
    }
    const Word first = lexer.Current().word;
    std::string words(digits);
    while (Continues(lexer, words)) {
        words.append(words.empty() ? "" : " ").append(TakeWord(lexer).text);
    }
    ParseRange(source, port, first, words);
    if (lexer.Current().Is(']') || (lexer.Current().Is(')') && !EndsClause(lexer))) {
        lexer.Advance();
    } else {
        FindMissing(source.reading, Rule::kParenthesisMissing, lexer.Last(), ")");
    }
}

void RestoreRanges(SourceReader& source) {
    Facts& facts = source.reading.facts;
    for (const LostRange& lost : source.lost_ranges) {
        const int steps = CountPins(facts, lost.port.text) - 1;
        const int number = source.ports.names.Find(lost.port.text);
        if (number < 0 || steps < 0 || !lost.lacks_end) {
            source.reading.doubts.ports = true;
            continue;
        }
        const int left = lost.left.value_or(lost.right.value_or(0) + (lost.down ? steps : -steps));
        const int right = lost.right.value_or(left + (lost.down ? -steps : steps));
        facts.ports[static_cast<std::size_t>(number)].range = IndexRange{left, right};
    }
}

}  // namespace bscan::detail
