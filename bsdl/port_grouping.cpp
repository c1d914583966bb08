// Port groupings: differential pairs.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"
#include "bsdl/spelling.h"

namespace bscan::detail {
namespace {

constexpr std::string_view kVoltage = "Differential_Voltage";
constexpr std::string_view kCurrent = "Differential_Current";

class GroupingReader {
public:
    explicit GroupingReader(SourceReader& source) : reading_(source.reading), list_(source) {}

    void Read();

private:
    void ReadKind();
    bool AtKind() const;
    void TakeMark(char mark);
    void ReadPair();
    bool NextPair();
    void ReadPairs();

    Reading& reading_;
    ListReader list_;
    bool is_current_ = false;
    Word pair_end_;
};

bool IsKind(std::string_view word) {
    return EqualIgnoringCase(word, kVoltage) || EqualIgnoringCase(word, kCurrent) ||
           IsMisspelt(word, kVoltage) || IsMisspelt(word, kCurrent);
}

bool GroupingReader::AtKind() const {
    return list_.Current().IsWord() && IsKind(list_.Current().word.text);
}

void GroupingReader::ReadKind() {
    if (!list_.Current().IsWord()) {
        return FindMissing(reading_, Rule::kNameMissing, list_.Last(), kVoltage);
    }
    const Word word = list_.TakeWord();
    is_current_ = EqualIgnoringCase(word.text, kCurrent);
    if (is_current_ || EqualIgnoringCase(word.text, kVoltage)) return;
    is_current_ = IsMisspelt(word.text, kCurrent) && !IsMisspelt(word.text, kVoltage);
    FindMisspelt(reading_, word, is_current_ ? kCurrent : kVoltage);
}

// Takes a mark in front of a name. Another mark in its place, or the same once more, is a fault.
void GroupingReader::TakeMark(char mark) {
    if (!list_.Current().Is(mark) && list_.Current().kind == TokenKind::kSymbol &&
        list_.Next().IsWord()) {
        FindInstead(reading_, Rule::kMarkSurplus, list_.Current().word, {&mark, 1});
        return list_.Advance();
    }
    const Rule rule = mark == ',' ? Rule::kCommaMissing : Rule::kParenthesisMissing;
    if (!list_.Accept(mark)) return FindMissing(reading_, rule, list_.Last(), {&mark, 1});
    for (; list_.Current().Is(mark); list_.Advance()) {
        FindSurplus(reading_, Rule::kMarkSurplus, list_.Current().word);
    }
}

// "(A, B)", both with an index perhaps.
void GroupingReader::ReadPair() {
    PortPair pair;
    pair.is_current = is_current_;
    TakeMark('(');
    pair.positive = list_.TakeElement();
    if (pair.positive.index && list_.Current().Is(')') && list_.Next().Is(',')) {
        FindSurplus(reading_, Rule::kParenthesisSurplus, list_.Current().word);
        list_.Advance();
    }
    if (!list_.Current().Is(')')) TakeMark(',');
    pair.negative = list_.TakeElement();
    if (pair.positive.port.Exists() && pair.negative.port.Exists()) {
        reading_.facts.pairs.push_back(pair);
    } else {
        const Word& leg = pair.positive.port.Exists() ? pair.positive.port : pair.negative.port;
        reading_.found.Add(Rule::kPairLegMissing, leg.Exists() ? leg : list_.Last(),
                           "a pair names one port only", "write both ports of the pair");
    }
    list_.Expect(')', Rule::kParenthesisMissing);
    pair_end_ = list_.Last();
}

// Goes to the next pair of a group; false at the end of the group.
bool GroupingReader::NextPair() {
    const ValueToken& mark = list_.Current();
    if (mark.Is('(')) {
        FindMissing(reading_, Rule::kCommaMissing, list_.Last(), ",");
        return true;
    }
    if (mark.Is(')') && list_.Next().Is(',')) {
        ValueLexer ahead = list_.Ahead();
        ahead.Advance();
        if (!ahead.Next().Is('(')) return false;
        FindSurplus(reading_, Rule::kParenthesisSurplus, mark.word);
        list_.Advance();
    }
    if (mark.kind != TokenKind::kSymbol || mark.Is(')')) return false;
    if (!mark.Is(',')) FindInstead(reading_, Rule::kCommaMissing, mark.word, ",");
    list_.Advance();
    for (; list_.Current().Is(','); list_.Advance()) {
        FindSurplus(reading_, Rule::kCommaSurplus, list_.Current().word);
    }
    return list_.Current().Is('(') || (list_.Current().IsWord() && !AtKind());
}

// "((A, B), (C, D))"; a single pair may lack one pair of parentheses.
void GroupingReader::ReadPairs() {
    const bool nested = list_.Current().Is('(') && list_.Next().Is('(');
    if (nested) {
        list_.Advance();
    } else {
        FindMissing(reading_, Rule::kParenthesisMissing, list_.Last(), "(");
    }
    do {
        ReadPair();
    } while (NextPair());
    if (!list_.Accept(')') && nested) {
        FindMissing(reading_, Rule::kParenthesisMissing, pair_end_, ")");
    }
}

void GroupingReader::Read() {
    while (list_.NextEntry()) {
        ReadKind();
        ReadPairs();
        // The comma may have been taken for one between pairs.
        if (list_.Last().text != ",") list_.EndEntry();
    }
}

}  // namespace

void ReadPortGrouping(SourceReader& source, const Attribute&) { GroupingReader(source).Read(); }

}  // namespace bscan::detail
