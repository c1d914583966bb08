#include "device_tables.h"

#include "device_facts.h"
#include "selected_registers.h"
#include "words.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace tool {
namespace {

Json NumberOrNull(int number, int lowest) { return number < lowest ? Json() : Json(number); }

Json Positions(const LPinNode& node) {
    Json positions = Json::array();
    for (const LBScanCell* cell : CellsOf(node)) {
        positions.push_back(cell->GetBoundaryCellPosition());
    }
    return positions;
}

Json Leg(const LPinNode& node) {
    if (node.IsPositive()) return "positive";
    return node.IsNegative() ? Json("negative") : Json();
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
    }
    return lower;
}

Json Safe(const LBScanCell& cell) { return Word(cell.safeValue); }

}  // namespace

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

DeclaredModes ModesOf(const Device& device) {
    DeclaredModes modes;
    for (const bscan::Port& port : device.facts().ports) {
        if (port.mode_word.Exists()) modes.emplace(port.name.text, Lower(port.mode_word.text));
    }
    return modes;
}

std::vector<std::string> CellTypes(const Device& device) {
    std::vector<std::string> types;
    for (const LBScanCell* cell : CellsOf(device.map())) {
        types.emplace_back(Word(cell->GetBScanCellType()));
    }
    for (const bscan::Cell& cell : device.facts().cells) {
        if (cell.number < 0 || cell.number >= device.map().GetBScanLength()) continue;
        std::string& type = types[static_cast<std::size_t>(cell.number)];
        if (type == "unknown" && cell.type.Exists()) type = cell.type.text;
    }
    return types;
}

std::string ModeOf(const Element& element, const DeclaredModes& modes) {
    const auto mode = modes.find(element.port);
    return mode == modes.end() ? std::string(Word(element.node->GetPortType())) : mode->second;
}

Json PortOf(const Device& device, const LBScanCell& cell) {
    const Element* element = device.Find(cell.GetPinNode());
    return TextOrNull(element == nullptr ? cell.GetPinName() : element->Label());
}

Table PinTable(const Device& device) {
    Table table{{{"port", "Port"},
                 {"name", "Name", Audience::kPrograms},
                 {"index", "Index", Audience::kPrograms},
                 {"pin", "Pin"},
                 {"number", "Number"},
                 {"mode", "Model's mode", Audience::kPrograms},
                 {"declared_mode", "Mode"},
                 {"cells", "Cells"},
                 {"leg", "Leg"}},
                {}};
    const DeclaredModes modes = ModesOf(device);
    for (const Element& element : device.elements()) {
        const LPinNode& node = *element.node;
        table.rows.push_back(
            {element.Label(), element.port, element.index ? Json(*element.index) : Json(),
             TextOrNull(element.pin), NumberOrNull(element.number, 1), Word(node.GetPortType()),
             ModeOf(element, modes), Positions(node), Leg(node)});
    }
    return table;
}

Table CellTable(const Device& device) {
    Table table{{{"cell", "Cell"},
                 {"type", "Model's type", Audience::kPrograms},
                 {"type_name", "Type"},
                 {"port", "Port"},
                 {"function", "Function"},
                 {"safe", "Safe"},
                 {"control", "Control"},
                 {"disable", "Disable"},
                 {"result", "Result"},
                 {"remark", "Remark"}},
                {}};
    const std::vector<std::string> types = CellTypes(device);
    int position = 0;
    for (const LBScanCell* cell : CellsOf(device.map())) {
        const LBScanCell* control = cell->GetControlCell();
        const std::string& type = types[static_cast<std::size_t>(position)];
        table.rows.push_back(
            {position++, Word(cell->GetBScanCellType()), type, PortOf(device, *cell),
             Word(cell->GetFunction()), Safe(*cell),
             control == nullptr ? Json() : Json(control->GetBoundaryCellPosition()),
             control == nullptr ? Json() : Json(Word(cell->disableValue)),
             control == nullptr ? Json() : Json(Word(cell->disableResult)),
             TextOrNull(cell->GetOriginalPinName())});
    }
    return table;
}

Table InstructionTable(const Device& device) {
    Table table{{{"instruction", "Instruction"},
                 {"opcodes", "Opcodes"},
                 {"register", "Register"},
                 {"register_length", "Bits"},
                 {"register_told_by", "Told by"},
                 {"captures", "Captures"},
                 {"private", "Private"}},
                {}};
    const CInstrRegisterDesc* instructions = device.parser().GetInstructionRegisterDescription();
    const SelectedRegisters registers(device);
    for (int i = 0; instructions != nullptr && i < instructions->GetInstructionOpcodeCount(); ++i) {
        const CInstrOpcode& instruction = *instructions->GetInstructionOpcode(i);
        Json opcodes = Json::array();
        for (int k = 0; k < instruction.GetOpcodeCount(); ++k) {
            opcodes.push_back(instruction.GetOpcode(k));
        }
        const SelectedRegister found = registers.Of(instruction.GetInstruction());
        table.rows.push_back({instruction.GetInstruction(), opcodes, TextOrNull(found.name),
                              NumberOrNull(found.length, 1), TextOrNull(found.told_by),
                              TextOrNull(found.captures), found.is_private});
    }
    return table;
}

Table RegisterTable(const Device& device) {
    Table table{{{"register", "Register"}, {"instructions", "Selected by"}}, {}};
    const CRegisterAccessDesc* access = device.parser().GetRegisterAccessDescription();
    for (int i = 0; access != nullptr && i < access->GetRegisterCount(); ++i) {
        const CRegister& data_register = *access->GetRegister(i);
        Json instructions = Json::array();
        for (int k = 0; k < data_register.GetRegisterAssociationCount(); ++k) {
            instructions.push_back(data_register.GetRegisterAssocName(k));
        }
        table.rows.push_back({data_register.GetRegisterName(), instructions});
    }
    return table;
}

Table PairTable(const Device& device) {
    Table table{{{"positive", "Positive"},
                 {"negative", "Negative"},
                 {"positive_cell", "Cell of positive"},
                 {"negative_cell", "Cell of negative"}},
                {}};
    for (const CDifferentialPair& pair : device.Pairs()) {
        table.rows.push_back({pair.GetPositiveElement(), pair.GetNegativeElement(),
                              NumberOrNull(pair.GetPositiveBScanPosition(), 0),
                              NumberOrNull(pair.GetNegativeBScanPosition(), 0)});
    }
    return table;
}

Json InstructionCapture(const Device& device) {
    const CInstrRegisterDesc* instructions = device.parser().GetInstructionRegisterDescription();
    std::string pattern = instructions == nullptr ? "" : instructions->GetInstructionCapture();
    pattern.erase(std::remove(pattern.begin(), pattern.end(), '"'), pattern.end());
    return TextOrNull(pattern);
}

Json InstructionLength(const Device& device) {
    const CInstrRegisterDesc* instructions = device.parser().GetInstructionRegisterDescription();
    const int length = instructions == nullptr ? 0 : instructions->GetInstructionLength();
    return length == 0 ? Json() : Json(length);
}

std::size_t PortCount(const Device& device) {
    std::unordered_set<std::string_view> names;
    for (const Element& element : device.elements()) names.insert(element.port);
    return names.size();
}

Table SummaryTable(const Device& device) {
    const std::vector<Element>& elements = device.elements();
    const auto pins = std::count_if(elements.begin(), elements.end(),
                                    [](const Element& element) { return !element.pin.empty(); });
    Table table{{{"field", "Field"}, {"value", "Value"}},
                {{"component", TextOrNull(device.ComponentName())},
                 {"package", TextOrNull(device.PackageName())},
                 {"ports", PortCount(device)},
                 {"port elements", elements.size()},
                 {"pins", pins},
                 {"cells", device.map().GetBScanLength()},
                 {"instruction length", InstructionLength(device)},
                 {"instruction capture", InstructionCapture(device)}}};
    for (const Fact& fact : TestFacts(device)) table.rows.push_back({fact.key, fact.value});
    return table;
}

Json DeviceJson(const Device& device) {
    Json json{{"file", device.path()},
              {"component", TextOrNull(device.ComponentName())},
              {"package", TextOrNull(device.PackageName())},
              {"pins", ToJson(PinTable(device))},
              {"cells", ToJson(CellTable(device))},
              {"instruction_length", InstructionLength(device)},
              {"instruction_capture", InstructionCapture(device)},
              {"instructions", ToJson(InstructionTable(device))},
              {"registers", ToJson(RegisterTable(device))},
              {"pairs", ToJson(PairTable(device))}};
    json.update(TestFactsJson(device));
    return json;
}

}  // namespace tool
