// The statements of a description, in the order in which the standard has them.

#include "bsdl_text.h"

#include "bsdl_layout.h"
#include "bsdl_words.h"
#include "plain_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace tool {
namespace {

using bscan::ElementName;
using bscan::Facts;
using bscan::Word;

// Entries of a pin map for single elements, by the port in lower case and the index.
using ElementEntries = std::map<std::pair<std::string, int>, const bscan::PinMapEntry*>;

class Writer {
public:
    Writer(const Facts& facts, std::string_view package);

    std::string Write();

private:
    void Generic();
    void Ports();
    void UseClauses();
    void Conformance();
    void PinMaps();
    void Pairs();
    void TapSignal(const char* attribute, const ElementName& signal);
    void TapClock();
    void Tap();
    void Compliance();
    void Instructions();
    void Opcodes();
    void PrivateInstructions();
    void Codes(const char* attribute, const std::vector<Word>& codes);
    void RegisterAccess();
    void BoundaryRegister();
    void Text(const char* attribute, const Word& text);
    void Declarations();
    void Other(const bscan::OtherStatement& other);
    void Others(std::initializer_list<std::string_view> names);
    void RemainingOthers();

    // A blank line stands before the next statement.
    void Begin() { gap_ = true; }
    void Add(const std::string& statement);
    const bscan::Port* FindPort(std::string_view name) const;
    std::string Head(std::string_view attribute) const;
    std::string Name(std::string_view port) const;
    std::string Name(const ElementName& element) const;
    std::string PackageName() const;
    std::vector<std::string> Entries(const bscan::PinMap& map) const;
    std::string Entry(const bscan::PinMapEntry& entry) const;
    std::optional<bscan::PinMapEntry> WholeEntry(const bscan::PinMapEntry& first,
                                                 const ElementEntries& elements) const;
    ListPart CellPart(const bscan::Cell& cell) const;
    std::string LegRemark(const bscan::Cell& cell) const;

    const Facts& facts_;
    std::string_view package_;
    std::unordered_map<std::string, const bscan::Port*> ports_;  // by name in lower case
    std::set<std::string> negative_legs_;                        // in lower case
    std::set<const bscan::OtherStatement*> written_;
    std::string text_;
    bool gap_ = false;
};

Writer::Writer(const Facts& facts, std::string_view package) : facts_(facts), package_(package) {
    for (const bscan::Port& port : facts.ports) ports_.emplace(LowerCase(port.name.text), &port);
    for (const bscan::PortPair& pair : facts.pairs) {
        negative_legs_.insert(LowerCase(Name(pair.negative)));
    }
}

void Writer::Add(const std::string& statement) {
    if (std::exchange(gap_, false)) text_ += '\n';
    text_ += statement;
}

const bscan::Port* Writer::FindPort(std::string_view name) const {
    const auto found = ports_.find(LowerCase(name));
    return found == ports_.end() ? nullptr : found->second;
}

// A port as it is declared, however the letters are written where it is named.
std::string Writer::Name(std::string_view port) const {
    const bscan::Port* declared = FindPort(port);
    return std::string(declared == nullptr ? port : declared->name.text);
}

std::string Writer::Name(const ElementName& element) const {
    const std::string name = Name(element.port.text);
    return element.index ? fmt::format("{}({})", name, *element.index) : name;
}

std::string Writer::Head(std::string_view attribute) const {
    return fmt::format("attribute {} of {} : entity is", attribute, facts_.entity.text);
}

// The package that a reader of the file takes.
std::string Writer::PackageName() const {
    const std::string_view wanted = package_.empty() ? facts_.default_package.text : package_;
    if (const bscan::PinMap* map = facts_.FindPinMap(wanted)) return std::string(map->name.text);
    if (facts_.default_package.Exists() || facts_.pin_maps.empty()) return std::string(wanted);
    return std::string(facts_.pin_maps.front().name.text);
}

void Writer::Generic() {
    const std::string package = PackageName();
    if (!facts_.generic.Exists() && package.empty() && facts_.other_generics.empty()) return;
    Begin();
    std::string clause = "PHYSICAL_PIN_MAP : string";
    if (!package.empty()) clause += fmt::format(" := \"{}\"", package);
    for (const Word& other : facts_.other_generics) {
        clause += fmt::format("; {}", CollapseBlanks(PlainText(other.text)));
    }
    Add(fmt::format("  generic ({});\n", clause));
}

void Writer::Ports() {
    if (facts_.ports.empty()) return;
    Begin();
    Add("  port (\n");
    for (const bscan::Port& port : facts_.ports) {
        const bool last = &port == &facts_.ports.back();
        Add(fmt::format("    {} : {}{}\n", port.name.text, PortTypeText(port), last ? "" : ";"));
    }
    Add("  );\n");
}

// That of the standard comes first.
void Writer::UseClauses() {
    std::vector<std::string> clauses;
    for (const Word& use : facts_.use_clauses) clauses.push_back(UseClauseText(use.text));
    std::stable_partition(clauses.begin(), clauses.end(), [](const std::string& clause) {
        return clause.rfind("STD_1149_1_", 0) == 0;
    });
    if (!clauses.empty()) Begin();
    for (const std::string& clause : clauses) Add(fmt::format("  use {};\n", clause));
}

void Writer::Conformance() {
    if (!facts_.conformance.Exists()) return;
    Begin();
    Add(WordStatement(Head("COMPONENT_CONFORMANCE"),
                      fmt::format("\"{}\"", StandardName(PlainText(facts_.conformance.text)))));
}

std::string Writer::Entry(const bscan::PinMapEntry& entry) const {
    std::vector<std::string> pins;
    for (const Word& pin : entry.pins) pins.emplace_back(pin.text);
    const bscan::Port* port = FindPort(entry.port.port.text);
    const bool vector = port != nullptr && port->range && !entry.port.index;
    const bool list = pins.size() > 1 || (vector && !pins.empty());
    return fmt::format("{} : {}", Name(entry.port),
                       list           ? InParentheses(pins)
                       : pins.empty() ? ""
                                      : pins.front());
}

// The entries for the elements of a vector as one, when there is one for each of them.
std::optional<bscan::PinMapEntry> Writer::WholeEntry(const bscan::PinMapEntry& first,
                                                     const ElementEntries& elements) const {
    const bscan::Port* port = FindPort(first.port.port.text);
    if (!first.port.index || port == nullptr || !port->range) return std::nullopt;
    const int lowest = port->range->Lowest();
    const int highest = lowest + port->range->Count() - 1;
    const auto begin = elements.lower_bound({LowerCase(first.port.port.text), lowest});
    bscan::PinMapEntry whole{{first.port.port, {}}, {}};
    for (auto element = begin; element != elements.end(); ++element) {
        if (element->first.first != LowerCase(first.port.port.text)) break;
        if (element->first.second > highest) return std::nullopt;
        whole.pins.push_back(element->second->pins.front());
    }
    if (whole.pins.size() != static_cast<std::size_t>(port->range->Count())) return std::nullopt;
    if (port->range->left > port->range->right) std::reverse(whole.pins.begin(), whole.pins.end());
    return whole;
}

// Where a map has an entry for each element of a vector, they are one in the order of its range.
std::vector<std::string> Writer::Entries(const bscan::PinMap& map) const {
    ElementEntries elements;
    for (const bscan::PinMapEntry& entry : map.entries) {
        if (!entry.port.index || entry.pins.size() != 1) continue;
        elements.emplace(std::pair(LowerCase(entry.port.port.text), *entry.port.index), &entry);
    }
    std::vector<std::string> entries;
    std::map<std::string, bool> whole_ports;
    for (const bscan::PinMapEntry& entry : map.entries) {
        if (!entry.port.index) {
            entries.push_back(Entry(entry));
            continue;
        }
        const auto [known, is_first] =
            whole_ports.try_emplace(LowerCase(entry.port.port.text), false);
        if (is_first) {
            const std::optional<bscan::PinMapEntry> whole = WholeEntry(entry, elements);
            known->second = whole.has_value();
            if (whole) entries.push_back(Entry(*whole));
        }
        if (!known->second) entries.push_back(Entry(entry));
    }
    return entries;
}

void Writer::PinMaps() {
    Others({"PIN_MAP"});
    for (const bscan::PinMap& map : facts_.pin_maps) {
        Begin();
        Add(ListStatement(fmt::format("constant {} : PIN_MAP_STRING :=", map.name.text),
                          Entries(map)));
    }
}

// Pairs of one kind that follow each other are a group.
void Writer::Pairs() {
    if (facts_.pairs.empty()) return;
    std::vector<ListPart> parts;
    for (std::size_t i = 0; i < facts_.pairs.size(); ++i) {
        const bscan::PortPair& pair = facts_.pairs[i];
        const bool first = i == 0 || facts_.pairs[i - 1].is_current != pair.is_current;
        const bool end = i + 1 == facts_.pairs.size();
        const bool last = end || facts_.pairs[i + 1].is_current != pair.is_current;
        const char* const kind =
            pair.is_current ? "Differential_Current (" : "Differential_Voltage (";
        parts.push_back({fmt::format("{}({}, {}){}{}", first ? kind : "", Name(pair.positive),
                                     Name(pair.negative), last ? ")" : "", end ? "" : ","),
                         ""});
    }
    Begin();
    Add(PartsStatement(Head("PORT_GROUPING"), parts));
}

void Writer::TapSignal(const char* attribute, const ElementName& signal) {
    if (!signal.port.Exists()) return;
    Add(WordStatement(fmt::format("attribute {} of {} : signal is", attribute, Name(signal)),
                      "true"));
}

void Writer::TapClock() {
    const bscan::TapSignals& tap = facts_.tap;
    if (!tap.tck.port.Exists()) return;
    std::vector<std::string> fields;
    if (tap.frequency_word.Exists()) fields.push_back(FrequencyText(tap));
    if (tap.clock_stop_word.Exists()) fields.push_back(ClockStopText(tap));
    Add(WordStatement(fmt::format("attribute TAP_SCAN_CLOCK of {} : signal is", Name(tap.tck)),
                      InParentheses(fields)));
}

void Writer::Tap() {
    Begin();
    TapSignal("TAP_SCAN_IN", facts_.tap.tdi);
    TapSignal("TAP_SCAN_OUT", facts_.tap.tdo);
    TapSignal("TAP_SCAN_MODE", facts_.tap.tms);
    TapClock();
    TapSignal("TAP_SCAN_RESET", facts_.tap.trst);
}

void Writer::Compliance() {
    if (!facts_.compliance.attribute.Exists()) return;
    std::vector<std::string> ports;
    std::vector<std::string> patterns;
    for (const ElementName& port : facts_.compliance.ports) ports.push_back(Name(port));
    for (const Word& pattern : facts_.compliance.patterns) patterns.emplace_back(pattern.text);
    Begin();
    Add(PartsStatement(Head("COMPLIANCE_PATTERNS"),
                       {{InParentheses(ports), ""}, {InParentheses(patterns), ""}}));
}

void Writer::Opcodes() {
    if (!facts_.opcode_attribute.Exists()) return;
    std::vector<std::string> entries;
    for (const bscan::Instruction& instruction : facts_.instructions) {
        std::vector<std::string> opcodes;
        for (const Word& opcode : instruction.opcodes) opcodes.emplace_back(opcode.text);
        entries.push_back(fmt::format("{} {}", instruction.name.text, InParentheses(opcodes)));
    }
    Add(ListStatement(Head("INSTRUCTION_OPCODE"), entries));
}

void Writer::PrivateInstructions() {
    if (facts_.private_instructions.empty()) return;
    std::vector<std::string> names;
    for (const Word& name : facts_.private_instructions) names.emplace_back(name.text);
    Add(ListStatement(Head("INSTRUCTION_PRIVATE"), names));
}

void Writer::Instructions() {
    Begin();
    if (facts_.instruction_length_word.Exists()) {
        Add(WordStatement(Head("INSTRUCTION_LENGTH"),
                          NumberText(facts_.instruction_length, facts_.instruction_length_word)));
    }
    Opcodes();
    if (facts_.instruction_capture.Exists()) {
        Add(WordStatement(Head("INSTRUCTION_CAPTURE"),
                          fmt::format("\"{}\"", facts_.instruction_capture.text)));
    }
    Others({"INSTRUCTION_DISABLE", "INSTRUCTION_GUARD"});
    PrivateInstructions();
    Others({"INSTRUCTION_USAGE"});
}

void Writer::Codes(const char* attribute, const std::vector<Word>& codes) {
    if (codes.empty()) return;
    Begin();
    if (codes.size() == 1) {
        Add(WordStatement(Head(attribute), fmt::format("\"{}\"", codes.front().text)));
        return;
    }
    std::vector<std::string> alternatives;
    alternatives.reserve(codes.size());
    for (const Word& code : codes) alternatives.emplace_back(code.text);
    Add(ListStatement(Head(attribute), alternatives));
}

void Writer::RegisterAccess() {
    if (facts_.registers.empty()) return;
    std::vector<std::string> entries;
    for (const bscan::RegisterAccess& access : facts_.registers) {
        std::vector<std::string> instructions;
        for (const bscan::RegisterInstruction& instruction : access.instructions) {
            instructions.push_back(RegisterInstructionText(instruction));
        }
        entries.push_back(fmt::format("{} {}", RegisterName(access), InParentheses(instructions)));
    }
    Begin();
    Add(ListStatement(Head("REGISTER_ACCESS"), entries));
}

// A comment that names the negative leg of a pair tells where its cell is.
std::string Writer::LegRemark(const bscan::Cell& cell) const {
    std::string name(cell.remark);
    std::erase_if(name, [](char c) { return c == '-' || c == ' ' || c == '\t'; });
    return negative_legs_.count(LowerCase(name)) == 0 ? std::string() : name;
}

ListPart Writer::CellPart(const bscan::Cell& cell) const {
    std::vector<std::string> fields = {std::string(cell.type.text),
                                       cell.port.port.Exists() ? Name(cell.port) : "*",
                                       FunctionText(cell),
                                       LevelText(cell.safe_word),
                                       NumberText(cell.control, cell.control_word),
                                       LevelText(cell.disable_value_word),
                                       LevelText(cell.disable_result_word)};
    fields.resize(std::min(fields.size(), static_cast<std::size_t>(std::max(cell.field_count, 0))));
    const std::string number = NumberText(cell.number, cell.entry);
    const bool last = &cell == &facts_.cells.back();
    return {
        fmt::format("{} {}{}", number == "(" ? "" : number, InParentheses(fields), last ? "" : ","),
        LegRemark(cell)};
}

void Writer::BoundaryRegister() {
    Others({"BOUNDARY_CELLS"});
    Begin();
    if (facts_.boundary_length_word.Exists()) {
        Add(WordStatement(Head("BOUNDARY_LENGTH"),
                          NumberText(facts_.boundary_length, facts_.boundary_length_word)));
    }
    Others({"ASSEMBLED_BOUNDARY_LENGTH"});
    if (facts_.register_attribute.Exists()) {
        std::vector<ListPart> parts;
        for (const bscan::Cell& cell : facts_.cells) parts.push_back(CellPart(cell));
        Add(PartsStatement(Head("BOUNDARY_REGISTER"), parts));
    }
    Others({"BOUNDARY_SEGMENT"});
}

void Writer::Text(const char* attribute, const Word& text) {
    if (!text.Exists()) return;
    Begin();
    Add(TextStatement(Head(attribute), text.text));
}

void Writer::Declarations() {
    if (!facts_.declarations.empty()) Begin();
    for (const bscan::AttributeDeclaration& declaration : facts_.declarations) {
        Add(fmt::format("  attribute {} : {};\n", declaration.name.text, declaration.type.text));
    }
}

// An attribute or constant that is kept as it is.
void Writer::Other(const bscan::OtherStatement& other) {
    written_.insert(&other);
    Begin();
    const std::string_view name =
        other.standard_name.empty() ? other.name.text : other.standard_name;
    std::string head;
    if (other.is_constant) {
        head = fmt::format("constant {} : {} :=", name, other.target_class.text);
    } else if (IsEntity(other.target_class.text)) {
        head = Head(name);
    } else {
        head = fmt::format("attribute {} of {} : {} is", name,
                           Name({other.target, other.target_index}),
                           KeywordText(other.target_class.text));
    }
    if (other.is_string) {
        Add(TextStatement(head, other.value));
    } else if (name == "PIN_MAP" && LowerCase(other.value) == LowerCase(facts_.generic.text)) {
        Add(WordStatement(head, "PHYSICAL_PIN_MAP"));
    } else {
        Add(WordStatement(head, PlainText(other.value)));
    }
}

void Writer::Others(std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        for (const bscan::OtherStatement& other : facts_.others) {
            if (other.standard_name == name && !other.is_constant) Other(other);
        }
    }
}

void Writer::RemainingOthers() {
    Others({"SYSCLOCK_REQUIREMENTS", "REGISTER_MNEMONICS", "REGISTER_FIELDS", "REGISTER_ASSEMBLY",
            "REGISTER_CONSTRAINTS", "REGISTER_ASSOCIATION", "POWER_PORT_ASSOCIATION"});
    Declarations();
    for (const bscan::OtherStatement& other : facts_.others) {
        if (written_.count(&other) == 0) Other(other);
    }
}

std::string Writer::Write() {
    text_ = PreambleText(facts_);
    text_ += fmt::format("entity {} is\n", facts_.entity.text);
    Generic();
    Ports();
    UseClauses();
    Conformance();
    PinMaps();
    Pairs();
    Tap();
    Compliance();
    Instructions();
    Codes("IDCODE_REGISTER", facts_.idcodes);
    Codes("USERCODE_REGISTER", facts_.usercodes);
    RegisterAccess();
    BoundaryRegister();
    Text("RUNBIST_EXECUTION", facts_.runbist);
    Text("INTEST_EXECUTION", facts_.intest);
    RemainingOthers();
    Text("DESIGN_WARNING", facts_.design_warning);
    text_ += fmt::format("\nend {};\n", facts_.entity.text);
    return text_ + PackagesBehind(facts_);
}

}  // namespace

std::string BsdlText(const Facts& facts, std::string_view package) {
    return Writer(facts, package).Write();
}

}  // namespace tool
