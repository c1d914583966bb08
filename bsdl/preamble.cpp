// What stands before the entity, and the line that begins it.

#include "bsdl/language.h"
#include "bsdl/source_reader.h"
#include "bsdl/spelling.h"

#include <utility>
#include <vector>

namespace bscan::detail {
namespace {

struct Preamble {
    Word text;  // the first word that neither belongs to a package nor to a use clause
    std::vector<Word> use_clauses;
    std::vector<Word> packages;
};

Token TokenBehind(Lexer lexer, int count) {
    for (; count > 0; --count) lexer.Advance();
    return lexer.Current();
}

// "entity is generic".
bool LacksName(const Lexer& lexer) {
    return lexer.Current().Is("entity") && TokenBehind(lexer, 1).Is("is") &&
           TokenBehind(lexer, 2).Is("generic");
}

// "entity NAME is", or "entity NAME generic (" without the keyword between.
bool BeginsEntity(const Lexer& lexer) {
    if (!lexer.Current().Is("entity") || !TokenBehind(lexer, 1).IsWord()) return false;
    const Token third = TokenBehind(lexer, 2);
    if (LacksName(lexer)) return true;
    return third.Is("is") ||
           (lexer.BeginsLine() && (third.Is("generic") || third.Is("port") ||
                                   (third.IsWord() && IsMisspelt(third.word.text, "is") &&
                                    TokenBehind(lexer, 3).Is("generic"))));
}

// "entiy NAME is", or "NAME is generic (" without the keyword before.
bool LooksLikeEntity(const Lexer& lexer) {
    if (!lexer.Current().IsWord() || !lexer.BeginsLine()) return false;
    if (TokenBehind(lexer, 1).Is("is")) return TokenBehind(lexer, 2).Is("generic");
    return IsMisspelt(lexer.Current().word.text, "entity") && TokenBehind(lexer, 1).IsWord() &&
           TokenBehind(lexer, 2).Is("is");
}

// "package NAME is ... end NAME;", and the same with "package body".
Word TakePackage(Lexer& lexer) {
    Word package = lexer.Current().word;
    while (!lexer.Current().IsEnd() && !lexer.Current().Is("end")) lexer.Advance();
    while (!lexer.Current().IsEnd() && !lexer.Current().Is(';')) lexer.Advance();
    lexer.Accept(';');
    const Word& last = lexer.Last();
    package.text = {
        package.text.data(),
        static_cast<std::size_t>(last.text.data() + last.text.size() - package.text.data())};
    return package;
}

bool BeginsPackage(const Lexer& lexer) {
    return lexer.Current().Is("package") && lexer.BeginsLine() && TokenBehind(lexer, 1).IsWord();
}

void Step(Lexer& lexer, Preamble& preamble) {
    if (BeginsPackage(lexer)) return preamble.packages.push_back(TakePackage(lexer));
    if (lexer.Current().Is("use") && TokenBehind(lexer, 2).Is(';')) {
        lexer.Advance();
        preamble.use_clauses.push_back(lexer.Current().word);
        lexer.Advance();
    } else if (lexer.Current().Is("library") && TokenBehind(lexer, 2).Is(';')) {
        lexer.Advance();
        lexer.Advance();
    } else if (!preamble.text.Exists()) {
        preamble.text = lexer.Current().word;
    }
    lexer.Advance();
}

Preamble FindEntity(Lexer& lexer) {
    const Lexer begin = lexer;
    for (const auto begins : {BeginsEntity, LooksLikeEntity}) {
        Preamble preamble;
        for (lexer = begin; !lexer.Current().IsEnd(); Step(lexer, preamble)) {
            if (begins(lexer)) return preamble;
        }
    }
    return {};
}

void ReadEntityHead(SourceReader& source) {
    Lexer& lexer = source.lexer;
    const Word first = lexer.Current().word;
    if (LacksName(lexer)) {
        source.reading.found.Add(Rule::kNameMissing, Behind(first), "the entity has no name",
                                 "write it behind `entity`");
        lexer.Advance();
        lexer.Advance();
        return;
    }
    if (TokenBehind(lexer, 1).Is("is")) {
        source.reading.found.Add(Rule::kKeywordMissing, first,
                                 "`entity` is missing before " + Quoted(first.text),
                                 "write `entity` before it");
    } else {
        if (!lexer.Current().Is("entity")) FindMisspelt(source.reading, first, "entity");
        lexer.Advance();
    }
    source.reading.facts.entity = TakeWord(lexer);
    ExpectKeyword(source, "is");
}

}  // namespace

bool ReadPreamble(SourceReader& source) {
    Lexer& lexer = source.lexer;
    Reading& reading = source.reading;
    Preamble preamble = FindEntity(lexer);
    if (lexer.Current().IsEnd()) return false;
    const char* const begin = lexer.Current().word.text.data();
    reading.facts.preamble = {reading.text.data(),
                              static_cast<std::size_t>(begin - reading.text.data())};
    if (preamble.text.Exists()) {
        reading.found.Add(Rule::kTextBeforeEntity, preamble.text,
                          "text without `--` stands before the entity", "write `--` before it");
    }
    for (const Word& use : preamble.use_clauses) {
        reading.found.Add(Rule::kUseBeforeEntity, use,
                          "the use clause of " + Quoted(use.text) + " stands before the entity",
                          "write it behind the port clause");
        reading.facts.use_clauses.push_back(use);
    }
    reading.facts.packages = std::move(preamble.packages);
    ReadEntityHead(source);
    return true;
}

// Packages, and what they need, may follow the entity.
void ReadBehindEntity(SourceReader& source) {
    Lexer& lexer = source.lexer;
    while (BeginsPackage(lexer) || lexer.Current().Is("use") || lexer.Current().Is("library")) {
        if (lexer.Current().Is("package")) {
            source.reading.facts.packages.push_back(TakePackage(lexer));
        } else {
            SkipStatement(source);
        }
    }
    if (lexer.Current().IsEnd()) return;
    const Word word = lexer.Current().word;
    if (BeginsEntity(lexer)) {
        source.reading.found.Add(Rule::kSecondEntity, TokenBehind(lexer, 1).word,
                                 "a second entity, " + Quoted(TokenBehind(lexer, 1).word.text),
                                 "put it into a file of its own; the first counts");
    } else {
        source.reading.found.Add(Rule::kTextBehindEnd, word,
                                 Quoted(word.text) + " stands behind the end of the entity",
                                 "remove it, or write `--` before it");
    }
}

}  // namespace bscan::detail
