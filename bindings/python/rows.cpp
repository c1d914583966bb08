#include "rows.h"

#include "drawing/words.h"

#include <algorithm>
#include <pybind11/stl.h>

namespace bscan::python {
namespace {

py::list Texts(const std::vector<Word>& words) {
    py::list list;
    for (const Word& word : words) list.append(Text(word.text));
    return list;
}

py::object Leg(const LPinNode& node) {
    if (node.IsPositive()) return py::str("positive");
    return node.IsNegative() ? py::object(py::str("negative")) : py::object(py::none());
}

py::list CellNumbers(const LPinNode& node) {
    py::list numbers;
    for (const LBScanCell* cell : drawing::CellsOf(node)) {
        numbers.append(cell->GetBoundaryCellPosition());
    }
    return numbers;
}

py::object PortOf(const Device& device, const LBScanCell& cell) {
    const drawing::DeclaredElement* const element = device.Find(cell.GetPinNode());
    return element == nullptr ? TextOrNone(cell.GetPinName()) : Text(element->Label());
}

// The types as the file writes them; of a merged cell the first.
std::vector<std::string_view> DeclaredTypes(const Facts& facts, int length) {
    std::vector<std::string_view> types(static_cast<std::size_t>(length));
    for (const Cell& cell : facts.cells) {
        if (cell.number < 0 || cell.number >= length) continue;
        std::string_view& type = types[static_cast<std::size_t>(cell.number)];
        if (type.empty()) type = cell.type.text;
    }
    return types;
}

py::object StopOrNone(ClockStop stop) {
    if (stop == ClockStop::kUnknown) return py::none();
    return py::str(stop == ClockStop::kBoth ? "both" : "low");
}

py::dict TapRow(const TapSignals& tap) {
    py::dict row;
    row["tdi"] = NameOrNone(tap.tdi);
    row["tdo"] = NameOrNone(tap.tdo);
    row["tms"] = NameOrNone(tap.tms);
    row["tck"] = NameOrNone(tap.tck);
    row["trst"] = NameOrNone(tap.trst);
    row["max_frequency"] =
        tap.max_frequency > 0 ? py::object(py::float_(tap.max_frequency)) : py::none();
    row["clock_stop"] = StopOrNone(tap.clock_stop);
    return row;
}

py::list Names(const std::vector<ElementName>& names) {
    py::list list;
    for (const ElementName& name : names) list.append(NameOrNone(name));
    return list;
}

std::string_view SeverityWord(Severity severity) {
    if (severity == Severity::kError) return "error";
    return severity == Severity::kWarning ? "warning" : "note";
}

}  // namespace

py::list PinRows(const Device& device) {
    py::list rows;
    for (const drawing::DeclaredElement& element : device.Elements()) {
        const LPinNode& node = *element.node;
        py::dict row;
        row["port"] = Text(element.Label());
        row["name"] = Text(element.port->name.text);
        row["index"] = element.index;
        row["pin"] = TextOrNone(element.pin);
        row["number"] = NumberOrNone(node.GetPinNumber(), 1);
        row["mode"] = Text(drawing::Word(node.GetPortType()));
        row["declared_mode"] = Text(drawing::Word(element.port->mode));
        row["cells"] = CellNumbers(node);
        row["leg"] = Leg(node);
        rows.append(row);
    }
    return rows;
}

py::list PortRows(const Device& device) {
    py::list rows;
    const std::vector<drawing::DeclaredElement>& elements = device.Elements();
    for (std::size_t first = 0, end = 0; first < elements.size(); first = end) {
        const Port& port = *elements[first].port;
        while (end < elements.size() && elements[end].port == &port) ++end;
        py::dict row;
        row["name"] = Text(port.name.text);
        row["mode"] = Text(drawing::Word(port.mode));
        row["range"] = port.range ? py::object(py::make_tuple(port.range->left, port.range->right))
                                  : py::none();
        row["first"] = first;
        row["count"] = end - first;
        rows.append(row);
    }
    return rows;
}

py::list CellRows(Device& device) {
    py::list rows;
    BScanPinMap& map = device.Map();
    const std::vector<std::string_view> types =
        DeclaredTypes(device.GetFacts(), map.GetBScanLength());
    for (int number = 0; number < map.GetBScanLength(); ++number) {
        const LBScanCell& cell = map.GetBScanCellTable()[number];
        const LBScanCell* const control = cell.GetControlCell();
        const std::string_view word = drawing::Word(cell.GetBScanCellType());
        const std::string_view type = types[static_cast<std::size_t>(number)];
        const auto told = [&](const py::object& value) { return control ? value : py::none(); };
        py::dict row;
        row["cell"] = number;
        row["type"] = Text(word);
        row["type_name"] =
            Text(type.empty() || cell.GetBScanCellType() != BC_UNKNOWN ? word : type);
        row["port"] = PortOf(device, cell);
        row["function"] = Text(drawing::Word(cell.GetFunction()));
        row["safe"] = Text(drawing::Word(cell.safeValue));
        row["control"] = control == nullptr ? py::object(py::none())
                                            : py::int_(control->GetBoundaryCellPosition());
        row["disable"] = told(Text(drawing::Word(cell.disableValue)));
        row["result"] = told(Text(drawing::Word(cell.disableResult)));
        row["remark"] = TextOrNone(cell.GetOriginalPinName());
        rows.append(row);
    }
    return rows;
}

py::list InstructionRows(const Facts& facts) {
    py::list rows;
    for (const Instruction& instruction : facts.instructions) {
        py::dict row;
        row["instruction"] = Text(instruction.name.text);
        row["opcodes"] = Texts(instruction.opcodes);
        rows.append(row);
    }
    return rows;
}

py::list RegisterRows(const Facts& facts) {
    py::list rows;
    for (const RegisterAccess& access : facts.registers) {
        py::list instructions;
        py::dict captures;
        for (const RegisterInstruction& instruction : access.instructions) {
            const py::str name = Text(instruction.name.text);
            instructions.append(name);
            if (instruction.captures.Exists()) captures[name] = Text(instruction.captures.text);
        }
        py::dict row;
        row["name"] = Text(access.name.text);
        row["length"] = access.length;
        row["instructions"] = instructions;
        row["captures"] = captures;
        rows.append(row);
    }
    return rows;
}

py::list PairRows(Device& device) {
    py::list rows;
    for (const CDifferentialPair& pair : *device.Parser().GetDifferentialPairList()) {
        py::dict row;
        row["positive"] = Text(pair.GetPositiveElement());
        row["negative"] = Text(pair.GetNegativeElement());
        row["positive_cell"] = NumberOrNone(pair.GetPositiveBScanPosition(), 0);
        row["negative_cell"] = NumberOrNone(pair.GetNegativeBScanPosition(), 0);
        rows.append(row);
    }
    return rows;
}

py::list FindingRows(const Description& description) {
    py::list rows;
    for (const Finding& finding : description.Findings()) {
        py::dict row;
        row["line"] = finding.line;
        row["column"] = finding.column;
        row["severity"] = Text(SeverityWord(finding.severity));
        row["rule"] = Text(finding.rule);
        row["message"] = Text(finding.message);
        row["remedy"] = Text(finding.remedy);
        rows.append(row);
    }
    return rows;
}

py::list AttributeRows(const Facts& facts) {
    py::list rows;
    for (const OtherStatement& other : facts.others) {
        py::dict row;
        row["name"] = OneLine(other.name.text);
        row["of"] = OneLine(other.target.text);
        row["kind"] =
            other.is_constant ? py::object(py::str("constant")) : OneLine(other.target_class.text);
        row["value"] = OneLine(other.value);
        rows.append(row);
    }
    return rows;
}

py::dict SingleFacts(Device& device) {
    const Facts& facts = device.GetFacts();
    py::dict row;
    row["component"] = TextOrNone(facts.entity.text);
    row["package"] = TextOrNone(device.PackageName());
    py::list packages;
    for (const PinMap& map : facts.pin_maps) packages.append(Text(map.name.text));
    row["packages"] = packages;
    row["conformance"] = OneLine(facts.conformance.text);
    row["idcodes"] = Texts(facts.idcodes);
    row["usercodes"] = Texts(facts.usercodes);
    row["tap"] = TapRow(facts.tap);
    row["compliance_ports"] = Names(facts.compliance.ports);
    row["compliance_patterns"] = Texts(facts.compliance.patterns);
    row["private_instructions"] = Texts(facts.private_instructions);
    row["instruction_length"] = NumberOrNone(facts.instruction_length, 1);
    row["instruction_capture"] = TextOrNone(facts.instruction_capture.text);
    row["runbist"] = OneLine(facts.runbist.text);
    row["intest"] = OneLine(facts.intest.text);
    row["design_warning"] = OneLine(facts.design_warning.text);
    return row;
}

}  // namespace bscan::python
