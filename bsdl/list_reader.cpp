#include "bsdl/list_reader.h"

#include "bsdl/language.h"
#include "bsdl/number.h"

#include <algorithm>
#include <string>
#include <utility>

namespace bscan::detail {
ListReader::ListReader(SourceReader& source)
    : reading_(source.reading),
      ports_(source.ports.names),
      doubtful_(source.value.doubtful),
      lexer_(source.value, source.reading.joined, comments_) {}

ListReader::~ListReader() {
    reading_.found.EndEntry(Last());
    for (const Word& comment : comments_) {
        reading_.found.Add(
            Rule::kCommentInString, comment,
            Quoted(comment.text) + " stands in a string, where there are no comments",
            "write it behind the quote");
    }
}

bool ListReader::NextEntry() {
    for (;;) {
        if (AtEnd()) return false;
        if (Current().IsWord() || Current().Is('(') || Current().Is(':')) {
            reading_.found.BeginEntry(Current().word);
            return true;
        }
        const bool comma = Current().Is(',');
        FindSurplus(reading_, comma ? Rule::kCommaSurplus : Rule::kMarkSurplus, Current().word);
        Advance();
    }
}

void ListReader::EndEntry() {
    if (AtEnd() && doubtful_) reading_.found.DoubtEntry();
    reading_.found.EndEntry(Last());
    if (std::exchange(comma_taken_, false)) return;
    if (Current().Is(')')) {
        FindSurplus(reading_, Rule::kParenthesisSurplus, Current().word);
        Advance();
    }
    if (AtEnd()) return;
    if (!Current().Is(',')) return Expect(',', Rule::kCommaMissing);
    const Word comma = Current().word;
    Advance();
    if (AtEnd() && !doubtful_) FindSurplus(reading_, Rule::kCommaSurplus, comma);
}

bool ListReader::IsNewEntry(std::string_view entry_marks) const {
    return Current().IsWord() && Next().kind == TokenKind::kSymbol &&
           Contains(entry_marks, Next().word.text[0]);
}

bool ListReader::NextItem(std::string_view entry_marks) {
    item_ = Last();
    if (AtEnd() || Current().Is(')')) return false;
    if (!Current().Is(',')) {
        if (IsNewEntry(entry_marks)) return false;
        if (Current().IsWord() || ReplacesMark(',')) {
            Expect(',', Rule::kCommaMissing);
        } else {
            FindSurplus(reading_, Rule::kMarkSurplus, Current().word);
            Advance();
        }
        return !AtEnd() && !Current().Is(')');
    }
    Advance();
    for (; Current().Is(','); Advance()) {
        FindSurplus(reading_, Rule::kCommaSurplus, Current().word);
    }
    if (Current().Is(')')) {
        FindSurplus(reading_, Rule::kCommaSurplus, Last());
        return false;
    }
    comma_taken_ = AtEnd() || IsNewEntry(entry_marks);
    return !comma_taken_;
}

// Whether another mark, which means nothing here, stands in the place of one.
bool ListReader::ReplacesMark(char mark) const {
    if (Current().kind != TokenKind::kSymbol) return false;
    const char found = Current().word.text[0];
    if (mark == '(') return found == '[' || found == ':';
    if (mark == ')') return found == ']' || found == ':';
    if (mark == '[' || mark == ']') return mark == ']' && found == ')';
    return Contains(";=:&.", found);
}

void ListReader::Expect(char mark, Rule rule) {
    if (Accept(mark)) {
        for (; mark != '(' && mark != ')' && Current().Is(mark); Advance()) {
            FindSurplus(reading_, Rule::kMarkSurplus, Current().word);
        }
        return;
    }
    if (!ReplacesMark(mark)) return FindMissing(reading_, rule, Last(), {&mark, 1});
    FindInstead(reading_, rule, Current().word, {&mark, 1});
    opened_square_ = mark == '(' && Current().Is('[');
    Advance();
}

void ListReader::Open() {
    Expect('(', Rule::kParenthesisMissing);
    opened_twice_ = Current().Is('(');
    if (!opened_twice_) return;
    FindSurplus(reading_, Rule::kParenthesisSurplus, Current().word);
    Advance();
}

void ListReader::Close() {
    if (Current().Is(')') || (opened_square_ && Current().Is(']'))) {
        Advance();
        if (opened_twice_) Accept(')');
    } else if (ReplacesMark(')')) {
        Expect(')', Rule::kParenthesisMissing);
    } else if (!AtEnd() || !doubtful_) {
        FindMissing(reading_, Rule::kParenthesisMissing, item_.Exists() ? item_ : Last(), ")");
    }
    item_ = {};
    opened_twice_ = false;
    opened_square_ = false;
}

Word ListReader::TakeWord() {
    if (!Current().IsWord()) return {};
    const Word word = Current().word;
    Advance();
    return word;
}

std::optional<int> ListReader::TakeInteger() {
    const Word word = TakeWord();
    if (!word.Exists()) return {};
    const std::optional<int> value = ParseInteger(word.text);
    if (!value) {
        reading_.found.Add(Rule::kNumberMalformed, word, Quoted(word.text) + " is no number");
    }
    return value;
}

// "A3)" lost its parenthesis: the name ends where that of a port does.
bool ListReader::CutIndex(ElementName& element) {
    const std::string_view name = element.port.text;
    if (ports_.Contains(name)) return false;
    for (std::size_t size = name.size(); size > 1 && IsDigit(name[size - 1]);) {
        if (!ports_.Contains(name.substr(0, --size))) continue;
        element.index = ParseInteger(name.substr(size));
        element.port.text = name.substr(0, size);
        FindMissing(reading_, Rule::kParenthesisMissing, element.port, "(");
        return true;
    }
    return false;
}

ElementName ListReader::TakeElement() {
    ElementName element{TakeWord(), {}};
    if (Current().Is(')') && CutIndex(element)) Advance();
    if (!Current().Is('(') && !Current().Is('[')) return element;
    Expect('(', Rule::kParenthesisMissing);
    for (; Current().Is('('); Advance()) {
        FindSurplus(reading_, Rule::kParenthesisSurplus, Current().word);
    }
    element.index = TakeInteger();
    item_ = Last();
    Close();
    return element;
}

// Behind the bits that a register captures, its power domain may be named.
bool ListReader::BitsGoOn() const { return Current().IsWord() && !Current().Is("DOMAIN"); }

Word ListReader::TakeBits(int length) {
    Word bits = TakeWord();
    // The next word is a row of its own, which lacks a comma, when this one is complete.
    if (length > 0 && bits.text.size() == static_cast<std::size_t>(length)) return bits;
    if (!BitsGoOn() && !Contains(bits.text, '_')) return bits;
    if (BitsGoOn()) {
        reading_.found.Add(Rule::kBlankInBits, Behind(bits),
                           "there is a blank behind " + Quoted(bits.text), "leave it out");
    }
    std::string& joined = reading_.joined.emplace_back(bits.text);
    for (; BitsGoOn(); Advance()) joined += Current().word.text;
    std::erase(joined, '_');
    bits.text = joined;
    return bits;
}

void ListReader::ExpectEnd() {
    if (AtEnd()) return;
    reading_.found.Add(Rule::kTextSurplus, Current().word,
                       Quoted(Current().word.text) + " stands behind the value", "leave it out");
}

}  // namespace bscan::detail
