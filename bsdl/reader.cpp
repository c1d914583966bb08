// A text from its first word to its last: the entity, and what stands around it.

#include "bsdl/language.h"
#include "bsdl/port_range.h"
#include "bsdl/source_reader.h"
#include "bsdl/spelling.h"

#include <algorithm>
#include <string>

namespace bscan::detail {
namespace {

struct ClauseRow {
    std::string_view keyword;
    void (*read)(SourceReader&);
};

constexpr ClauseRow kClauses[] = {
    {"attribute", ReadAttribute},   {"constant", ReadConstant}, {"use", ReadUseClause},
    {"generic", ReadGenericClause}, {"port", ReadPortClause},   {"end", nullptr},
};
constexpr const ClauseRow& kAttribute = kClauses[0];
constexpr const ClauseRow& kConstant = kClauses[1];

const ClauseRow* FindClause(const Token& token) {
    for (const ClauseRow& row : kClauses) {
        if (token.Is(row.keyword)) return &row;
    }
    return nullptr;
}

// The tokens from the current one on.
struct Outlook {
    explicit Outlook(Lexer lexer) {
        for (Token& token : tokens) {
            token = lexer.Current();
            lexer.Advance();
        }
    }
    Token tokens[4];
};

// Whether the words behind a keyword are those of a clause.
bool FitsClause(const Outlook& outlook, std::string_view keyword) {
    const Token& next = outlook.tokens[1];
    if (keyword == "attribute") return next.IsWord() && outlook.tokens[2].Is("of");
    if (keyword == "constant") return next.IsWord() && outlook.tokens[2].Is(':');
    if (keyword == "end") return next.Is(';') || (next.IsWord() && outlook.tokens[2].Is(';'));
    if (keyword == "use") return next.IsWord() && outlook.tokens[2].Is(';');
    return next.Is('(');
}

const ClauseRow* FindMisspeltClause(SourceReader& source, const Outlook& outlook) {
    const Word& word = outlook.tokens[0].word;
    if (!outlook.tokens[0].IsWord()) return nullptr;
    for (const ClauseRow& row : kClauses) {
        // Before "X of" stands nothing but an attribute, however it is written.
        if (!FitsClause(outlook, row.keyword)) continue;
        if (!IsMisspelt(word.text, row.keyword) && row.read != ReadAttribute) continue;
        FindMisspelt(source.reading, word, row.keyword);
        return &row;
    }
    return nullptr;
}

void FindKeywordMissing(SourceReader& source, std::string_view keyword) {
    const Word word = source.lexer.Current().word;
    source.reading.found.Add(Rule::kKeywordMissing, word,
                             Quoted(keyword) + " is missing before " + Quoted(word.text),
                             "write " + Quoted(keyword) + " before it");
}

// A statement that lost its keyword; false when it does not look like one.
bool ReadWithoutKeyword(SourceReader& source, const Outlook& outlook) {
    const Token& first = outlook.tokens[0];
    const Token& second = outlook.tokens[1];
    if (first.IsWord() && second.Is("of")) {
        FindKeywordMissing(source, kAttribute.keyword);
        ReadAttribute(source);
    } else if (first.IsWord() && second.Is(':') && outlook.tokens[2].Is("PIN_MAP_STRING")) {
        FindKeywordMissing(source, kConstant.keyword);
        ReadConstant(source);
    } else if (first.Is('(') && second.IsWord() && outlook.tokens[3].Is("string")) {
        FindKeywordMissing(source, "generic");
        ReadGenericClause(source);
    } else if (source.reading.facts.ports.empty() && first.Is('(') && second.IsWord()) {
        FindKeywordMissing(source, "port");
        ReadPortClause(source);
    } else if (first.IsWord() && (second.Is(':') || second.Is(',')) && outlook.tokens[2].IsWord()) {
        source.reading.found.Add(
            Rule::kPortOutsideClause, first.word,
            "port " + Quoted(first.word.text) + " is declared outside of the port clause",
            "write `port (` before the first port, and `);` behind the last one alone");
        ReadMorePorts(source);
    } else {
        return false;
    }
    return true;
}

void SkipMark(SourceReader& source) {
    const bool parenthesis = source.lexer.Current().Is(')');
    FindSurplus(source.reading, parenthesis ? Rule::kParenthesisSurplus : Rule::kSemicolonSurplus,
                source.lexer.Current().word);
    source.lexer.Advance();
    if (parenthesis) source.lexer.Accept(';');
}

// A string that belongs to no attribute is read as one, for its semicolons.
void SkipString(SourceReader& source) {
    source.reading.found.Add(Rule::kStatementUnknown, source.lexer.Current().word,
                             "a string stands outside of any declaration",
                             "write before it what it is the value of");
    source.reading.doubts.statements = true;
    ReadValue(source);
}

// "NAME;" as the last words of the text.
bool LacksEnd(const SourceReader& source) {
    const Word& entity = source.reading.facts.entity;
    if (!source.lexer.Current().Is(entity.text) || !entity.Exists()) return false;
    const Outlook outlook(source.lexer);
    return outlook.tokens[1].IsEnd() || (outlook.tokens[1].Is(';') && outlook.tokens[2].IsEnd());
}

// Reads one statement; false at the end of the entity.
bool ReadStatement(SourceReader& source) {
    Lexer& lexer = source.lexer;
    if (LacksEnd(source)) {
        FindKeywordMissing(source, "end");
        return false;
    }
    const ClauseRow* row = FindClause(lexer.Current());
    if (row == nullptr) {
        const Outlook outlook(lexer);
        row = FindMisspeltClause(source, outlook);
        if (row == nullptr && ReadWithoutKeyword(source, outlook)) return true;
    }
    if (row != nullptr) {
        lexer.Advance();
        if (row->read == nullptr) return false;
        row->read(source);
    } else if (lexer.Current().Is(';') || lexer.Current().Is(')')) {
        SkipMark(source);
    } else if (lexer.Current().kind == TokenKind::kQuote) {
        SkipString(source);
    } else {
        SkipUnknown(source);
    }
    return true;
}

// "NAME;" behind "end".
void ReadEnd(SourceReader& source) {
    Lexer& lexer = source.lexer;
    lexer.Accept("entity");
    const Word name = TakeWord(lexer);
    if (name.Exists() && !EqualIgnoringCase(name.text, source.reading.facts.entity.text)) {
        source.other_end = name;
    }
    if (lexer.Current().IsEnd()) {
        FindMissing(source.reading, Rule::kSemicolonMissing, lexer.Last(), ";");
    } else {
        ExpectMark(source, ';', Rule::kSemicolonMissing);
    }
    ReadBehindEntity(source);
}

// Whether the first line of the entity is the one that is wrong: all attributes are of another one.
bool IsEntityMisnamed(const SourceReader& source) {
    const std::vector<Word>& targets = source.other_targets;
    return !source.names_entity && !targets.empty() &&
           std::all_of(targets.begin(), targets.end(), [&](const Word& target) {
               return EqualIgnoringCase(target.text, targets.front().text);
           });
}

void FindOtherNames(SourceReader& source) {
    Reading& reading = source.reading;
    const Word& entity = reading.facts.entity;
    if (!entity.Exists()) return;
    if (IsEntityMisnamed(source)) {
        const std::string other = Quoted(source.other_targets.front().text);
        reading.found.Add(
            Rule::kOtherEntity, entity,
            "the entity is " + Quoted(entity.text) + ", but its attributes are of " + other,
            "write " + other + " here, or " + Quoted(entity.text) + " in them");
        return;
    }
    const std::string name = Quoted(entity.text);
    for (const Word& target : source.other_targets) {
        reading.found.Add(
            Rule::kOtherEntity, target,
            "the attribute is of " + Quoted(target.text) + ", and the entity is " + name,
            "write " + name);
    }
    if (!source.other_end.Exists()) return;
    reading.found.Add(Rule::kEndName, source.other_end,
                      "the entity is " + name + ", not " + Quoted(source.other_end.text),
                      "write " + name);
}

}  // namespace

void ReadText(Reading& reading) {
    SourceReader source(reading);
    if (!ReadPreamble(source)) {
        reading.result = kNoEntity;
        reading.found.AddAt(Rule::kNoEntity, 0, 0, "the text has no entity",
                            "begin the description with `entity NAME is`");
        return;
    }
    bool ended = false;
    while (!ended && !source.lexer.Current().IsEnd()) ended = !ReadStatement(source);
    if (ended) {
        ReadEnd(source);
    } else if (!reading.facts.register_attribute.Exists()) {
        FindTextEnd(source);
    } else if (!source.text_ended) {
        reading.found.Add(Rule::kEndMissing, Behind(source.lexer.Last()),
                          "the text ends before the entity does",
                          "write `end " + std::string(reading.facts.entity.text) + ";`");
    }
    RestoreRanges(source);
    FindOtherNames(source);
    for (const Word& comment : source.broken_comments) {
        reading.found.Add(Rule::kCommentBegin, comment,
                          Quoted(comment.text) + " does not begin as a comment",
                          "write `--` before it");
    }
}

}  // namespace bscan::detail
