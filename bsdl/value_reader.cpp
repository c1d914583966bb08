// Values of attributes and constants, cut into pieces.

#include "bsdl/language.h"
#include "bsdl/source_reader.h"
#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::string_view FirstLine(std::string_view text) { return text.substr(0, LineSize(text)); }

std::string_view WithoutComment(std::string_view line) {
    return TrimRight(line.substr(0, std::min(line.find("--"), line.size())));
}

// Whether what follows a double quote in its line looks as if that quote closed a string.
bool FollowsString(std::string_view behind) {
    while (!behind.empty() && ClassOf(behind.front()) == CharacterClass::kBlank) {
        behind.remove_prefix(1);
    }
    if (behind.empty() || behind.starts_with("--")) return true;
    return ClassOf(behind.front()) == CharacterClass::kLineEnd || Contains("&;),", behind.front());
}

// Whether the text up to the next double quote is too much: "0 (BC_1, *, internal, X), & "1 (...
// lacks a quote before the `&`, and a quote in a comment is none.
bool LacksClosingQuote(std::string_view text, std::string_view behind) {
    if (FollowsString(behind)) return false;
    text = WithoutComment(text);
    return text.ends_with('&') || text.ends_with(';');
}

// Whether a string that is not closed in its line may go on in the text behind it.
bool GoesOn(const Lexer& behind) {
    const Token& next = behind.Current();
    if (next.kind == TokenKind::kQuote) return FollowsString(behind.Rest());
    return !next.IsEnd() && !next.Is(';') && !next.Is('&') && !BeginsDeclaration(behind);
}

bool IsQuoteNext(Lexer ahead) {
    ahead.Advance();
    return ahead.Current().kind == TokenKind::kQuote;
}

// The quote in one of the next lines that closes a string; kNone when a declaration comes first.
std::size_t FindClosingQuote(std::string_view text) {
    std::size_t at = FirstLine(text).size();
    while (at < text.size()) {
        const Lexer ahead(text.substr(at));
        if (ahead.Current().IsEnd() || BeginsDeclaration(ahead)) return kNone;
        at = static_cast<std::size_t>(ahead.Current().word.text.data() - text.data());
        at = std::min(text.find_first_of("\"\r\n", at), text.size());
        if (at < text.size() && text[at] == '"') return at;
    }
    return kNone;
}

class ValueReader {
public:
    explicit ValueReader(SourceReader& source)
        : reading_(source.reading), lexer_(source.lexer), value_(source.value) {}

    // Whether the statement has ended, though perhaps without a semicolon.
    bool Read();

private:
    bool AtEnd() const;
    bool AtQuote() const { return lexer_.Current().kind == TokenKind::kQuote; }
    void Advance();
    void TakeRemark();
    void ReadBracket();
    void SkipEntity(const Word& mark);
    void ReadJoint();
    void SkipSecondQuote();
    bool ReadTypographicString();
    void ReadString();
    void ReadOpenString();
    void ReadLines(std::size_t size);
    bool ReadUnopenedString();
    void ReadOutside();
    void FindOutside(const Word& word);
    void Append(std::string_view text, const Word& begin);

    Reading& reading_;
    Lexer& lexer_;
    Value& value_;
    bool has_bracket_ = false;  // one was opened before the string
    bool lacks_quote_ = false;  // the string before had no end
    bool breaks_off_ = false;   // after an `&`
    int open_ = 0;              // parentheses in a value that is no string
    int line_without_quote_ = 0;
};

// The end of the value is a semicolon, another mark in its place, or the next declaration.
bool ValueReader::AtEnd() const {
    const Token& token = lexer_.Current();
    if (token.IsEnd() || token.IsWord()) return token.IsEnd() || BeginsDeclaration(lexer_);
    if (!token.Is(';') && !token.Is(',') && !token.Is(':')) return false;
    // "(50.0e6; LOW)" goes on behind its semicolon.
    if (token.Is(';') && open_ <= 0) return true;
    Lexer ahead = lexer_;
    ahead.Advance();
    return ahead.Current().IsEnd() || BeginsDeclaration(ahead);
}

void ValueReader::TakeRemark() {
    const Word& comment = lexer_.Comment();
    if (value_.pieces.empty() || comment.line != value_.pieces.back().line) return;
    value_.pieces.back().remark = comment.text;
}

void ValueReader::Advance() {
    lexer_.Advance();
    TakeRemark();
}

void ValueReader::Append(std::string_view text, const Word& begin) {
    value_.pieces.push_back({text, begin.line, begin.column, true, true, {}});
}

// A string may stand in brackets, against the standard.
void ValueReader::ReadBracket() {
    if (!lexer_.Current().Is('(')) return;
    Lexer ahead = lexer_;
    ahead.Advance();
    if (ahead.Current().kind != TokenKind::kQuote) return;
    reading_.found.Add(Rule::kBracketsAroundString, lexer_.Current().word,
                       "the string stands in brackets", "write it without them");
    has_bracket_ = true;
    Advance();
}

// In `""0 (BC_1` a quote is too much.
void ValueReader::SkipSecondQuote() {
    const std::string_view rest = lexer_.Rest();
    if (!rest.starts_with('"') || rest.size() < 2 || !IsWordCharacter(rest[1])) return;
    FindSurplus(reading_, Rule::kQuoteSurplus, lexer_.Current().word);
    lexer_.Advance();
}

// A string in the quotes of a word processor; false when it is not closed in its line.
bool ValueReader::ReadTypographicString() {
    const Word quote = lexer_.Current().word;
    const std::string_view line = FirstLine(lexer_.Rest());
    const std::size_t stop = line.find(kClosingQuote);
    if (stop == kNone) return false;
    FindInstead(reading_, Rule::kQuoteTypographic, quote, "\"");
    const auto begin = quote.column + static_cast<int>(quote.text.size());
    Append(line.substr(0, stop), {{}, quote.line, begin});
    lexer_.SkipInLine(stop + kClosingQuote.size());
    TakeRemark();
    return true;
}

void ValueReader::ReadString() {
    SkipSecondQuote();
    const Word quote = lexer_.Current().word;
    if (quote.text.size() > 1 && ReadTypographicString()) return;
    const std::string_view rest = lexer_.Rest();
    const std::size_t stop = rest.find('"');
    const std::string_view text = rest.substr(0, stop);
    const bool closed = stop != kNone && !Contains(text, '\n') && !Contains(text, '\r') &&
                        !LacksClosingQuote(text, rest.substr(stop + 1));
    lacks_quote_ = !closed;
    if (!closed) return ReadOpenString();
    Append(text, {{}, quote.line, quote.column + 1});
    lexer_.SkipInLine(stop + 1);
    TakeRemark();
}

// A string without a quote at the end of its line. Either the quote is missing, or the string goes
// on in the next line.
void ValueReader::ReadOpenString() {
    const Word quote = lexer_.Current().word;
    const std::string_view line = FirstLine(lexer_.Rest());
    std::string_view text = WithoutComment(line);
    const Lexer ahead(lexer_.Rest().substr(line.size()));
    const bool last = ahead.Current().IsEnd() || BeginsDeclaration(ahead);
    if (text.ends_with('&') || (last && text.ends_with(';'))) {
        text = TrimRight(text.substr(0, text.size() - 1));
    } else if (GoesOn(ahead)) {
        const std::size_t end = FindClosingQuote(lexer_.Rest());
        if (end != kNone) return ReadLines(end);
    }
    const Word word{text, quote.line, quote.column + 1};
    Append(text, word);
    lexer_.Skip(text.size());
    TakeRemark();
    if (ahead.Current().IsEnd() && !lexer_.Current().Is(';')) {
        value_.doubtful = true;  // the text ends here, which is told with the statement
    } else {
        FindMissing(reading_, Rule::kStringNotClosed, word, "\"");
    }
}

// Reads a string whose end is in one of the next lines. Ends of lines are blanks.
void ValueReader::ReadLines(std::size_t size) {
    Word begin = lexer_.Current().word;
    reading_.found.Add(Rule::kStringNotClosed, begin,
                       "the string that begins with " + Quoted(FirstLine(lexer_.Rest())) +
                           " is not closed in its line",
                       "close it in its line and join the next line with `&`");
    ++begin.column;
    std::string_view text = lexer_.Rest().substr(0, size);
    lexer_.Skip(size + 1);
    for (;;) {
        const std::string_view line = FirstLine(text);
        Append(line, begin);
        text.remove_prefix(line.size());
        if (text.empty()) break;
        value_.pieces.back().joins_next = false;
        text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);
        begin = {{}, begin.line + 1, 1};
    }
    TakeRemark();
}

// In "&amp;", as texts from the web have it, the `&` alone is meant.
void ValueReader::SkipEntity(const Word& mark) {
    Lexer ahead = lexer_;
    if (!ahead.Accept("amp") || !ahead.Current().Is(';')) return;
    FindInstead(reading_, Rule::kMarkSurplus, {{mark.text.data(), 5}, mark.line, mark.column}, "&");
    lexer_ = ahead;
    Advance();
}

// After a string: an `&` and another string, or the end of the value.
void ValueReader::ReadJoint() {
    // In `X),"" &` a quote is too much.
    if (AtQuote() && !lacks_quote_ && FollowsString(lexer_.Rest())) {
        FindSurplus(reading_, Rule::kQuoteSurplus, lexer_.Current().word);
        Advance();
    }
    if (has_bracket_ && lexer_.Current().Is(')')) Advance();
    const Word mark = lexer_.Current().word;
    if (lexer_.Current().Is(';') && IsQuoteNext(lexer_)) {
        FindInstead(reading_, Rule::kAmpersandMissing, mark, "&");
        return Advance();
    }
    if (!lexer_.Current().Is('&')) {
        if (AtQuote() && !lacks_quote_) {
            FindMissing(reading_, Rule::kAmpersandMissing, lexer_.Last(), "&");
        }
        return;
    }
    Advance();
    SkipEntity(mark);
    while (lexer_.Current().Is('&')) {
        FindSurplus(reading_, Rule::kAmpersandSurplus, lexer_.Current().word);
        Advance();
    }
    if (!AtEnd()) return;
    if (lexer_.Current().IsEnd()) return;  // the end of the statement tells
    breaks_off_ = true;
    reading_.found.Add(Rule::kAmpersandSurplus, mark, "nothing follows the last `&` of the value",
                       "write `;` instead");
    value_.doubtful = !lexer_.Current().Is(';');
}

// Reads text up to a quote that looks as if it closed a string; false when there is no such quote
// in the line.
bool ValueReader::ReadUnopenedString() {
    Word begin = lexer_.Current().word;
    if (begin.line == line_without_quote_) return false;
    const char* const rest = lexer_.Rest().data();
    const std::string_view line =
        FirstLine({begin.text.data(), begin.text.size() + lexer_.Rest().size()});
    const std::size_t quote = line.find('"');
    if (quote == kNone) line_without_quote_ = begin.line;
    if (quote == kNone || !FollowsString(line.substr(quote + 1))) return false;
    std::string_view text = line.substr(0, quote);
    if (Contains(text, "--") || Contains(text, ';') || Contains(text, '&')) return false;
    if (text.starts_with('\'')) {
        FindInstead(reading_, Rule::kStringNotOpened, {text.substr(0, 1), begin.line, begin.column},
                    "\"");
        text.remove_prefix(1);
        ++begin.column;
    } else {
        reading_.found.Add(Rule::kStringNotOpened, begin, "`\"` is missing before " + Quoted(text),
                           "write `\"` before it");
    }
    value_.quoted = true;
    Append(text, begin);
    lexer_.Skip(static_cast<std::size_t>(line.data() + quote + 1 - rest));
    TakeRemark();
    return true;
}

// Reads words without quotes, up to the end of their line: a value that is no string, or words that
// a string lost.
void ValueReader::ReadOutside() {
    const Word begin = lexer_.Current().word;
    if (value_.quoted) FindOutside(begin);
    const char* end = begin.text.data();
    while (!AtEnd() && !AtQuote() && lexer_.Current().word.line == begin.line) {
        if (value_.quoted && lexer_.Current().Is('&')) break;
        end = lexer_.Current().word.text.data() + lexer_.Current().word.text.size();
        if (!value_.quoted && lexer_.Current().Is('(')) ++open_;
        if (!value_.quoted && lexer_.Current().Is(')')) --open_;
        lexer_.Advance();
    }
    Append({begin.text.data(), static_cast<std::size_t>(end - begin.text.data())}, begin);
    value_.pieces.back().joins_next = false;
    TakeRemark();
    if (value_.quoted && lexer_.Current().Is('&')) Advance();
}

void ValueReader::FindOutside(const Word& word) {
    reading_.found.Add(Rule::kTextOutsideString, word,
                       Quoted(word.text) + " stands outside the string", "write it in the quotes");
    if (ClassOf(word.text[0]) != CharacterClass::kSymbol) value_.doubtful = true;
}

bool ValueReader::Read() {
    value_.Clear();
    value_.begin = lexer_.Current().word;
    ReadBracket();
    value_.quoted = AtQuote();
    while (!AtEnd()) {
        if (AtQuote()) {
            ReadString();
            ReadJoint();
        } else if (ReadUnopenedString()) {
            ReadJoint();
        } else {
            ReadOutside();
        }
    }
    return breaks_off_;
}

}  // namespace

bool ReadValue(SourceReader& source) {
    const Word behind = source.lexer.Last();
    const bool breaks_off = ValueReader(source).Read();
    std::vector<Piece>& pieces = source.value.pieces;
    if (pieces.empty()) {
        FindValueMissing(source.reading, behind);
        source.lexer.Accept(';');
        return false;
    }
    if (breaks_off && !source.lexer.Current().Is(';')) return true;
    if (source.lexer.Current().IsEnd()) source.value.doubtful = true;
    EndStatement(source);
    const Word& comment = source.lexer.Comment();
    if (comment.line == pieces.back().line) pieces.back().remark = comment.text;
    return true;
}

}  // namespace bscan::detail
