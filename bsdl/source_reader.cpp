#include "bsdl/source_reader.h"

#include "bsdl/language.h"
#include "bsdl/spelling.h"

#include <utility>

namespace bscan::detail {
namespace {

// "end;" or "end NAME;", also without the semicolon at the end of the text.
bool FollowsAsEnd(Lexer ahead) {
    ahead.Advance();
    if (ahead.Current().IsWord()) ahead.Advance();
    return ahead.Current().Is(';') || ahead.Current().IsEnd();
}

// "ANY X of": whatever the first word was meant to be, an attribute is set here.
bool IsAttribute(Lexer ahead) {
    ahead.Advance();
    if (!ahead.Current().IsWord()) return false;
    ahead.Advance();
    return ahead.Current().Is("of");
}

bool IsAssignment(Lexer ahead) {
    if (!ahead.Accept(':')) return false;
    return ahead.Current().Is('=');
}

}  // namespace

bool BeginsDeclaration(const Lexer& lexer) {
    const Token& token = lexer.Current();
    if (!token.IsWord()) return false;
    Lexer ahead = lexer;
    ahead.Advance();
    const Token& next = ahead.Current();
    if (token.Is("port") || token.Is("generic")) return next.Is('(');
    if (token.Is("end")) return lexer.BeginsLine() && FollowsAsEnd(lexer);
    if (!next.IsWord()) return false;
    if (token.Is("attribute") || token.Is("constant")) return true;
    if (token.Is("use")) return lexer.BeginsLine();
    return IsAttribute(lexer);
}

void SkipStatement(SourceReader& source) {
    Lexer& lexer = source.lexer;
    while (!lexer.Current().IsEnd() && !lexer.Current().Is(';') && !BeginsDeclaration(lexer)) {
        lexer.Advance();
    }
    lexer.Accept(';');
}

void SkipUnknown(SourceReader& source) {
    const Word word = source.lexer.Current().word;
    source.reading.found.Add(Rule::kStatementUnknown, word,
                             Quoted(word.text) + " begins no declaration",
                             "remove it, or put the words before it that are missing");
    source.reading.doubts.statements = true;
    if (!source.lexer.Current().Is(';')) source.lexer.Advance();
    SkipStatement(source);
}

std::string_view TextBehind(const Word& word, const Lexer& lexer) {
    const char* const begin = word.text.data() + word.text.size();
    const char* const end = lexer.Last().text.data();
    return end < begin ? std::string_view()
                       : std::string_view(begin, static_cast<std::size_t>(end - begin));
}

void FindTextEnd(SourceReader& source) {
    if (std::exchange(source.text_ended, true)) return;
    source.reading.found.EndText(source.lexer.Last());
    source.reading.doubts.statements = true;
}

void EndStatement(SourceReader& source) {
    if (source.lexer.Current().IsEnd()) return FindTextEnd(source);
    ExpectMark(source, ';', Rule::kSemicolonMissing);
}

Word TakeWord(Lexer& lexer) {
    if (!lexer.Current().IsWord()) return {};
    const Word word = lexer.Current().word;
    lexer.Advance();
    return word;
}

void ExpectMark(SourceReader& source, char mark, Rule rule) {
    Lexer& lexer = source.lexer;
    if (lexer.Accept(mark)) {
        for (; mark != ';' && lexer.Current().Is(mark); lexer.Advance()) {
            if (IsAssignment(lexer)) return;
            FindSurplus(source.reading, Rule::kMarkSurplus, lexer.Current().word);
        }
        return;
    }
    const Token& token = lexer.Current();
    const bool other = mark == ';'   ? token.Is(':') || token.Is(',')
                       : mark == ':' ? token.Is(';') || token.Is('=')
                                     : false;
    if (!other) return FindMissing(source.reading, rule, lexer.Last(), {&mark, 1});
    FindInstead(source.reading, rule, token.word, {&mark, 1});
    lexer.Advance();
}

void ExpectAssignment(SourceReader& source) {
    Lexer& lexer = source.lexer;
    const Word behind = lexer.Last();
    const Token first = lexer.Current();
    Lexer ahead = lexer;
    ahead.Advance();
    const Token second = ahead.Current();
    const bool two = (first.Is(':') || first.Is(';')) && (second.Is('=') || second.Is(':'));
    if (!two && !first.Is(':') && !first.Is('=') && !first.Is("is")) {
        return FindMissing(source.reading, Rule::kColonMissing, behind, ":=");
    }
    lexer.Advance();
    if (two) lexer.Advance();
    const bool surplus = lexer.Current().Is('=') || lexer.Current().Is(':');
    if (first.Is(':') && second.Is('=') && !surplus) return;
    if (surplus) lexer.Advance();
    FindInstead(source.reading, Rule::kColonMissing, first.word, ":=");
}

void ExpectKeyword(SourceReader& source, std::string_view keyword) {
    Lexer& lexer = source.lexer;
    if (lexer.Accept(keyword)) return;
    const Token token = lexer.Current();
    if (token.IsWord() && IsMisspelt(token.word.text, keyword)) {
        FindMisspelt(source.reading, token.word, keyword);
        lexer.Advance();
    } else {
        FindMissing(source.reading, Rule::kKeywordMissing, lexer.Last(), keyword);
    }
}

bool SaidBefore::Add(Reading& reading, const Word& name, std::string_view key,
                     std::string_view said, Rule other_words) {
    if (names.Add(key)) {
        words.push_back(said);
        return true;
    }
    const auto number = static_cast<std::size_t>(names.Find(key));
    const bool same = words[number] == said;
    reading.found.Add(same ? Rule::kSaidTwice : other_words, name,
                      Quoted(name.text) + (same ? " is said twice, in the same words"
                                                : " is said twice, in other words"),
                      same ? "leave one out" : "leave the wrong one out; the first counts");
    return false;
}

}  // namespace bscan::detail
