// Rules about facts: a sound device has no finding, and one fault in it has one, where it stands.

#include <bscan/description.h>

#include "bsdl/findings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::test {
namespace {

// A device of the edition of 2001 in which everything that rules look at is there.
constexpr std::string_view kSound = R"bsdl(entity LATCH8 is
  generic (PHYSICAL_PIN_MAP : string := "QFP28");
  port (
    TDI, TMS, TCK : in bit;
    TRST_N : in bit;
    TDO : out bit;
    CLK : in bit;
    MODE_A : in bit;
    MODE_B : in bit;
    D : in bit_vector(0 to 3);
    Q : out bit_vector(4 downto 1);
    ACK : inout bit;
    READY : buffer bit;
    ALARM : out bit;
    RX_P : in bit;
    RX_N : in bit;
    NOISE : out bit;
    VCC : linkage bit_vector(1 to 2);
    GND : linkage bit
  );
  use STD_1149_1_2001.all;
  attribute COMPONENT_CONFORMANCE of LATCH8 : entity is "STD_1149_1_2001";
  attribute PIN_MAP of LATCH8 : entity is PHYSICAL_PIN_MAP;
  constant QFP28 : PIN_MAP_STRING :=
    "TDI : 1, TMS : 2, TCK : 3," &
    "TRST_N : 4," &
    "TDO : 5," &
    "CLK : 6," &
    "MODE_A : 7, MODE_B : 8," &
    "D : (9, 10, 11, 12)," &
    "Q : (13, 14, 15, 16)," &
    "ACK : 17," &
    "READY : 18," &
    "ALARM : 19," &
    "RX_P : 20, RX_N : 21," &
    "NOISE : 22," &
    "VCC : (23, 24)," &
    "GND : 25";
  attribute PORT_GROUPING of LATCH8 : entity is "Differential_Voltage ((RX_P, RX_N))";
  attribute TAP_SCAN_IN of TDI : signal is true;
  attribute TAP_SCAN_OUT of TDO : signal is true;
  attribute TAP_SCAN_MODE of TMS : signal is true;
  attribute TAP_SCAN_CLOCK of TCK : signal is (10.0e6, BOTH);
  attribute TAP_SCAN_RESET of TRST_N : signal is true;
  attribute COMPLIANCE_PATTERNS of LATCH8 : entity is "(MODE_A, MODE_B) (01, 11)";
  attribute INSTRUCTION_LENGTH of LATCH8 : entity is 4;
  attribute INSTRUCTION_OPCODE of LATCH8 : entity is
    "BYPASS (1111)," &
    "EXTEST (0000)," &
    "SAMPLE (0001)," &
    "PRELOAD (0001)," &
    "IDCODE (0010)," &
    "USERCODE (0011)," &
    "HIGHZ (0100)," &
    "PROBE (0101)," &
    "SECRET (0110)";
  attribute INSTRUCTION_CAPTURE of LATCH8 : entity is "XX01";
  attribute INSTRUCTION_PRIVATE of LATCH8 : entity is "SECRET";
  attribute IDCODE_REGISTER of LATCH8 : entity is "00010010001101000101000000000011";
  attribute USERCODE_REGISTER of LATCH8 : entity is "XXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX";
  attribute REGISTER_ACCESS of LATCH8 : entity is
    "BOUNDARY (EXTEST, SAMPLE)," &
    "BYPASS (HIGHZ)," &
    "DEVICE_ID (USERCODE)," &
    "TRACE[5] (PROBE CAPTURES 0X001)";
  attribute BOUNDARY_LENGTH of LATCH8 : entity is 19;
  attribute BOUNDARY_REGISTER of LATCH8 : entity is
    "18 (BC_4, CLK, clock, X)," &
    "17 (BC_1, D(0), input, X)," &
    "16 (BC_1, D(1), input, X)," &
    "15 (BC_1, D(2), input, X)," &
    "14 (BC_1, D(3), input, X)," &
    "13 (BC_2, *, control, 1)," &
    "12 (BC_1, Q(4), output3, X, 13, 1, Z)," &
    "11 (BC_1, Q(3), output3, X, 13, 1, Z)," &
    "10 (BC_1, Q(2), output3, X, 13, 1, Z)," &
    "9 (BC_1, Q(1), output3, X, 13, 1, Z)," &
    "8 (BC_2, *, controlr, 0)," &
    "7 (BC_1, ACK, output3, X, 8, 0, PULL1)," &
    "6 (BC_1, ACK, input, X)," &
    "5 (BC_1, READY, output2, X)," &
    "4 (BC_1, ALARM, output2, 1, 4, 1, WEAK1)," &
    "3 (BC_1, *, internal, X)," &
    "2 (BC_4, RX_P, observe_only, X)," &
    "1 (BC_1, MODE_A, input, X)," &
    "1 (BC_1, NOISE, output3, X, 0, 1, Z)," &
    "0 (BC_2, *, control, 1)";
end LATCH8;
)bsdl";

// A change of the device, and the one finding that it gives.
struct Fault {
    std::string_view what;
    std::string_view with;
    std::string_view rule;  // empty: no finding
    std::string_view at;    // the finding stands in the first line that has this; empty: no place
};

std::string Replaced(std::string_view what, std::string_view with) {
    std::string text(kSound);
    const std::size_t place = text.find(what);
    EXPECT_NE(place, std::string::npos) << what;
    if (place != std::string::npos) text.replace(place, what.size(), with);
    return text;
}

int LineOf(std::string_view text, std::string_view sought) {
    const std::size_t place = text.find(sought);
    if (place == std::string_view::npos) return -1;
    return 1 + static_cast<int>(std::count(text.begin(), text.begin() + place, '\n'));
}

std::string Shown(const std::vector<Finding>& findings) {
    std::string shown;
    for (const Finding& finding : findings) {
        shown += std::to_string(finding.line) + ": " + finding.rule + ": " + finding.message + "\n";
    }
    return shown;
}

template <std::size_t kCount>
void ExpectFindings(const Fault (&faults)[kCount]) {
    for (const Fault& fault : faults) {
        SCOPED_TRACE(std::string(fault.what) + " -> " + std::string(fault.with));
        const std::string text = Replaced(fault.what, fault.with);
        const Description device = Description::Parse(text, nullptr);
        const std::vector<Finding>& findings = device.Findings();
        ASSERT_EQ(findings.size(), fault.rule.empty() ? 0U : 1U) << Shown(findings);
        if (findings.empty()) continue;
        EXPECT_EQ(findings[0].rule, fault.rule) << Shown(findings);
        EXPECT_EQ(findings[0].line, LineOf(text, fault.at)) << Shown(findings);
    }
}

TEST(Rules, FindNothingWrongWithASoundDevice) {
    const Description device = Description::Parse(kSound, nullptr);
    EXPECT_EQ(device.Findings().size(), 0U) << Shown(device.Findings());
}

TEST(Rules, PortsAndPinMaps) {
    const Fault rows[] = {
        {"ACK : inout", "ACK : inuot", "port-mode-unknown", "ACK : inuot"},
        {"ACK : inout bit", "ACK : inout wire", "port-type-unknown", "ACK : inout wire"},
        // A name that several parts know is not declared; the port that no one knows is meant.
        {"D : in bit_vector(0 to 3)", "D : in bit_vector", "range-malformed", "D : in"},
        {"  attribute PIN_MAP of LATCH8 : entity is PHYSICAL_PIN_MAP;\n", "",
         "pin-map-attribute-missing", "constant QFP28"},
        {"ALARM : out", "ALRAM : out", "port-undeclared", "ALRAM : out"},
        {"    ALARM : out bit;\n", "", "port-undeclared", "ALARM : 19"},
        {"\"ALARM : 19", "\"ALRAM : 19", "port-unknown", "ALRAM"},
        {"\"ALARM : 19,\" &", "", "port-without-pin", "ALARM : out"},
        {"5 (BC_1, READY", "5 (BC_1, REDAY", "port-unknown", "REDAY"},
        {"Q : out bit_vector(4 downto 1)", "Q : out bit_vector(3 downto 1)", "port-range",
         "Q : out"},
        {"Q : out bit_vector(4 downto 1)", "Q : out bit_vector(4 downto 0)", "port-range",
         "Q : out"},
        {"VCC : linkage bit_vector(1 to 2)", "VCC : linkage bit_vector(1 to 3)", "pin-count",
         "VCC : (23"},
        {"D : (9, 10, 11, 12)", "D(0 to 3) : (9, 10, 11, 12)", "pin-map-by-element", "D(0 to"},
        {"(13, 14, 15, 16)", "(13, 14, 15)", "pin-count", "Q : (13"},
        {"D(2)", "D(7)", "index-outside", "D(7)"},
        {"ACK, input", "ACK(0), input", "index-of-scalar", "ACK(0)"},
        {"D(2)", "D", "index-missing", "15 (BC_1, D,"},
        {"GND : linkage bit", "GND : linkage bit_vector(3 to 3)", "", ""},
        {"\"GND : 25", "\"GND : (25, 26)", "pin-list-of-scalar", "GND : (25"},
        {"READY : 18", "READY : (18, 26)", "pin-count", "READY : (18"},
        {"ALARM : 19", "ALARM : 18", "pin-twice", "ALARM : 18"},
        {":= \"QFP28\"", ":= \"QFP82\"", "package-unknown", "QFP82"},
        {":= \"QFP28\"", ":= \"UNDEFINED\"", "package-undefined", "UNDEFINED"},
        {"ACK : inout", "ACK : out", "port-mode-against-cells", "ACK : out"},
        {"Q : out", "Q : in", "port-mode-against-cells", "Q : in"},
    };
    ExpectFindings(rows);
}

TEST(Rules, MissElementsOfAVector) {
    const std::string text = Replaced("D : (9, 10, 11, 12)", "D(0) : 9, D(1) : 10, D(3) : 12");
    const Description device = Description::Parse(text, nullptr);
    ASSERT_EQ(device.Findings().size(), 2U) << Shown(device.Findings());
    EXPECT_EQ(device.Findings()[0].rule, "pin-map-by-element");
    EXPECT_EQ(device.Findings()[1].rule, "pin-count");
}

TEST(Rules, TapAndCompliance) {
    const Fault rows[] = {
        {"TAP_SCAN_IN of TDI", "TAP_SCAN_IN of TDX", "port-unknown", "TDX"},
        {"  attribute TAP_SCAN_IN of TDI : signal is true;\n", "", "tap-signal-missing", "entity"},
        {"  attribute TAP_SCAN_RESET of TRST_N : signal is true;\n", "", "", ""},
        {"TDO : out", "TDO : buffer", "tap-port-wide", "TDO : buffer"},
        {"TDO : out", "TDO : in", "tap-port-mode", "TDO : in"},
        {"TMS, TCK : in", "TMS, TCK : out", "tap-port-mode", "TMS, TCK"},
        {"TAP_SCAN_IN of TDI", "TAP_SCAN_IN of ALARM", "tap-port-mode", "TAP_SCAN_IN"},
        {"TAP_SCAN_MODE of TMS", "TAP_SCAN_MODE of TDI", "tap-port-shared", "TAP_SCAN_MODE"},
        {"TAP_SCAN_IN of TDI", "TAP_SCAN_IN of CLK", "tap-port-in-register", "TAP_SCAN_IN"},
        {"(BC_4, CLK, clock", "(BC_4, TCK, clock", "tap-port-in-register", "(BC_4, TCK"},
        {"10.0e6", "0.0", "tap-frequency", "(0.0"},
        {"10.0e6", "1O.0e6", "number-malformed", "1O.0e6"},
        {"(MODE_A, MODE_B)", "(MODE_A, MODE_X)", "port-unknown", "MODE_X"},
        {"(MODE_A, MODE_B)", "(MODE_A, READY)", "compliance-port-mode", "MODE_A, READY"},
        {"(01, 11)", "(01, 111)", "compliance-pattern-length", "(01, 111)"},
        {"(01, 11)", "(01, 1Z)", "compliance-bits", "1Z"},
    };
    ExpectFindings(rows);
}

TEST(Rules, Instructions) {
    const Fault rows[] = {
        {"entity is 4;", "entity is 5;", "instruction-length", "entity is 5;"},
        {"entity is 4;", "entity is 1;", "instruction-length-too-small", "entity is 1;"},
        {"  attribute INSTRUCTION_LENGTH of LATCH8 : entity is 4;\n", "",
         "instruction-length-missing", "INSTRUCTION_OPCODE"},
        {"HIGHZ (0100)", "HIGHZ (00100)", "opcode-length", "HIGHZ (00100)"},
        {"BYPASS (1111)", "BYPASS (111)", "opcode-length", "BYPASS (111)"},
        {"HIGHZ (0100)", "HIGHZ (0200)", "opcode-bits", "HIGHZ (0200)"},
        {"HIGHZ (0100)", "HIGHZ (0000)", "opcode-shared", "HIGHZ"},
        {"\"HIGHZ (0100)", "\"HIGHZ (0100), HIGHZ (0111)", "instruction-twice", "HIGHZ"},
        {"\"HIGHZ (0100)", "\"HIGHZ (0100), HIGHZ (0100)", "instruction-repeated", "HIGHZ"},
        {"BYPASS (1111)", "BYPASS (1110)", "bypass-opcode", "BYPASS (1110)"},
        {"EXTEST (0000)", "EXTEST (1000)", "", ""},
        {"\"SAMPLE (0001),\" &", "", "instruction-missing", "INSTRUCTION_OPCODE"},
        {"\"SAMPLE (0001)", "\"SAMPEL (0001)", "instruction-missing", "SAMPEL"},
        {"\"PRELOAD (0001),\" &", "", "preload-missing", "INSTRUCTION_OPCODE"},
        {"\"BYPASS (1111),\" &", "", "bypass-missing", "INSTRUCTION_OPCODE"},
        {"\"SECRET\"", "\"SECRTE\"", "private-instruction-unknown", "SECRTE"},
        {"\"XX01\"", "\"XXX01\"", "instruction-capture-length", "XXX01"},
        {"\"XX01\"", "\"XX10\"", "instruction-capture-ending", "XX10"},
        {"\"XX01\"", "\"XZ01\"", "instruction-capture-bits", "XZ01"},
        {"  attribute INSTRUCTION_CAPTURE of LATCH8 : entity is \"XX01\";\n", "",
         "instruction-capture-missing", "entity"},
    };
    ExpectFindings(rows);
}

TEST(Rules, CodesAndRegisters) {
    const Fault rows[] = {
        {"00010010001101000101000000000011", "0001001000110100010100000000001", "idcode-length",
         "IDCODE_REGISTER"},
        {"00010010001101000101000000000011", "00010010001101000101000000000010", "idcode-ending",
         "IDCODE_REGISTER"},
        {"00010010001101000101000000000011", "0001001000110100010100000000001Z", "idcode-bits",
         "IDCODE_REGISTER"},
        {"\"IDCODE (0010),\" &", "", "idcode-instruction-missing", "IDCODE_REGISTER"},
        {"\"IDCODE (0010)", "\"IDCOD (0010)", "idcode-instruction-missing", "IDCOD (0010)"},
        {"  attribute USERCODE_REGISTER of LATCH8 : entity is "
         "\"XXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX\";\n",
         "", "idcode-register-missing", "USERCODE (0011)"},
        {"(EXTEST, SAMPLE)", "(EXTEST, SAMPEL)", "register-instruction-unknown", "SAMPEL"},
        {"BYPASS (HIGHZ)", "BYPASS (HIGHZ, PROBE)", "register-instruction-twice", "(PROBE CAP"},
        {"BYPASS (HIGHZ)", "BYPASS (HIGHZ, HIGHZ)", "register-instruction-repeated", "(HIGHZ, H"},
        {"BYPASS (HIGHZ)", "BOUNDARY (HIGHZ)", "register-of-standard", "BOUNDARY (HIGHZ)"},
        {"BYPASS (HIGHZ)", "BYPAS (HIGHZ)", "register-unknown", "BYPAS (HIGHZ)"},
        {"TRACE[5] (PROBE CAPTURES 0X001)", "TRACE (PROBE)", "register-length-missing", "TRACE"},
        {"TRACE[5] (PROBE CAPTURES 0X001)", "TRACE[5] (PROBE), TRACE[6] (SECRET)",
         "register-length", "TRACE[5]"},
        {"DEVICE_ID (USERCODE)", "DEVICE_ID[31] (USERCODE)", "register-length", "DEVICE_ID[31]"},
        {"BOUNDARY (EXTEST, SAMPLE)", "BOUNDARY[18] (EXTEST)", "register-length", "BOUNDARY[18]"},
        {"0X001", "0X01", "register-capture-length", "0X01"},
    };
    ExpectFindings(rows);
}

TEST(Rules, CellNumbers) {
    const Fault rows[] = {
        {"entity is 19;", "entity is 20;", "boundary-length", "entity is 20;"},
        {"entity is 19;", "entity is 9;", "boundary-length", "entity is 9;"},
        {"  attribute BOUNDARY_LENGTH of LATCH8 : entity is 19;\n", "", "boundary-length-missing",
         "BOUNDARY_REGISTER"},
        {"\"6 (BC_1, ACK", "\"66 (BC_1, ACK", "cell-number", "66 (BC_1"},
        {"\"6 (BC_1, ACK", "\"5 (BC_1, ACK", "cell-number", "5 (BC_1, ACK"},
        {"\"13 (BC_2", "\"12 (BC_2", "cell-number", "12 (BC_2"},
        {"\"18 (BC_4", "\"17 (BC_4", "cell-number", "17 (BC_4"},
        {"\"6 (BC_1, ACK, input, X),\" &", "", "cell-missing", "\"5 (BC_1"},
        {"\"16 (BC_1, D(1), input, X),\" &\n    \"15 (BC_1, D(2), input, X),\" &", "",
         "cell-missing", "14 (BC_1"},
        {"\"3 (BC_1, *, internal, X)", "\"3 (BC_1, *, internal, X), 3 (BC_1, *, internal, X)",
         "cell-twice", "3 (BC_1, *"},
        {"\"3 (BC_1, *, internal, X)", "\"3 (BC_1, *, internal, X), 99 (BC_1, *, internal, X)",
         "cell-outside", "99 (BC_1"},
    };
    ExpectFindings(rows);
}

TEST(Rules, Cells) {
    const Fault rows[] = {
        {"CLK, clock, X", "CLK, clock", "cell-fields", "18 (BC_4"},
        {"X, 13, 1, Z),\" &\n    \"10", "X, 13, 1),\" &\n    \"10", "cell-fields", "\"11 (BC_1"},
        {"(BC_4, CLK", "(BD_4, CLK", "cell-type", "BD_4"},
        {"D(1), input", "D(1), inptu", "cell-function", "inptu"},
        {"D(1), input, X", "D(1), input, Z", "cell-safe", "D(1)"},
        {"12 (BC_1, Q(4), output3, X, 13, 1, Z)", "12 (BC_1, Q(4), output3, X, 13, X, Z)",
         "cell-disable-value", "12 (BC_1"},
        {"PULL1", "PULL2", "cell-disable-result", "PULL2"},
        {"PULL1", "KEEPER", "", ""},
        {"5 (BC_1, READY", "5 (BC_1, *", "cell-without-port", "5 (BC_1, *"},
        {"D(1), input", "*, input", "cell-without-port", "16 (BC_1, *"},
        {"3 (BC_1, *, internal", "3 (BC_1, CLK, internal", "cell-with-port", "3 (BC_1"},
        {"D(1), input", "D(1), output2", "cell-function-against-mode", "D(1), output2"},
        {"READY, output2", "READY, observe_only", "cell-observer-against-mode", "READY, obs"},
        {"Q(3), output3", "Q(2), output3", "port-driven-twice", "10 (BC_1, Q(2)"},
        {"Q(3), output3, X, 13, 1, Z", "Q(3), output3, X", "control-missing", "11 (BC_1"},
        {"ACK, input, X", "ACK, input, X, 8, 0, Z", "control-unneeded", "ACK, input"},
        {"X, 8, 0, PULL1", "X, 80, 0, PULL1", "control-outside", "PULL1"},
        {"X, 8, 0, PULL1", "X, 6, 0, PULL1", "control-is-none", "PULL1"},
        {"X, 8, 0, PULL1", "X, 3, 0, PULL1", "control-is-none", "3 (BC_1, *"},
        {"*, controlr, 0", "*, internal, 0", "control-is-none", "*, internal"},
        {"*, control, 1", "*, control, 0", "safe-turns-on", "*, control, 0"},
        {"Q(4), output3, X, 13, 1", "Q(4), output3, X, 13, 0", "safe-turns-on", "Q(4), output3"},
    };
    ExpectFindings(rows);
}

TEST(Rules, Pairs) {
    const Fault rows[] = {
        {"(RX_P, RX_N)", "(RX_P, RX_M)", "port-unknown", "RX_M"},
        {"(RX_P, RX_N)", "(RX_P)", "pair-leg-missing", "(RX_P)"},
        {"(RX_P, RX_N)", "(RX_P, )", "pair-leg-missing", "(RX_P, )"},
        {"(RX_P, RX_N)", "(RX_P, D)", "pair-shape", "(RX_P, D)"},
        {"(RX_P, RX_N)", "(RX_P, ALARM)", "pair-modes", "(RX_P, ALARM)"},
        {"(RX_P, RX_N)", "(RX_P, RX_N), (RX_N, CLK)", "pair-leg-twice", "(RX_P, RX_N)"},
    };
    ExpectFindings(rows);
}

TEST(Rules, Editions) {
    const Fault rows[] = {
        {"is \"STD_1149_1_2001\"", "is \"STD_1149_1_2002\"", "conformance-unknown", "2002"},
        {"  use STD_1149_1_2001.all;\n", "", "use-missing", "entity"},
        {"STD_1149_1_2001.all", "STD_1194_1_2001.all", "use-missing", "1194"},
        {"  attribute COMPONENT_CONFORMANCE of LATCH8 : entity is \"STD_1149_1_2001\";\n", "",
         "conformance-missing", "entity"},
    };
    ExpectFindings(rows);
}

TEST(Rules, ObserveTheEdition) {
    std::string text = Replaced("is \"STD_1149_1_2001\"", "is \"STD_1149_1_1993\"");
    const auto replace = [&text](std::string_view what, std::string_view with) {
        text.replace(text.find(what), what.size(), with);
    };
    replace("\"PRELOAD (0001),\" &", "");
    EXPECT_EQ(Shown(Description::Parse(text, nullptr).Findings()), "");
    replace("EXTEST (0000)", "EXTEST (1000)");
    const Description device = Description::Parse(text, nullptr);
    ASSERT_EQ(device.Findings().size(), 1U) << Shown(device.Findings());
    EXPECT_EQ(device.Findings()[0].rule, "extest-opcode");
}

// The page about findings has a section for each rule, in the order of the table, and no other.
TEST(Rules, HaveASectionEach) {
    std::ifstream page(BSCAN_SOURCE_DIR "/docs/findings.md");
    std::vector<std::string> sections;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("### ", 0) == 0) sections.push_back(line.substr(4));
    }
    std::set<std::string> rules;
    for (std::size_t i = 0; i < detail::RuleCount(); ++i) {
        const std::string name(detail::RuleName(static_cast<detail::Rule>(i)));
        EXPECT_TRUE(rules.insert(name).second) << name << " has two rows";
        EXPECT_EQ(std::count(sections.begin(), sections.end(), name), 1) << name;
        EXPECT_NE(DescribeRule(name), nullptr);
    }
    for (const std::string& section : sections) EXPECT_EQ(rules.count(section), 1U) << section;
}

}  // namespace
}  // namespace bscan::test
