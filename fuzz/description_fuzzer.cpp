/// @file
/// Reads a text by the standard, walks over everything that it says, and fills a model to work
/// with.

#include <bscan/description.h>
#include <bscan/limits.h>

#include "fuzz/input.h"
#include "support/oracle.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <tuple>

using namespace bscan;
using namespace bscan::test;
using bscan::fuzz::Require;

namespace {

constexpr int kManyPorts = 20000;

/// Looks at a word, of which every byte must be there to be read.
void Touch(const Word& word) {
    static volatile std::size_t seen = 0;
    seen = seen + static_cast<std::size_t>(std::count(word.text.begin(), word.text.end(), ' '));
    Require(word.Exists() == (word.line > 0) && (word.line > 0) == (word.column > 0),
            "a word has a place, or none at all");
    Require(word.Exists() || word.text.empty(), "an absent word is empty");
}

void Touch(const ElementName& name) { Touch(name.port); }

void Touch(const Cell& cell) {
    Touch(cell.port);
    for (const Word& word :
         {cell.entry, cell.type, cell.function_word, cell.safe_word, cell.control_word,
          cell.disable_value_word, cell.disable_result_word}) {
        Touch(word);
    }
}

template <typename Range>
void TouchAll(const Range& range) {
    for (const auto& item : range) Touch(item);
}

void TouchFacts(const Facts& facts) {
    for (const Word& word :
         {facts.entity, facts.generic, facts.default_package, facts.conformance,
          facts.instruction_length_word, facts.instruction_capture, facts.boundary_length_word,
          facts.runbist, facts.intest, facts.design_warning, facts.compliance.attribute,
          facts.tap.frequency_word}) {
        Touch(word);
    }
    for (const Port& port : facts.ports) {
        Touch(port.name);
        Touch(port.type);
        Require(!port.range || (port.range->left >= 0 && port.range->right >= 0),
                "a range has no negative bound");
        Require(facts.ports.size() > 1000 || facts.FindPort(port.name.text) == &port,
                "no port is declared twice");
    }
    for (const PinMap& map : facts.pin_maps) {
        for (const PinMapEntry& entry : map.entries) {
            Touch(entry.port);
            TouchAll(entry.pins);
        }
    }
    for (const ElementName& name :
         {facts.tap.tdi, facts.tap.tdo, facts.tap.tms, facts.tap.tck, facts.tap.trst}) {
        Touch(name);
    }
    TouchAll(facts.use_clauses);
    TouchAll(facts.compliance.ports);
    TouchAll(facts.compliance.patterns);
    TouchAll(facts.private_instructions);
    TouchAll(facts.idcodes);
    TouchAll(facts.usercodes);
    TouchAll(facts.cells);
    for (const Instruction& instruction : facts.instructions) TouchAll(instruction.opcodes);
    for (const RegisterAccess& access : facts.registers) {
        for (const RegisterInstruction& instruction : access.instructions) {
            Touch(instruction.captures);
            Touch(instruction.domain);
        }
    }
    for (const PortPair& pair : facts.pairs) {
        Touch(pair.positive);
        Touch(pair.negative);
    }
    for (const OtherStatement& other : facts.others) Touch(other.target);
    for (const AttributeDeclaration& declaration : facts.declarations) Touch(declaration.type);
    TouchAll(facts.other_generics);
    TouchAll(facts.packages);
}

void CheckFindings(const Description& description, int lines) {
    const std::vector<Finding>& findings = description.Findings();
    Require(findings.size() <= kMaxFindings + 1, "findings are bounded");
    std::tuple<int, int> last;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const Finding& finding = findings[i];
        Require(DescribeRule(finding.rule) != nullptr, "a finding's rule is in the table");
        Require(!finding.message.empty(), "a finding says something");
        Require(finding.line >= 0 && finding.line <= lines && finding.column >= 0,
                "a finding points into the text");
        if (i == kMaxFindings) break;  // the note that there are more
        const std::tuple<int, int> place(finding.line, finding.column);
        Require(last <= place, "findings are in the order of the text");
        last = place;
    }
}

/// Whether the model would have more elements or cells than there is time for.
bool IsLarge(const Facts& facts) {
    std::int64_t elements = 0;
    for (const Port& port : facts.ports) {
        elements += port.range ? std::abs(std::int64_t{port.range->left} - port.range->right) : 1;
    }
    int cells = facts.boundary_length;
    for (const Cell& cell : facts.cells) cells = std::max(cells, cell.number);
    return elements > kManyPorts || cells > kManyPorts;
}

/// Asks for every declared element by its declared index.
void FindElements(const Description& description, BScanPinMap& map) {
    std::size_t asked = 0;
    for (const Port& port : description.GetFacts().ports) {
        const int count = port.range ? port.range->Count() : 1;
        for (int k = 0; k < count && ++asked < 1000; ++k) {
            const int lowest = port.range ? port.range->Lowest() : 0;
            const LPinNode* const node = description.FindElement(map, port.name.text, lowest + k);
            Require(node != nullptr && node->GetVectorIndex() == k,
                    "an element is found by its declared index");
        }
    }
}

/// Whether every pin of the model is found by its number.
void FindPins(BScanPinMap& map) {
    for (int i = 0; i < map.GetNumberOfPins(); ++i) {
        const LPinNode& node = *NodeAt(map, i);
        if (!PinName(node)) continue;
        const LPinNode* const found = map.GetPort(node.GetPinNumber());
        Require(found && found->GetPinNumber() == node.GetPinNumber(), "a pin has a number");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Description description = Description::Parse(text, "text.bsd");
    const int result = description.Result();
    Require(result == kOk || result == kNoEntity, "a text has an entity or none");
    const auto breaks = [](char c) { return c == '\n' || c == '\r'; };
    CheckFindings(description,
                  static_cast<int>(std::count_if(text.begin(), text.end(), breaks)) + 1);
    TouchFacts(description.GetFacts());

    if (IsLarge(description.GetFacts())) return 0;
    BScanParser parser;
    Require(description.Fill(parser) == result, "what is read fills a model");
    if (result != kOk) return 0;
    Require(description.Fill(parser) == kModelExists, "a model is filled once");
    BScanPinMap& map = *parser.GetPinMap();
    BScanParser twin;
    description.Fill(twin);
    Require(DumpModel(twin) == DumpModel(parser), "the same facts give the same model");
    for (const PinMap& package : description.GetFacts().pin_maps) {
        BScanParser other;
        Require(description.Fill(other, package.name.text) == kOk, "each package can be filled");
    }
    FindElements(description, map);
    FindPins(map);
    Require(FindFault(parser));
    Require(FindDriveFault(parser));
    Require(FindFault(parser));
    return 0;
}
