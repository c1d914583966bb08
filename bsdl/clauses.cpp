// The generic and use clauses.

#include "bsdl/language.h"
#include "bsdl/source_reader.h"
#include "bsdl/spelling.h"

#include <algorithm>
#include <vector>

namespace bscan::detail {
namespace {

constexpr std::string_view kPinMapGeneric = "PHYSICAL_PIN_MAP";

void SkipQuote(SourceReader& source) {
    FindSurplus(source.reading, Rule::kQuoteSurplus, source.lexer.Current().word);
    source.lexer.Advance();
}

// The package between quotes, which may lack one.
void ReadDefault(SourceReader& source) {
    Lexer& lexer = source.lexer;
    Facts& facts = source.reading.facts;
    if (lexer.Current().IsWord()) {
        facts.default_package = TakeWord(lexer);
        const Word& package = facts.default_package;
        source.reading.found.Add(Rule::kStringNotOpened, package,
                                 "`\"` is missing before " + Quoted(package.text),
                                 "write `\"` before it");
        if (lexer.Current().kind == TokenKind::kQuote) lexer.Advance();
        return;
    }
    if (lexer.Rest().starts_with('"')) SkipQuote(source);
    const Word quote = lexer.Current().word;
    const std::string_view rest = lexer.Rest();
    std::size_t size = LineSize(rest);
    const std::size_t quote_at = rest.substr(0, size).find('"');
    const bool closed = quote_at != std::string_view::npos;
    size = std::min(quote_at, size);
    if (!closed) size = std::min(rest.find_first_of(");\r\n"), size);
    const std::string_view text = rest.substr(0, size);
    lexer.Skip(closed ? size + 1 : size);
    facts.default_package = {Trim(text), quote.line, quote.column + 1};
    if (!closed) {
        FindMissing(source.reading, Rule::kStringNotClosed, facts.default_package, "\"");
    }
    if (lexer.Current().kind == TokenKind::kQuote) SkipQuote(source);
}

// A generic that we do not know, up to the semicolon or parenthesis behind it.
void SkipGeneric(Lexer& lexer) {
    int depth = 0;
    for (; !lexer.Current().IsEnd() && !BeginsDeclaration(lexer); lexer.Advance()) {
        if (lexer.Current().Is('(')) ++depth;
        if (lexer.Current().Is(')') && --depth < 0) return;
        if (lexer.Current().Is(';')) return;
    }
}

void ReadOtherGeneric(SourceReader& source) {
    Lexer& lexer = source.lexer;
    const Word first = lexer.Current().word;
    SkipGeneric(lexer);
    const Word& last = lexer.Last();
    const auto size = last.text.data() + last.text.size() - first.text.data();
    if (size <= 0) return;
    source.reading.facts.other_generics.push_back(
        {{first.text.data(), static_cast<std::size_t>(size)}, first.line, first.column});
}

// Whether "NAME : TYPE" is another generic than that of the package.
bool IsOther(Lexer ahead) {
    if (!ahead.Current().IsWord() || Slips(ahead.Current().word.text, kPinMapGeneric)) return false;
    ahead.Advance();
    if (!ahead.Accept(':')) return false;
    return ahead.Current().IsWord() && !Slips(ahead.Current().word.text, "string");
}

void TakeName(SourceReader& source) {
    Word& generic = source.reading.facts.generic;
    generic = TakeWord(source.lexer);
    if (!generic.Exists()) {
        FindMissing(source.reading, Rule::kNameMissing, source.lexer.Last(), kPinMapGeneric);
    } else if (IsMisspelt(generic.text, kPinMapGeneric)) {
        FindMisspelt(source.reading, generic, kPinMapGeneric);
    }
}

// "NAME : string := "PACKAGE"", the default being optional.
void ReadGeneric(SourceReader& source) {
    Lexer& lexer = source.lexer;
    TakeName(source);
    ExpectMark(source, ':', Rule::kColonMissing);
    ExpectKeyword(source, "string");
    if (lexer.Current().Is(')')) return;
    ExpectAssignment(source);
    if (lexer.Current().kind == TokenKind::kQuote || lexer.Current().IsWord()) ReadDefault(source);
}

// The generics, of which only that of the package counts.
void ReadGenerics(SourceReader& source) {
    Lexer& lexer = source.lexer;
    for (; IsOther(lexer); lexer.Accept(';')) ReadOtherGeneric(source);
    ReadGeneric(source);
    Lexer ahead = lexer;
    if (ahead.Accept(';') && IsOther(ahead)) {
        lexer = ahead;
        for (; IsOther(lexer); lexer.Accept(';')) ReadOtherGeneric(source);
    }
}

void KeepUseClause(Reading& reading, const Word& package) {
    std::vector<Word>& clauses = reading.facts.use_clauses;
    const bool twice = std::any_of(clauses.begin(), clauses.end(), [&](const Word& other) {
        return EqualIgnoringCase(other.text, package.text);
    });
    if (!twice) return clauses.push_back(package);
    reading.found.Add(Rule::kSaidTwice, package, Quoted(package.text) + " is used already",
                      "leave one out");
}

}  // namespace

void ReadGenericClause(SourceReader& source) {
    Lexer& lexer = source.lexer;
    if (source.reading.facts.generic.Exists()) {
        source.reading.found.Add(Rule::kClauseTwice, lexer.Last(), "a second generic clause",
                                 "leave one out; the first counts");
        return SkipStatement(source);
    }
    ExpectMark(source, '(', Rule::kParenthesisMissing);
    ReadGenerics(source);
    ExpectMark(source, ')', Rule::kParenthesisMissing);
    EndStatement(source);
}

// "use PACKAGE.all;"
void ReadUseClause(SourceReader& source) {
    const Word package = TakeWord(source.lexer);
    if (package.Exists()) {
        KeepUseClause(source.reading, package);
        // Blanks around the dot.
        while (source.lexer.Current().IsWord() && !BeginsDeclaration(source.lexer)) {
            source.lexer.Advance();
        }
    } else {
        FindValueMissing(source.reading, source.lexer.Last());
    }
    EndStatement(source);
}

}  // namespace bscan::detail
