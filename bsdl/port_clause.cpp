// The port clause: the names of the ports, and the marks between them.

#include "bsdl/language.h"
#include "bsdl/port_type.h"

#include <utility>
#include <vector>

namespace bscan::detail {
namespace {

// Whether "A :" or "A," follows the current mark.
bool NamesFollow(Lexer ahead) {
    ahead.Advance();
    if (!ahead.Current().IsWord()) return false;
    ahead.Advance();
    return ahead.Current().Is(':') || ahead.Current().Is(',');
}

class PortClauseReader {
public:
    explicit PortClauseReader(SourceReader& source)
        : source_(source), reading_(source.reading), lexer_(source.lexer) {}

    void Read();

private:
    bool AtClauseEnd() const;
    void SkipNameless();
    void ReadPort();
    void ReadNames();
    void ReadCommas();
    void Declare(Port& port);
    void EndPort();
    bool AtSurplus() const;
    void EndClause();

    SourceReader& source_;
    Reading& reading_;
    Lexer& lexer_;
    std::vector<Word> names_;
};

bool PortClauseReader::AtClauseEnd() const {
    const Token& token = lexer_.Current();
    return token.IsEnd() || token.Is(')') || BeginsDeclaration(lexer_);
}

void PortClauseReader::ReadCommas() {
    if (lexer_.Current().IsWord() && !IsMode(lexer_.Current()) && !lexer_.Current().Is(".")) {
        FindMissing(reading_, Rule::kCommaMissing, lexer_.Last(), ",");
    }
    // In "A; B : in bit" the semicolon was meant to be a comma: A has no mode.
    if (lexer_.Current().Is(".") || (lexer_.Current().Is(';') && NamesFollow(lexer_))) {
        FindInstead(reading_, Rule::kCommaMissing, lexer_.Current().word, ",");
        lexer_.Advance();
    }
    while (lexer_.Accept(',')) {
        const bool surplus = lexer_.Current().Is(',') || lexer_.Current().Is(':');
        if (surplus) FindSurplus(reading_, Rule::kCommaSurplus, lexer_.Last());
    }
}

// "A, B :". In "A in bit" the colon is missing.
void PortClauseReader::ReadNames() {
    names_.clear();
    while (lexer_.Current().IsWord()) {
        if (!names_.empty() && (IsMode(lexer_.Current()) || IsType(lexer_.Current()))) break;
        names_.push_back(TakeWord(lexer_));
        ReadCommas();
    }
    if (!names_.empty()) ExpectMark(source_, ':', Rule::kColonMissing);
}

void PortClauseReader::Declare(Port& port) {
    const std::string_view said = TextBehind(names_.back(), lexer_);
    bool told = false;
    for (const Word& name : names_) {
        port.name = name;
        if (source_.ports.names.Contains(name.text) && std::exchange(told, true)) continue;
        if (!source_.ports.Add(reading_, name, name.text, said, Rule::kPortTwice)) continue;
        reading_.facts.ports.push_back(port);
    }
}

// Between ports stands a semicolon; behind the last one it is too much.
void PortClauseReader::EndPort() {
    const Word mark = lexer_.Current().word;
    if (AtClauseEnd()) return;
    if (lexer_.Current().IsWord()) {
        return FindMissing(reading_, Rule::kSemicolonMissing, lexer_.Last(), ";");
    }
    if (!lexer_.Current().Is(';')) FindInstead(reading_, Rule::kSemicolonMissing, mark, ";");
    lexer_.Advance();
    for (; lexer_.Current().Is(';'); lexer_.Advance()) {
        FindSurplus(reading_, Rule::kSemicolonSurplus, lexer_.Current().word);
    }
    if (lexer_.Current().Is(')')) FindSurplus(reading_, Rule::kSemicolonSurplus, mark);
}

void PortClauseReader::SkipNameless() {
    const Word mark = lexer_.Current().word;
    if (!lexer_.Current().Is(':')) {
        FindSurplus(reading_, Rule::kMarkSurplus, mark);
        lexer_.Advance();
        return;
    }
    reading_.found.Add(Rule::kNameMissing, mark, "the port has no name", "write it before the `:`");
    reading_.doubts.ports = true;
    names_.assign(1, mark);
    Port port;
    lexer_.Advance();
    ReadPortType(source_, port);
    lexer_.Accept(';');
}

void PortClauseReader::ReadPort() {
    reading_.found.BeginEntry(lexer_.Current().word);
    ReadNames();
    if (names_.empty()) {
        SkipNameless();
        return reading_.found.EndEntry(lexer_.Last());
    }
    Port port;
    port.name = names_.front();
    ReadPortType(source_, port);
    Declare(port);
    reading_.found.EndEntry(lexer_.Last());
    EndPort();
}

// Whether the `)` is too much: another one follows, or another port.
bool PortClauseReader::AtSurplus() const {
    if (!lexer_.Current().Is(')')) return false;
    Lexer ahead = lexer_;
    ahead.Advance();
    if (ahead.Current().Is(')')) return true;
    return NamesFollow(ahead.Current().Is(';') ? ahead : lexer_);
}

void PortClauseReader::EndClause() {
    if (lexer_.Accept(')') || lexer_.Current().IsEnd()) return EndStatement(source_);
    FindMissing(reading_, Rule::kParenthesisMissing, lexer_.Last(), ")");
}

void PortClauseReader::Read() {
    for (;;) {
        while (!AtClauseEnd()) ReadPort();
        if (!AtSurplus()) break;
        FindSurplus(reading_, Rule::kParenthesisSurplus, lexer_.Current().word);
        lexer_.Advance();
        lexer_.Accept(';');
    }
    EndClause();
}

}  // namespace

void ReadPortClause(SourceReader& source) {
    if (source.ports.words.empty()) {
        ExpectMark(source, '(', Rule::kParenthesisMissing);
    } else {
        source.reading.found.Add(Rule::kClauseTwice, source.lexer.Last(), "a second port clause",
                                 "put all ports into one clause");
        source.lexer.Accept('(');
    }
    PortClauseReader(source).Read();
}

void ReadMorePorts(SourceReader& source) { PortClauseReader(source).Read(); }

}  // namespace bscan::detail
