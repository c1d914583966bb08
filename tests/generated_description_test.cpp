// Devices made at random, written in random layouts: what is read is what was written.

#include <bscan/description.h>
#include <bscan/pin_driver.h>

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace bscan::test {
namespace {

struct PlannedPort {
    std::string name;
    std::string mode;
    std::optional<IndexRange> range;
    std::vector<std::string> pins;

    int IndexAt(std::size_t k) const {
        const int step = static_cast<int>(k);
        return range->left <= range->right ? range->left + step : range->left - step;
    }
};

struct PlannedCell {
    std::string function;
    std::size_t port = 0;     ///< npos for none
    std::size_t element = 0;  ///< of the port, in declared order
    char safe = 'X';
    int control = -1;
    char disable_value = '0';
    std::string disable_result;
};

constexpr std::size_t kNoPort = static_cast<std::size_t>(-1);

struct PlannedDevice {
    std::vector<PlannedPort> ports;
    std::vector<PlannedCell> cells;  ///< by number
    std::vector<std::pair<std::string, std::string>> opcodes;
    std::size_t instruction_length = 0;
    std::string idcode;
};

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    std::size_t Below(std::size_t count) { return engine_() % count; }
    bool Chance(std::size_t one_in) { return Below(one_in) == 0; }
    template <class Values>
    auto Pick(const Values& values) {
        return values[Below(values.size())];
    }

private:
    std::mt19937 engine_;
};

std::string Bits(Random& random, std::size_t count) {
    std::string bits;
    while (bits.size() < count) bits += random.Chance(2) ? '1' : '0';
    return bits;
}

/// Gives a port the cells that its mode asks for.
void PlanCells(Random& random, PlannedDevice& device, std::size_t port) {
    const std::string& mode = device.ports[port].mode;
    const std::vector<std::string> results = {"Z", "WEAK0", "WEAK1", "PULL0", "PULL1", "KEEPER"};
    int control = -1;
    char disable = '0';
    for (std::size_t k = 0; k < device.ports[port].pins.size(); ++k) {
        const bool drives = mode == "out" || mode == "inout";
        if (drives && (control < 0 || random.Chance(3))) {
            control = static_cast<int>(device.cells.size());
            disable = random.Chance(2) ? '1' : '0';
            device.cells.push_back(
                {random.Chance(2) ? "control" : "controlr", kNoPort, 0, disable, -1, '0', ""});
        }
        if (mode == "in" || (mode == "inout" && random.Chance(2))) {
            const char* const function =
                mode == "in" && random.Chance(4) ? "observe_only" : "input";
            device.cells.push_back({function, port, k, 'X', -1, '0', ""});
            if (mode == "in") continue;
            device.cells.push_back(
                {"output3", port, k, 'X', control, disable, random.Pick(results)});
        } else if (drives) {
            device.cells.push_back({mode == "out" ? "output3" : "bidir", port, k,
                                    random.Pick(std::string("X01")), control, disable,
                                    random.Pick(results)});
        } else if (mode == "buffer") {
            device.cells.push_back({"output2", port, k, '1', -1, '0', ""});
        }
        if (random.Chance(8)) device.cells.push_back({"internal", kNoPort, 0, 'X', -1, '0', ""});
    }
}

PlannedDevice Plan(Random& random) {
    PlannedDevice device;
    int pin = 0;
    const auto next_pin = [&] {
        ++pin;
        return std::string(1, static_cast<char>('A' + pin / 20)) + std::to_string(pin % 20 + 1);
    };
    for (const char* const tap : {"TDI", "TMS", "TCK", "TDO"}) {
        device.ports.push_back({tap, tap == std::string("TDO") ? "out" : "in", {}, {next_pin()}});
    }
    const std::vector<std::string> modes = {"in", "out", "inout", "buffer", "linkage"};
    const std::size_t count = 1 + random.Below(12);
    for (std::size_t i = 0; i < count; ++i) {
        PlannedPort port{"P" + std::to_string(i), random.Pick(modes), {}, {}};
        if (random.Chance(2)) {
            const int low = static_cast<int>(random.Below(40));
            const int high = low + static_cast<int>(random.Below(9));
            port.range = random.Chance(2) ? IndexRange{low, high} : IndexRange{high, low};
            if (low == high) port.range = IndexRange{low, high};
        }
        const int elements = port.range ? port.range->Count() : 1;
        for (int k = 0; k < elements; ++k) port.pins.push_back(next_pin());
        device.ports.push_back(port);
        PlanCells(random, device, device.ports.size() - 1);
    }
    if (device.cells.empty()) device.cells.push_back({"internal", kNoPort, 0, 'X', -1, '0', ""});
    device.instruction_length = 3 + random.Below(8);
    const std::string last_bits = Bits(random, device.instruction_length - 3);
    device.opcodes = {{"BYPASS", std::string(device.instruction_length, '1')},
                      {"EXTEST", "000" + last_bits},
                      {"SAMPLE", "001" + last_bits},
                      {"PRELOAD", "001" + last_bits},
                      {"IDCODE", "010" + last_bits}};
    device.idcode = Bits(random, 16) + "111111111110111" + "1";
    return device;
}

/// Writes tokens with random room between them, in random letter case.
class Layout {
public:
    explicit Layout(Random& random) : random_(random) {}

    /// Words and marks of the language.
    void Write(std::initializer_list<std::string_view> tokens) {
        for (const std::string_view token : tokens) {
            Word(token);
            Room();
        }
    }

    /// A value as a string of pieces; a piece ends between two tokens alone.
    void String(const std::vector<std::string>& tokens) {
        text_ += '"';
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            Word(tokens[i]);
            if (random_.Chance(2)) text_ += ' ';
            if (i + 1 == tokens.size() || !random_.Chance(6)) continue;
            text_ += " \"";
            Room();
            text_ += '&';
            Room();
            text_ += '"';
        }
        text_ += '"';
        Room();
    }

    const std::string& Text() const { return text_; }

private:
    void Word(std::string_view token) {
        for (const char c : token) {
            const bool other = random_.Chance(9);
            text_ += !other                 ? c
                     : c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A')
                     : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a')
                                            : c;
        }
    }
    void Room() {
        switch (random_.Below(9)) {
            case 0:
                text_ += "\n";
                break;
            case 1:
                text_ += "\r\n\t";
                break;
            case 2:
                text_ += " -- note; \"of\" (no) use &\n";
                break;
            default:
                text_ += ' ';
        }
    }

    Random& random_;
    std::string text_;
};

void Append(std::vector<std::string>& tokens, std::initializer_list<std::string> more) {
    tokens.insert(tokens.end(), more);
}

void WritePorts(Layout& layout, const PlannedDevice& device) {
    layout.Write({"port", "("});
    for (const PlannedPort& port : device.ports) {
        if (&port != &device.ports.front()) layout.Write({";"});
        layout.Write({port.name, ":", port.mode});
        if (!port.range) {
            layout.Write({"bit"});
            continue;
        }
        const IndexRange range = *port.range;
        layout.Write({"bit_vector", "(", std::to_string(range.left),
                      range.left <= range.right ? "to" : "downto", std::to_string(range.right),
                      ")"});
    }
    layout.Write({")", ";"});
}

void WritePinMap(Layout& layout, const PlannedDevice& device) {
    layout.Write({"attribute", "PIN_MAP", "of", "MADE", ":", "entity", "is", "PHYSICAL_PIN_MAP",
                  ";", "constant", "PACK", ":", "PIN_MAP_STRING", ":="});
    std::vector<std::string> tokens;
    for (const PlannedPort& port : device.ports) {
        if (!tokens.empty()) tokens.push_back(",");
        Append(tokens, {port.name, ":"});
        if (port.range) tokens.push_back("(");
        for (const std::string& pin : port.pins) {
            if (&pin != &port.pins.front()) tokens.push_back(",");
            tokens.push_back(pin);
        }
        if (port.range) tokens.push_back(")");
    }
    layout.String(tokens);
    layout.Write({";"});
}

void WriteAttribute(Layout& layout, std::string_view name, const std::vector<std::string>& value) {
    layout.Write({"attribute", name, "of", "MADE", ":", "entity", "is"});
    layout.String(value);
    layout.Write({";"});
}

std::vector<std::string> RegisterTokens(const PlannedDevice& device) {
    std::vector<std::string> tokens;
    for (std::size_t number = device.cells.size(); number-- > 0;) {
        const PlannedCell& cell = device.cells[number];
        Append(tokens, {std::to_string(number), "(", "BC_1", ","});
        if (cell.port == kNoPort) {
            tokens.push_back("*");
        } else {
            const PlannedPort& port = device.ports[cell.port];
            tokens.push_back(port.name);
            if (port.range) {
                Append(tokens, {"(", std::to_string(port.IndexAt(cell.element)), ")"});
            }
        }
        Append(tokens, {",", cell.function, ",", std::string(1, cell.safe)});
        if (cell.control >= 0) {
            Append(tokens, {",", std::to_string(cell.control), ",",
                            std::string(1, cell.disable_value), ",", cell.disable_result});
        }
        tokens.push_back(")");
        if (number > 0) tokens.push_back(",");
    }
    return tokens;
}

std::string Write(Random& random, const PlannedDevice& device) {
    Layout layout(random);
    layout.Write({"entity", "MADE", "is", "generic", "(", "PHYSICAL_PIN_MAP", ":", "string", ":="});
    layout.String({"PACK"});
    layout.Write({")", ";"});
    WritePorts(layout, device);
    layout.Write({"use", "STD_1149_1_2001.all", ";"});
    WriteAttribute(layout, "COMPONENT_CONFORMANCE", {"STD_1149_1_2001"});
    WritePinMap(layout, device);
    layout.Write({"attribute", "TAP_SCAN_IN",    "of", "TDI", ":", "signal", "is", "true", ";",
                  "attribute", "TAP_SCAN_MODE",  "of", "TMS", ":", "signal", "is", "true", ";",
                  "attribute", "TAP_SCAN_OUT",   "of", "TDO", ":", "signal", "is", "true", ";",
                  "attribute", "TAP_SCAN_CLOCK", "of", "TCK", ":", "signal", "is", "(",    "2.5e6",
                  ",",         "BOTH",           ")",  ";"});
    layout.Write({"attribute", "INSTRUCTION_LENGTH", "of", "MADE", ":", "entity", "is",
                  std::to_string(device.instruction_length), ";"});
    std::vector<std::string> opcodes;
    for (const auto& [name, bits] : device.opcodes) {
        if (!opcodes.empty()) opcodes.push_back(",");
        Append(opcodes, {name, "(", bits, ")"});
    }
    WriteAttribute(layout, "INSTRUCTION_OPCODE", opcodes);
    WriteAttribute(layout, "INSTRUCTION_CAPTURE",
                   {std::string(device.instruction_length - 2, 'X') + "01"});
    WriteAttribute(layout, "IDCODE_REGISTER", {device.idcode});
    layout.Write({"attribute", "BOUNDARY_LENGTH", "of", "MADE", ":", "entity", "is",
                  std::to_string(device.cells.size()), ";"});
    WriteAttribute(layout, "BOUNDARY_REGISTER", RegisterTokens(device));
    layout.Write({"end", "MADE", ";"});
    return layout.Text();
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

void ExpectFacts(const Facts& facts, const PlannedDevice& device) {
    ASSERT_EQ(facts.ports.size(), device.ports.size());
    ASSERT_EQ(facts.pin_maps.size(), 1U);
    ASSERT_EQ(facts.pin_maps.front().entries.size(), device.ports.size());
    for (std::size_t i = 0; i < device.ports.size(); ++i) {
        const PlannedPort& port = device.ports[i];
        EXPECT_EQ(Lower(facts.ports[i].name.text), Lower(port.name));
        EXPECT_EQ(Lower(facts.ports[i].mode_word.text), port.mode);
        EXPECT_EQ(facts.ports[i].range.has_value(), port.range.has_value());
        std::vector<std::string> pins;
        for (const Word& pin : facts.pin_maps.front().entries[i].pins) {
            pins.push_back(Lower(pin.text));
        }
        std::vector<std::string> wanted;
        for (const std::string& pin : port.pins) wanted.push_back(Lower(pin));
        EXPECT_EQ(pins, wanted);
    }
    ASSERT_EQ(facts.instructions.size(), device.opcodes.size());
    for (std::size_t i = 0; i < device.opcodes.size(); ++i) {
        ASSERT_EQ(facts.instructions[i].opcodes.size(), 1U);
        EXPECT_EQ(facts.instructions[i].opcodes.front().text, device.opcodes[i].second);
    }
    ASSERT_EQ(facts.idcodes.size(), 1U);
    EXPECT_EQ(facts.idcodes.front().text, device.idcode);
    EXPECT_EQ(facts.tap.max_frequency, 2.5e6);
    ASSERT_EQ(facts.cells.size(), device.cells.size());
    for (const Cell& cell : facts.cells) {
        ASSERT_GE(cell.number, 0);
        const PlannedCell& planned = device.cells.at(static_cast<std::size_t>(cell.number));
        EXPECT_EQ(Lower(cell.function_word.text), planned.function);
        EXPECT_EQ(cell.control, planned.control);
        EXPECT_EQ(Lower(cell.disable_result_word.text), Lower(planned.disable_result));
    }
}

/// Each cell is tied to the element that its entry names, and a request for a pin changes the cells
/// that were planned for it.
void ExpectModel(const Description& description, BScanParser& parser, const PlannedDevice& device) {
    BScanPinMap& map = *parser.GetPinMap();
    EXPECT_EQ(FindFault(parser), "");
    for (std::size_t number = 0; number < device.cells.size(); ++number) {
        const PlannedCell& planned = device.cells[number];
        const LBScanCell* const cell = map.GetBScanCell(static_cast<int>(number));
        ASSERT_NE(cell, nullptr);
        LPinNode* element = nullptr;
        if (planned.port != kNoPort) {
            const PlannedPort& port = device.ports[planned.port];
            std::optional<int> index;
            if (port.range) index = port.IndexAt(planned.element);
            element = description.FindElement(map, port.name, index);
            ASSERT_NE(element, nullptr) << port.name;
            EXPECT_EQ(Lower(PinName(*element)), Lower(port.pins[planned.element]));
        }
        EXPECT_EQ(cell->GetPinNode(), element) << number;
    }
    PinDriver driver(map);
    driver.Preset();
    for (std::size_t number = 0; number < device.cells.size(); ++number) {
        const PlannedCell& planned = device.cells[number];
        if (planned.control < 0) continue;
        const int element = driver.Find(map.GetBScanCell(static_cast<int>(number))->GetPinNode());
        const LBScanCell& control = *map.GetBScanCell(planned.control);
        const eSignal off = planned.disable_value == '1' ? SIG_1 : SIG_0;
        EXPECT_EQ(control.cellValue, off);
        EXPECT_EQ(driver.Request(element, SIG_1), DriveCode::kDrives);
        EXPECT_NE(control.cellValue, off);
        EXPECT_EQ(driver.Shown(element), SIG_1);
        EXPECT_EQ(driver.Request(element, SIG_Z), DriveCode::kReleased);
        EXPECT_EQ(control.cellValue, off);
    }
}

TEST(GeneratedDescription, IsReadAsItWasWritten) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        const PlannedDevice device = Plan(random);
        const std::string text = Write(random, device);
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Description description = Description::Parse(text, "made.bsd");
        for (const Finding& finding : description.Findings()) {
            ADD_FAILURE() << finding.line << ": " << finding.message << '\n'
                          << description.Line(finding.line);
        }
        ExpectFacts(description.GetFacts(), device);
        BScanParser parser;
        ASSERT_EQ(description.Fill(parser), 0);
        ExpectModel(description, parser, device);
        if (HasFailure()) FAIL() << text;
    }
}

/// A text may be cut anywhere: what stands before the cut is read as it was.
TEST(GeneratedDescription, KeepsWhatStandsBeforeACut) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        Random random(seed);
        const PlannedDevice device = Plan(random);
        const std::string text = Write(random, device);
        for (int i = 0; i < 40; ++i) {
            const std::size_t size = random.Below(text.size());
            const Description part = Description::Parse(std::string_view(text).substr(0, size), "");
            const std::vector<Port>& ports = part.GetFacts().ports;
            ASSERT_LE(ports.size(), device.ports.size() + 1);  // a word cut short may look like one
            for (std::size_t k = 0; k + 1 < ports.size(); ++k) {
                EXPECT_EQ(Lower(ports[k].name.text), Lower(device.ports[k].name));
            }
            // What is lost is told as one loss; the entry that is cut may be told, too.
            int errors = 0;
            std::string rules;
            for (const Finding& finding : part.Findings()) {
                errors += finding.severity == Severity::kError ? 1 : 0;
                rules += finding.rule + ' ';
            }
            EXPECT_LE(errors, 2) << rules << '\n' << text.substr(0, size);
        }
    }
}

}  // namespace
}  // namespace bscan::test
