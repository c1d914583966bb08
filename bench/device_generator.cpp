#include "device_generator.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace bscan::bench {
namespace {

constexpr int kSharers = 8;  // elements under one control cell, and names in one declaration

enum class Kind { kTestAccess, kPair, kPlain };

/// Ports that are declared together.
struct Declaration {
    std::vector<std::string> names;
    const char* mode;
    int width = 0;  // of each; 0 for scalar ports
    bool descending = false;
    Kind kind = Kind::kPlain;
};

/// Writes a string value as quoted lines of a readable width.
class QuotedText {
public:
    void Add(std::string_view item) {
        if (!line_.empty()) {
            line_ += ", ";
            if (line_.size() + item.size() > 70) EndLine(" &");
        }
        line_ += item;
    }
    std::string Finish() {
        EndLine(";");
        return std::move(text_);
    }

private:
    void EndLine(const char* behind) {
        text_ += "  \"" + line_ + '"' + behind + '\n';
        line_.clear();
    }

    std::string text_;
    std::string line_;
};

std::string Numbered(const char* letters, int number, const char* end = "") {
    return letters + std::to_string(number) + end;
}

/// A, B, ... Y, AA, AB, ... without the letters that packages leave out.
std::string RowLetters(int row) {
    constexpr std::string_view kLetters = "ABCDEFGHJKLMNPRTUVWY";
    constexpr int kCount = static_cast<int>(kLetters.size());
    std::string letters;
    for (; row >= 0; row = row / kCount - 1) {
        letters.insert(letters.begin(), kLetters[static_cast<std::size_t>(row % kCount)]);
    }
    return letters;
}

std::vector<Declaration> DeclarePorts(int ports) {
    static constexpr const char* kModes[] = {"in", "inout", "out"};
    static constexpr int kWidths[] = {2, 8, 3, 16, 4, 32, 5, 64, 12, 24, 7, 128};
    std::vector<Declaration> declarations = {
        {{"TDI", "TMS", "TCK"}, "in", 0, false, Kind::kTestAccess},
        {{"TDO"}, "out", 0, false, Kind::kTestAccess},
    };
    const int pairs = ports / 8;
    for (int pair = 0; pair < pairs; ++pair) {
        declarations.push_back({{Numbered("LVDS", pair, "P"), Numbered("LVDS", pair, "N")},
                                pair / kSharers % 2 == 0 ? "out" : "inout",
                                0,
                                false,
                                Kind::kPair});
    }
    int left = ports - 4 - 2 * pairs;
    // The underscore keeps element 1 of BUS1_ apart from element 11 of BUS_.
    const int in_scalars = left / 2;
    int width = std::max(2, ports / 16);
    for (int vector = 0; left > in_scalars; ++vector) {
        width = std::min(width, left - in_scalars);
        declarations.push_back(
            {{Numbered("BUS", vector, "_")}, kModes[vector % 3], width, vector % 2 == 0});
        left -= width;
        width = kWidths[static_cast<std::size_t>(vector) % std::size(kWidths)];
    }
    for (int scalar = 0; left > 0; left -= kSharers) {
        Declaration declaration{{}, kModes[left / kSharers % 3]};
        for (int k = 0; k < std::min(kSharers, left); ++k) {
            declaration.names.push_back(Numbered("IO_", scalar++));
        }
        declarations.push_back(std::move(declaration));
    }
    return declarations;
}

/// The elements of one port of a declaration, in the order of its range.
std::vector<int> Indexes(const Declaration& declaration) {
    std::vector<int> indexes;
    const int count = std::max(1, declaration.width);
    for (int k = 0; k < count; ++k) {
        indexes.push_back(declaration.descending ? count - 1 - k : k);
    }
    return indexes;
}

std::string PortClause(const std::vector<Declaration>& declarations) {
    std::string text = "port (\n";
    for (const Declaration& declaration : declarations) {
        for (const std::string& name : declaration.names) {
            text += (&name == &declaration.names.front() ? "  " : ", ") + name;
        }
        text += std::string(" : ") + declaration.mode;
        const std::string last = std::to_string(declaration.width - 1);
        if (declaration.width == 0) {
            text += " bit";
        } else {
            text +=
                " bit_vector (" + (declaration.descending ? last + " downto 0" : "0 to " + last);
            text += ')';
        }
        text += &declaration == &declarations.back() ? "\n" : ";\n";
    }
    return text + ");\n";
}

/// Lays the elements out row by row, and writes which pin each of them has.
void AssignPins(const std::vector<Declaration>& declarations, int ports, GeneratedDevice& device) {
    const int side = static_cast<int>(std::ceil(std::sqrt(ports)));
    QuotedText value;
    for (const Declaration& declaration : declarations) {
        for (const std::string& name : declaration.names) {
            const std::vector<int> indexes = Indexes(declaration);
            for (std::size_t k = 0; k < indexes.size(); ++k) {
                const int place = static_cast<int>(device.elements.size());
                const std::string pin =
                    Numbered(RowLetters(place / side).c_str(), place % side + 1);
                device.elements.push_back({name, indexes[k], pin, ""});
                const bool vector = declaration.width > 0;
                std::string item = k == 0 ? name + (vector ? " : (" : " : ") + pin : pin;
                if (vector && k + 1 == indexes.size()) item += ')';
                value.Add(item);
            }
        }
    }
    device.pin_map = value.Finish();
}

/// Writes the boundary register, cell by cell.
class RegisterWriter {
public:
    explicit RegisterWriter(GeneratedDevice& device) : device_(device) { Cell("*, internal, X"); }

    void Add(const Declaration& declaration, std::vector<PortElement>::iterator element) {
        if (declaration.kind == Kind::kTestAccess) return;
        const bool receives = declaration.mode == std::string_view("in");
        const bool both = declaration.mode == std::string_view("inout");
        const std::string column = declaration.width == 0
                                       ? element->port
                                       : element->port + '(' + std::to_string(element->index) + ')';
        element->cell =
            element->index == 0 ? element->port : element->port + std::to_string(element->index);
        if (receives) {
            Cell(column + ", input, X");
        } else {
            Cell(column + (both ? ", bidir" : ", output3") + ", X, " + Control(declaration.mode) +
                 ", 1, Z");
        }
    }

    /// The two cells that the completion turns into a control cell and the negative leg's cell.
    void AddNegative(PortElement& element) {
        element.cell = element.port;
        Cell("*, internal, 0");
        Cell("*, internal, X", "  -- " + element.port);
    }

    std::string Finish() {
        device_.boundary_register +=
            "  \"" + std::to_string(device_.cells++) + " (BC_4, *, internal, X)\";\n";
        return std::move(device_.boundary_register);
    }

private:
    void Cell(const std::string& columns, const std::string& remark = "") {
        device_.boundary_register += "  \"" + std::to_string(device_.cells++) + " (BC_1, " +
                                     columns + ")," + "\" &" + remark + '\n';
    }

    /// The control cell of the next driver, which shares it with seven others of its mode.
    std::string Control(std::string_view mode) {
        if (sharers_ == 0 || mode != mode_) {
            sharers_ = kSharers;
            mode_ = mode;
            control_ = device_.cells;
            Cell("*, control, 1");
        }
        --sharers_;
        return std::to_string(control_);
    }

    GeneratedDevice& device_;
    int sharers_ = 0;
    std::string_view mode_;
    int control_ = 0;
};

void DescribeRegister(const std::vector<Declaration>& declarations, GeneratedDevice& device) {
    RegisterWriter writer(device);
    auto element = device.elements.begin();
    for (const Declaration& declaration : declarations) {
        if (declaration.kind == Kind::kPair) {
            writer.Add(declaration, element++);
            writer.AddNegative(*element++);
            continue;
        }
        const auto count =
            declaration.names.size() * static_cast<std::size_t>(std::max(1, declaration.width));
        for (std::size_t k = 0; k < count; ++k) writer.Add(declaration, element++);
    }
    device.boundary_register = writer.Finish();
}

void GroupPairs(const std::vector<Declaration>& declarations, GeneratedDevice& device) {
    QuotedText value;
    for (const Declaration& declaration : declarations) {
        if (declaration.kind != Kind::kPair) continue;
        const char* begin = device.pairs++ == 0 ? "Differential_Voltage ((" : "(";
        value.Add(begin + declaration.names[0] + ", " + declaration.names[1] + ')');
    }
    device.grouping = value.Finish();
    device.grouping.insert(device.grouping.rfind('"'), ")");
}

}  // namespace

GeneratedDevice MakeDevice(int ports) {
    GeneratedDevice device;
    const std::vector<Declaration> declarations = DeclarePorts(ports);
    device.port_clause = PortClause(declarations);
    AssignPins(declarations, ports, device);
    GroupPairs(declarations, device);
    DescribeRegister(declarations, device);
    return device;
}

const GeneratedDevice& DeviceOf(int ports) {
    static std::map<int, GeneratedDevice> devices;
    const auto [device, is_new] = devices.try_emplace(ports);
    if (is_new) device->second = MakeDevice(ports);
    return device->second;
}

std::string GeneratedDevice::Text() const {
    return std::string("-- A device that does not exist.\n\nentity SCALED is\n") +
           "generic (PHYSICAL_PIN_MAP : string := \"" + kPackage + "\");\n\n" + port_clause +
           "\nuse STD_1149_1_2001.all;\n\n"
           "attribute COMPONENT_CONFORMANCE of SCALED : entity is \"STD_1149_1_2001\";\n"
           "attribute PIN_MAP of SCALED : entity is PHYSICAL_PIN_MAP;\n\nconstant " +
           kPackage + " : PIN_MAP_STRING :=\n" + pin_map +
           "\nattribute PORT_GROUPING of SCALED : entity is\n" + grouping +
           "\nattribute TAP_SCAN_CLOCK of TCK : signal is (20.0e6, BOTH);\n"
           "attribute INSTRUCTION_LENGTH of SCALED : entity is 4;\n"
           "attribute INSTRUCTION_OPCODE of SCALED : entity is\n"
           "  \"BYPASS (1111),\" &\n  \"EXTEST (0000),\" &\n  \"SAMPLE (0001)\";\n"
           "attribute INSTRUCTION_CAPTURE of SCALED : entity is \"0101\";\n"
           "attribute BOUNDARY_LENGTH of SCALED : entity is " +
           std::to_string(cells) + ";\nattribute BOUNDARY_REGISTER of SCALED : entity is\n" +
           boundary_register + "\nend SCALED;\n";
}

}  // namespace bscan::bench
