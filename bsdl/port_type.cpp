#include "bsdl/port_type.h"

#include "bsdl/language.h"
#include "bsdl/number.h"
#include "bsdl/port_range.h"
#include "bsdl/spelling.h"
#include "support/keyword.h"

#include <string>

namespace bscan::detail {
namespace {

constexpr Keyword<PortMode> kModes[] = {
    {"in", PortMode::kIn},
    {"out", PortMode::kOut},
    {"inout", PortMode::kInout},
    {"buffer", PortMode::kBuffer},
    {"linkage", PortMode::kLinkage},
    {"linkage_in", PortMode::kLinkageIn},
    {"linkage_out", PortMode::kLinkageOut},
    {"linkage_inout", PortMode::kLinkageInout},
    {"linkage_buffer", PortMode::kLinkageBuffer},
    {"linkage_mechanical", PortMode::kLinkageMechanical},
    {"power_pos", PortMode::kPowerPositive},
    {"power_0", PortMode::kPowerGround},
    {"power_neg", PortMode::kPowerNegative},
    {"vref_in", PortMode::kReferenceIn},
    {"vref_out", PortMode::kReferenceOut},
};

constexpr std::string_view kBit = "bit";
constexpr std::string_view kVector = "bit_vector";

Token Next(Lexer ahead) {
    ahead.Advance();
    return ahead.Current();
}

void ReadMode(SourceReader& source, Port& port) {
    Lexer& lexer = source.lexer;
    if (!lexer.Current().IsWord() || (IsType(lexer.Current()) && !IsType(Next(lexer)))) {
        source.reading.found.Add(
            Rule::kModeMissing, Behind(lexer.Last()),
            "port " + Quoted(port.name.text) + " has no mode",
            "write `in`, `out`, `inout`, `buffer` or `linkage` before the type");
        return;
    }
    port.mode_word = TakeWord(lexer);
    Keyword<PortMode>::Find(kModes, port.mode_word.text, port.mode);
}

// "bit_vector0", where "bit_vector(0" was meant.
bool IsGluedVector(std::string_view type) {
    return EqualIgnoringCase(type.substr(0, kVector.size()), kVector) &&
           ParseInteger(type.substr(kVector.size())).has_value();
}

void TakeType(SourceReader& source, Port& port) {
    Lexer& lexer = source.lexer;
    if (!lexer.Current().IsWord()) {
        source.reading.found.Add(Rule::kTypeMissing, Behind(lexer.Last()),
                                 "port " + Quoted(port.name.text) + " has no type",
                                 "write `bit` or `bit_vector` behind the mode");
        return;
    }
    port.type = TakeWord(lexer);
    if (IsGluedVector(port.type.text)) return;
    for (const std::string_view known : {kBit, kVector}) {
        if (!IsMisspelt(port.type.text, known)) continue;
        FindMisspelt(source.reading, port.type, known);
        port.type.text = known;
    }
}

// The range, which may have lost its parenthesis.
void TakeRange(SourceReader& source, Port& port) {
    Lexer& lexer = source.lexer;
    if (lexer.Current().Is('[')) {
        FindInstead(source.reading, Rule::kParenthesisMissing, lexer.Current().word, "(");
        lexer.Advance();
        return ReadPortRange(source, port, {});
    }
    if (lexer.Accept('(')) return ReadPortRange(source, port, {});
    if (IsGluedVector(port.type.text)) {
        const std::string_view digits = port.type.text.substr(kVector.size());
        port.type.text.remove_suffix(digits.size());
        FindMissing(source.reading, Rule::kParenthesisMissing, port.type, "(");
        return ReadPortRange(source, port, digits);
    }
    // "bit_vector 0 to 7)"
    const Token& token = lexer.Current();
    if (!EqualIgnoringCase(port.type.text, kVector)) return;
    if (token.IsWord() && ParseInteger(token.word.text).has_value()) {
        FindMissing(source.reading, Rule::kParenthesisMissing, lexer.Last(), "(");
        return ReadPortRange(source, port, {});
    }
    source.reading.found.Add(Rule::kRangeMalformed, port.type,
                             "the vector " + Quoted(port.name.text) + " has no range",
                             "write one such as `(0 to 7)` behind `bit_vector`");
    source.reading.doubts.ports = true;
}

// ":= '0'"
void SkipInitialValue(SourceReader& source) {
    Lexer& lexer = source.lexer;
    if (!lexer.Current().Is(':')) return;
    Lexer ahead = lexer;
    ahead.Advance();
    if (!ahead.Current().Is('=')) return;
    source.reading.found.Add(Rule::kTextSurplus, lexer.Current().word,
                             "a port has no initial value in BSDL", "leave it out");
    lexer = ahead;
    lexer.Advance();
    while (lexer.Current().IsWord() || lexer.Current().kind == TokenKind::kQuote) {
        if (BeginsDeclaration(lexer)) break;
        lexer.Advance();
    }
}

}  // namespace

bool IsMode(const Token& token) {
    PortMode mode{};
    return token.IsWord() && Keyword<PortMode>::Find(kModes, token.word.text, mode);
}

bool IsType(const Token& token) { return token.Is(kBit) || token.Is(kVector); }

void ReadPortType(SourceReader& source, Port& port) {
    ReadMode(source, port);
    TakeType(source, port);
    TakeRange(source, port);
    SkipInitialValue(source);
}

}  // namespace bscan::detail
