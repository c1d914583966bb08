// Attribute statements: their heads, and which reader takes which value.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/number.h"
#include "bsdl/spelling.h"

#include <limits>
#include <string>

namespace bscan::detail {
namespace {

struct AttributeRow {
    std::string_view name;
    void (*read)(SourceReader&, const Attribute&);  // null for one that is kept as it is
    bool Doubts::*subject;
};

constexpr AttributeRow kAttributes[] = {
    {"TAP_SCAN_IN", ReadTapSignal, &Doubts::tap},
    {"TAP_SCAN_OUT", ReadTapSignal, &Doubts::tap},
    {"TAP_SCAN_MODE", ReadTapSignal, &Doubts::tap},
    {"TAP_SCAN_RESET", ReadTapSignal, &Doubts::tap},
    {"TAP_SCAN_CLOCK", ReadTapClock, &Doubts::tap},
    {"COMPLIANCE_PATTERNS", ReadCompliancePatterns, &Doubts::compliance},
    {"INSTRUCTION_LENGTH", ReadInstructionLength, &Doubts::instructions},
    {"INSTRUCTION_OPCODE", ReadInstructionOpcode, &Doubts::instructions},
    {"INSTRUCTION_CAPTURE", ReadInstructionCapture, &Doubts::instructions},
    {"INSTRUCTION_PRIVATE", ReadInstructionPrivate, &Doubts::instructions},
    {"IDCODE_REGISTER", ReadIdcodes, &Doubts::registers},
    {"USERCODE_REGISTER", ReadUsercodes, &Doubts::registers},
    {"REGISTER_ACCESS", ReadRegisterAccess, &Doubts::registers},
    {"BOUNDARY_LENGTH", ReadBoundaryLength, &Doubts::cells},
    {"BOUNDARY_REGISTER", ReadBoundaryRegister, &Doubts::cells},
    {"PORT_GROUPING", ReadPortGrouping, &Doubts::pairs},
    {"RUNBIST_EXECUTION", ReadTextValue, nullptr},
    {"INTEST_EXECUTION", ReadTextValue, nullptr},
    {"COMPONENT_CONFORMANCE", ReadTextValue, nullptr},
    {"DESIGN_WARNING", ReadTextValue, nullptr},
    {"PIN_MAP", nullptr, nullptr},
    {"BOUNDARY_CELLS", nullptr, nullptr},
    {"BOUNDARY_SEGMENT", nullptr, nullptr},
    {"INSTRUCTION_DISABLE", nullptr, nullptr},
    {"INSTRUCTION_GUARD", nullptr, nullptr},
    {"INSTRUCTION_USAGE", nullptr, nullptr},
    {"ASSEMBLED_BOUNDARY_LENGTH", nullptr, nullptr},
    {"POWER_PORT_ASSOCIATION", nullptr, nullptr},
    {"REGISTER_ASSEMBLY", nullptr, nullptr},
    {"REGISTER_ASSOCIATION", nullptr, nullptr},
    {"REGISTER_CONSTRAINTS", nullptr, nullptr},
    {"REGISTER_FIELDS", nullptr, nullptr},
    {"REGISTER_MNEMONICS", nullptr, nullptr},
    {"SYSCLOCK_REQUIREMENTS", nullptr, nullptr},
    {"AIO_COMPONENT_CONFORMANCE", nullptr, nullptr},
    {"AIO_EXTEST_PULSE_EXECUTION", nullptr, nullptr},
    {"AIO_EXTEST_TRAIN_EXECUTION", nullptr, nullptr},
    {"AIO_PIN_BEHAVIOR", nullptr, nullptr},
    {"ISC_ACTION", nullptr, nullptr},
    {"ISC_BLANK_USERCODE", nullptr, nullptr},
    {"ISC_CONFORMANCE", nullptr, nullptr},
    {"ISC_DESIGN_WARNING", nullptr, nullptr},
    {"ISC_FLOW", nullptr, nullptr},
    {"ISC_PIN_BEHAVIOR", nullptr, nullptr},
    {"ISC_PROCEDURE", nullptr, nullptr},
    {"ISC_SECURITY", nullptr, nullptr},
    {"ISC_STATUS", nullptr, nullptr},
};

const AttributeRow* FindRow(std::string_view name) {
    for (const AttributeRow& row : kAttributes) {
        if (EqualIgnoringCase(row.name, name)) return &row;
    }
    return nullptr;
}

// The row that a name was meant to be; null when it looks like none that is still missing.
const AttributeRow* FindMisspeltRow(SourceReader& source, std::string_view name) {
    const AttributeRow* best = nullptr;
    int fewest = std::numeric_limits<int>::max();
    for (const AttributeRow& row : kAttributes) {
        const int slips = Slips(name, row.name).value_or(fewest);
        if (slips >= fewest || source.attributes.names.Contains(row.name)) continue;
        best = &row;
        fewest = slips;
    }
    return best;
}

// "TDI" or "D(3)".
ElementName TakeTarget(SourceReader& source) {
    Lexer& lexer = source.lexer;
    ElementName target{TakeWord(lexer), {}};
    if (!target.port.Exists()) {
        source.reading.found.AddAt(Rule::kTargetMissing, lexer.Current().word.line,
                                   lexer.Current().word.column, "the attribute is of nothing",
                                   "write the name of the entity or port behind `of`");
        source.reading.doubts.tap = true;
    }
    if (!lexer.Accept('(')) return target;
    target.index = ParseInteger(TakeWord(lexer).text);
    ExpectMark(source, ')', Rule::kParenthesisMissing);
    return target;
}

// "is"; the "=" of other languages, or another word, is taken for it.
void ExpectIs(SourceReader& source) {
    Lexer& lexer = source.lexer;
    if (lexer.Accept("is")) return;
    Lexer ahead = lexer;
    ahead.Advance();
    const Token next = ahead.Current();
    const bool assignment = lexer.Current().Is(':') && next.Is('=');
    const bool other = lexer.Current().IsWord() &&
                       (next.IsWord() || next.Is('(') || next.kind == TokenKind::kQuote);
    if (!assignment && !other && !lexer.Current().Is('=')) return ExpectKeyword(source, "is");
    FindInstead(source.reading, Rule::kKeywordMissing, lexer.Current().word, "is");
    lexer.Advance();
    if (assignment) lexer.Advance();
}

// "of TARGET : CLASS is"
void ReadHead(SourceReader& source, Attribute& attribute) {
    Lexer& lexer = source.lexer;
    ExpectKeyword(source, "of");
    attribute.target = TakeTarget(source);
    ExpectMark(source, ':', Rule::kColonMissing);
    if (lexer.Current().Is("is")) {
        FindMissing(source.reading, Rule::kKeywordMissing, lexer.Last(), "entity");
    } else {
        attribute.target_class = TakeWord(lexer);
    }
    const std::string_view target_class = attribute.target_class.text;
    for (const std::string_view known : {"entity", "signal"}) {
        if (!IsMisspelt(target_class, known)) continue;
        FindMisspelt(source.reading, attribute.target_class, known);
        attribute.target_class.text = known;
    }
    ExpectIs(source);
}

void CheckEntity(SourceReader& source, const Attribute& attribute) {
    const Word& target = attribute.target.port;
    if (!EqualIgnoringCase(attribute.target_class.text, "entity") || !target.Exists()) return;
    if (EqualIgnoringCase(target.text, source.reading.facts.entity.text)) {
        source.names_entity = true;
    } else {
        source.other_targets.push_back(target);
    }
}

void KeepOther(SourceReader& source, const Attribute& attribute) {
    OtherStatement other;
    other.name = attribute.name;
    other.target = attribute.target.port;
    other.target_index = attribute.target.index;
    other.target_class = attribute.target_class;
    other.standard_name = attribute.standard_name;
    other.value = JoinedText(source.value, source.reading.joined).text;
    other.is_string = source.value.quoted;
    source.reading.facts.others.push_back(other);
}

// The row of an attribute; a name that looks like another one is taken for that, when the file does
// not have it.
const AttributeRow* ChooseRow(SourceReader& source, const Attribute& attribute) {
    const AttributeRow* row = FindRow(attribute.name.text);
    if (row != nullptr || source.declared.Contains(attribute.name.text)) return row;
    row = FindMisspeltRow(source, attribute.name.text);
    if (row != nullptr) FindMisspelt(source.reading, attribute.name, row->name);
    return row;
}

void SetDoubt(Reading& reading, const AttributeRow* row) {
    if (row != nullptr && row->subject != nullptr) reading.doubts.*row->subject = true;
}

void ReadAttributeValue(SourceReader& source, Attribute& attribute) {
    const bool has_value = ReadValue(source);
    const AttributeRow* const row = ChooseRow(source, attribute);
    if (!has_value || source.value.doubtful) SetDoubt(source.reading, row);
    if (!has_value) return;
    attribute.standard_name = row != nullptr ? row->name : std::string_view();
    // Several ports may have an attribute that we do not know.
    std::string key(row != nullptr ? row->name : attribute.name.text);
    if (row == nullptr) key.append("@").append(attribute.target.port.text);
    if (!source.attributes.Add(source.reading, attribute.name, key,
                               TextBehind(attribute.name, source.lexer), Rule::kAttributeTwice)) {
        return;
    }
    if (row != nullptr && row->read != nullptr) {
        row->read(source, attribute);
    } else {
        KeepOther(source, attribute);
    }
}

// ": TYPE;" behind the name of an attribute that is declared.
void ReadDeclaration(SourceReader& source, const Word& name) {
    source.declared.Add(name.text);
    source.reading.found.Add(
        Rule::kAttributeDeclared, name,
        "the attribute " + Quoted(name.text) + " is declared within the entity", "");
    source.lexer.Advance();
    source.reading.facts.declarations.push_back({name, TakeWord(source.lexer)});
    SkipStatement(source);
}

void SkipNameless(SourceReader& source) {
    source.reading.found.Add(Rule::kNameMissing, Behind(source.lexer.Last()),
                             "the attribute has no name", "write it behind `attribute`");
    source.reading.doubts.statements = true;
    SkipStatement(source);
}

}  // namespace

// "attribute NAME : TYPE;" only declares it.
void ReadAttribute(SourceReader& source) {
    Lexer& lexer = source.lexer;
    Attribute attribute;
    if (lexer.Current().Is("of")) return SkipNameless(source);
    attribute.name = TakeWord(lexer);
    if (!attribute.name.Exists()) return SkipUnknown(source);
    if (lexer.Current().Is(':')) return ReadDeclaration(source, attribute.name);
    ReadHead(source, attribute);
    CheckEntity(source, attribute);
    ReadAttributeValue(source, attribute);
}

}  // namespace bscan::detail
