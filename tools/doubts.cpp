#include "doubts.h"

#include "failure.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

namespace tool {
namespace {

// Errors after which no cell is sure to be where the file says.
constexpr std::string_view kOfWholeRegister[] = {
    "boundary-length", "boundary-length-missing", "boundary-register-missing",
    "cell-missing",    "cell-number-missing",     "text-ends",
};

bool ConcernsWholeRegister(const bscan::Finding& finding) {
    return std::find(std::begin(kOfWholeRegister), std::end(kOfWholeRegister), finding.rule) !=
           std::end(kOfWholeRegister);
}

std::string Label(const bscan::ElementName& name) {
    const std::string port = Upper(name.port.text);
    return name.index ? fmt::format("{}({})", port, *name.index) : port;
}

template <typename Map, typename Key>
const bscan::Finding* FindIn(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : found->second;
}

}  // namespace

Doubts::Doubts(const Device& device) {
    if (CountFindings(device).errors == 0) return;
    const bscan::Facts& facts = device.facts();
    AddPorts(facts);
    AddPinMaps(facts, device.PackageName());
    AddCells(facts);
    AddOthers(facts);
    std::sort(spans_.begin(), spans_.end(), [](const Span& a, const Span& b) {
        return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    for (const bscan::Finding& finding : device.description()->Findings()) {
        if (finding.severity == bscan::Severity::kError) Take(*device.description(), finding);
    }
    SpreadOverControlled(facts);
}

// Who turns a driver on concerns what it drives.
void Doubts::SpreadOverControlled(const bscan::Facts& facts) {
    for (const bscan::Cell& cell : facts.cells) {
        const bscan::Finding* const finding = FindIn(cells_, cell.control);
        if (finding == nullptr) continue;
        if (cell.port.port.Exists()) ports_.emplace(Label(cell.port), finding);
    }
}

void Doubts::AddSpan(const bscan::Word& word, std::vector<std::string> ports, int cell) {
    if (word.Exists()) spans_.push_back({word.line, word.column, std::move(ports), cell});
}

// What stands behind the mode concerns all ports of a list "A, B : in bit".
void Doubts::AddPorts(const bscan::Facts& facts) {
    for (std::size_t i = 0; i < facts.ports.size();) {
        const bscan::Word mode = facts.ports[i].mode_word;
        std::vector<std::string> names;
        do {
            const std::string name = Upper(facts.ports[i].name.text);
            AddSpan(facts.ports[i].name, {name});
            names.push_back(name);
            ++i;
        } while (i < facts.ports.size() && mode.Exists() &&
                 facts.ports[i].mode_word.line == mode.line &&
                 facts.ports[i].mode_word.column == mode.column);
        AddSpan(mode, std::move(names));
    }
}

void Doubts::AddPinMaps(const bscan::Facts& facts, const std::string& package) {
    for (const bscan::PinMap& map : facts.pin_maps) {
        AddSpan(map.name);
        if (Upper(map.name.text) != Upper(package)) continue;
        for (const bscan::PinMapEntry& entry : map.entries) {
            AddSpan(entry.port.port, {Label(entry.port)});
        }
    }
}

void Doubts::AddCells(const bscan::Facts& facts) {
    AddSpan(facts.register_attribute);
    for (const bscan::Cell& cell : facts.cells) {
        std::vector<std::string> ports;
        if (cell.port.port.Exists()) ports.push_back(Label(cell.port));
        AddSpan(cell.entry.Exists() ? cell.entry : cell.type, std::move(ports), cell.number);
    }
    for (const bscan::PortPair& pair : facts.pairs) {
        AddSpan(pair.positive.port, {Label(pair.positive), Label(pair.negative)});
    }
}

// Statements whose errors leave the pins alone.
void Doubts::AddOthers(const bscan::Facts& facts) {
    for (const auto* words :
         {&facts.use_clauses, &facts.private_instructions, &facts.idcodes, &facts.usercodes}) {
        for (const bscan::Word& word : *words) AddSpan(word);
    }
    for (const bscan::Instruction& instruction : facts.instructions) AddSpan(instruction.name);
    for (const bscan::RegisterAccess& access : facts.registers) AddSpan(access.name);
    for (const bscan::OtherStatement& other : facts.others) AddSpan(other.name);
    const bscan::TapSignals& tap = facts.tap;
    for (const bscan::Word& word :
         {facts.generic, facts.conformance, facts.compliance.attribute, tap.tdi.port, tap.tdo.port,
          tap.tms.port, tap.tck.port, tap.trst.port, tap.frequency_word,
          facts.instruction_length_word, facts.opcode_attribute, facts.instruction_capture,
          facts.boundary_length_word, facts.runbist, facts.intest, facts.design_warning}) {
        AddSpan(word);
    }
}

void Doubts::Take(const bscan::Description& description, const bscan::Finding& finding) {
    if (whole_ == nullptr && ConcernsWholeRegister(finding)) whole_ = &finding;
    if (finding.rule == "pin-twice") {
        const std::string_view line = description.Line(finding.line);
        const auto column = static_cast<std::size_t>(std::max(finding.column, 1)) - 1;
        const auto length = static_cast<std::size_t>(finding.length);
        if (column < line.size()) pins_.emplace(line.substr(column, length), &finding);
    }
    const auto behind = std::partition_point(spans_.begin(), spans_.end(), [&](const Span& span) {
        return std::tie(span.line, span.column) <= std::tie(finding.line, finding.column);
    });
    if (behind == spans_.begin()) return;
    const Span& span = *(behind - 1);
    for (const std::string& port : span.ports) ports_.emplace(port, &finding);
    if (span.cell >= 0) cells_.emplace(span.cell, &finding);
}

const bscan::Finding* Doubts::Of(const Element& element) const {
    if (whole_ != nullptr) return whole_;
    if (ports_.empty() && pins_.empty() && cells_.empty()) return nullptr;
    const bscan::Finding* found = FindIn(ports_, Upper(element.port));
    if (found == nullptr) found = FindIn(ports_, Upper(element.Label()));
    if (found == nullptr) found = FindIn(pins_, element.pin);
    for (const LBScanCell* cell : CellsOf(*element.node)) {
        if (found == nullptr) found = FindIn(cells_, cell->GetBoundaryCellPosition());
    }
    return found;
}

std::string DoubtText(const bscan::Finding& finding) {
    const std::string where =
        finding.line > 0 ? fmt::format("line {}", finding.line) : std::string("the file");
    return fmt::format("doubtful since {} has an error: {} [{}]", where, finding.message,
                       finding.rule);
}

}  // namespace tool
