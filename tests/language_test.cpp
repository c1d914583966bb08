// Reading the language: what a text says, whatever way it is written, and what is wrong with it.

#include <bscan/description.h>
#include <bscan/limits.h>
#include <bscan/result.h>

#include "bsdl/reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::test {
namespace {

constexpr std::string_view kSound = R"bsdl(-- A device with something of everything.
entity VALVE is
  generic (PHYSICAL_PIN_MAP : string := "QFP");
  port (
    TDI, TMS, TCK : in bit;
    TDO : out bit;
    GATE : in bit;
    LEVEL : inout bit_vector(7 downto 4);
    RX_P : in bit_vector(1 to 2);
    RX_N : in bit_vector(1 to 2);
    VCC : POWER_POS bit_vector(1 to 2)
  );
  use STD_1149_1_2013.all;
  attribute COMPONENT_CONFORMANCE of VALVE : entity is "STD_1149_1_2013";
  attribute PIN_MAP of VALVE : entity is PHYSICAL_PIN_MAP;
  constant QFP : PIN_MAP_STRING :=
    "TDI : 1, TMS : 2," &
    "TCK : 3," &
    "TDO : 4," &
    "GATE : 5," &
    "LEVEL : (6, 7," &
    "8, 9)," &
    "RX_P : (10, 11)," &
    "RX_N : (12, 13)," &
    "VCC : (14, 15)";
  attribute PORT_GROUPING of VALVE : entity is
    "Differential_Voltage ((RX_P(1), RX_N(1)))," &
    "Differential_Current ((RX_P(2), RX_N(2)))";
  attribute TAP_SCAN_IN of TDI : signal is true;
  attribute TAP_SCAN_MODE of TMS : signal is true;
  attribute TAP_SCAN_OUT of TDO : signal is true;
  attribute TAP_SCAN_CLOCK of TCK : signal is (20.0e6, BOTH);
  attribute COMPLIANCE_PATTERNS of VALVE : entity is "(GATE) (1)";
  attribute INSTRUCTION_LENGTH of VALVE : entity is 4;
  attribute INSTRUCTION_OPCODE of VALVE : entity is
    "BYPASS (1111)," &
    "EXTEST (0000, 1000)," &
    "SAMPLE (0001)," &
    "PRELOAD (0001)," &
    "IDCODE (0010), STATE (0101)";
  attribute INSTRUCTION_CAPTURE of VALVE : entity is "0001";
  attribute IDCODE_REGISTER of VALVE : entity is
    "0001" &              -- version
    "0000000000000000" &  -- part
    "000000001111";
  attribute REGISTER_ACCESS of VALVE : entity is
    "BOUNDARY (EXTEST, SAMPLE)," &
    "STATUS[3] (STATE CAPTURES X01)";
  attribute BOUNDARY_LENGTH of VALVE : entity is 6;
  attribute BOUNDARY_REGISTER of VALVE : entity is
    "5 (BC_1, LEVEL(4), bidir, X, 4, 0, Z)," &  -- the lowest one
    "4 (BC_2, *, control, 0)," &
    "3 (BC_1, LEVEL(5), output3, X, 4, 0, PULL1)," &
    "2 (BC_4, LEVEL(5), input, X)," &
    "1 (BC_4, RX_P(1), input, X)," &
    "0 (BC_4, GATE, input, X)";
end VALVE;
)bsdl";

std::ostream& operator<<(std::ostream& out, const ElementName& element) {
    out << element.port.text;
    if (element.index) out << '(' << *element.index << ')';
    return out;
}

std::ostream& operator<<(std::ostream& out, const std::vector<Word>& words) {
    for (const Word& word : words) out << ' ' << word.text;
    return out;
}

/// What the facts say, in one line each.
std::string Digest(const Facts& facts) {
    std::ostringstream out;
    out << facts.entity.text << ' ' << facts.default_package.text << facts.use_clauses << ' '
        << facts.conformance.text << '\n';
    for (const Port& port : facts.ports) {
        out << "port " << port.name.text << ' ' << static_cast<int>(port.mode);
        if (port.range) out << ' ' << port.range->left << '/' << port.range->right;
        out << '\n';
    }
    for (const PinMap& map : facts.pin_maps) {
        out << "map " << map.name.text << '\n';
        for (const PinMapEntry& entry : map.entries) out << entry.port << ':' << entry.pins << '\n';
    }
    const TapSignals& tap = facts.tap;
    out << tap.tdi << tap.tdo << tap.tms << tap.tck << tap.trst << ' ' << tap.max_frequency << ' '
        << static_cast<int>(tap.clock_stop) << '\n';
    for (const ElementName& port : facts.compliance.ports) out << port << ' ';
    out << facts.compliance.patterns << '\n' << facts.instruction_length << '\n';
    for (const Instruction& each : facts.instructions)
        out << each.name.text << each.opcodes << '\n';
    out << facts.instruction_capture.text << facts.private_instructions << facts.idcodes
        << facts.usercodes << '\n';
    for (const RegisterAccess& access : facts.registers) {
        out << access.name.text << ' ' << access.length.value_or(-1);
        for (const auto& each : access.instructions) {
            out << ' ' << each.name.text << ' ' << each.captures.text;
        }
        out << '\n';
    }
    out << facts.boundary_length << '\n';
    for (const Cell& cell : facts.cells) {
        out << cell.number << ' ' << cell.type.text << ' ' << cell.port << ' ' << cell.function
            << cell.safe << ' ' << cell.control << cell.disable_value << cell.disable_result << ' '
            << cell.remark << '\n';
    }
    for (const PortPair& pair : facts.pairs) {
        out << pair.positive << ' ' << pair.negative << pair.is_current << '\n';
    }
    for (const OtherStatement& other : facts.others) {
        out << other.name.text << '@' << other.target.text << '=' << other.value << '\n';
    }
    return out.str();
}

/// The findings as "line:rule", one blank between.
std::string Findings(const Description& description) {
    std::string text;
    for (const Finding& finding : description.Findings()) {
        text += text.empty() ? "" : " ";
        text += std::to_string(finding.line) + ':' + finding.rule;
    }
    return text;
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

Description Parse(std::string_view text) { return Description::Parse(text, "valve.bsd"); }

struct Row {
    const char* from;
    const char* to;
    const char* findings;
};

void ExpectSameFacts(const Row& row) {
    SCOPED_TRACE(row.to);
    const Description sound = Parse(kSound);
    const std::string text = Replaced(std::string(kSound), row.from, row.to);
    const Description description = Parse(text);
    EXPECT_EQ(description.Result(), kOk);
    EXPECT_EQ(Digest(description.GetFacts()), Digest(sound.GetFacts()));
    EXPECT_EQ(Findings(description), row.findings);
}

TEST(Language, ReadsASoundDevice) {
    const Description description = Parse(kSound);
    const Facts& facts = description.GetFacts();
    EXPECT_EQ(Findings(description), "");
    EXPECT_EQ(Digest(facts), R"(VALVE QFP STD_1149_1_2013.all STD_1149_1_2013
port TDI 1
port TMS 1
port TCK 1
port TDO 2
port GATE 1
port LEVEL 3 7/4
port RX_P 1 1/2
port RX_N 1 1/2
port VCC 11 1/2
map QFP
TDI: 1
TMS: 2
TCK: 3
TDO: 4
GATE: 5
LEVEL: 6 7 8 9
RX_P: 10 11
RX_N: 12 13
VCC: 14 15
TDITDOTMSTCK 2e+07 2
GATE  1
4
BYPASS 1111
EXTEST 0000 1000
SAMPLE 0001
PRELOAD 0001
IDCODE 0010
STATE 0101
0001 00010000000000000000000000001111
BOUNDARY -1 EXTEST  SAMPLE 
STATUS 3 STATE X01
6
5 BC_1 LEVEL(4) 72 403 the lowest one
4 BC_2  40 -122 
3 BC_1 LEVEL(5) 32 405 
2 BC_4 LEVEL(5) 02 -122 
1 BC_4 RX_P(1) 02 -122 
0 BC_4 GATE 02 -122 
RX_P(1) RX_N(1)0
RX_P(2) RX_N(2)1
PIN_MAP@VALVE=PHYSICAL_PIN_MAP
)");
    const Cell& cell = facts.cells[2];
    EXPECT_EQ(cell.function_word.line, 53);
    EXPECT_EQ(
        description.Line(53).substr(static_cast<std::size_t>(cell.function_word.column) - 1, 7),
        "output3");
}

// Different writing of the same facts, within the language.
TEST(Language, ReadsWhatIsWrittenOtherwise) {
    const Row kRows[] = {
        {"attribute TAP_SCAN_IN of TDI : signal is true",
         "ATTRIBUTE Tap_Scan_In Of TDI:Signal IS True", ""},
        {"inout bit_vector(7 downto 4)", "INOUT BIT_VECTOR\n( 7 -- from\n DownTo 4 )", ""},
        {"20.0e6", "2.0E+07", ""},
        {"20.0e6", "20_000_000", ""},
        {"is 4;", "is 16#4#;", ""},
        {"end VALVE;\n", "end VALVE;\n\x1A", ""},
        {"end VALVE;\n", "end VALVE;", ""},
        {"end VALVE;\n", "end VALVE;\npackage P is\n attribute X : string;\nend P;\n", ""},
        {"entity VALVE", "package P is\n constant C : INTEGER := 1;\nend P;\nentity VALVE", ""},
        {"\"0 (BC_4, GATE", "\"0 (BC_4, GA\" &\n\"TE", ""},
        {"\"8, 9)", "\"8, 9\" & \")", ""},
    };
    for (const Row& row : kRows) ExpectSameFacts(row);
    std::string returns(kSound);
    std::replace(returns.begin(), returns.end(), '\n', '\r');
    EXPECT_EQ(Digest(Parse("\xEF\xBB\xBF" + returns).GetFacts()), Digest(Parse(kSound).GetFacts()));
}

// Against the language, and yet clear.
TEST(Language, KeepsAllFactsBehindAFault) {
    const Row kRows[] = {
        {"entity VALVE is", "This is a valve.\nentity VALVE is", "2:text-before-entity"},
        {"entity VALVE is", "entity VALVE", "2:keyword-missing"},
        {"entity VALVE is", "entiy VALVE is", "2:word-misspelt"},
        {"generic (", "generic (SPEED : integer := 5; ", ""},
        {":= \"QFP\"", ":= QFP", "3:string-not-opened"},
        {"\"QFP\")", "\"QFP)", "3:string-not-closed"},
        {"string := ", "string = ", "3:colon-missing"},
        {"TDO : out bit", "TDO out bit", "6:colon-missing"},
        {"TDO : out bit;", "TDO : out bit", "6:semicolon-missing"},
        {"TDO : out bit", "TDO : out bit := '0'", "6:text-surplus"},
        {"TDO : out bit;", "TDO : out bit);", "6:parenthesis-surplus"},
        {"(7 downto 4)", "(7downto4)", "8:blank-missing"},
        {"(7 downto 4)", "[7 downto 4]", "8:parenthesis-missing"},
        {"(7 downto 4)", "(7 downto )", "8:range-malformed"},
        {"(7 downto 4)", "(7 4)", "8:range-malformed"},
        {"VCC : POWER_POS bit_vector(1 to 2)\n  );", "VCC : POWER_POS bit_vector(1 to 2);\n  );",
         "11:semicolon-surplus"},
        {"bit_vector(1 to 2)\n  );", "bit_vector(1 to 2);", "11:parenthesis-missing"},
        {"  );\n", "  )\n", "12:semicolon-missing"},
        {"use STD", "uses STD", "13:word-misspelt"},
        {"attribute PIN_MAP", "atribute PIN_MAP", "15:word-misspelt"},
        {"attribute PIN_MAP", "PIN_MAP", "15:keyword-missing"},
        {"constant QFP", "QFP", "16:keyword-missing"},
        {"STRING :=\n", "STRING is\n", "16:colon-missing"},
        {"STRING :=\n    \"TDI : 1, TMS : 2,\"", "STRING :=\n    (\"TDI : 1, TMS : 2,\"",
         "17:string-in-brackets"},
        {"\"TCK : 3,\"", "\"TCK : 3, -- clock\"", "18:comment-in-string"},
        {"\"TCK : 3,\"", "TCK : 3,\"", "18:string-not-opened"},
        {"\"TCK : 3,\"", "\"TCK : 3,", "18:string-not-closed"},
        {"\"TCK : 3,\" &", "\"TCK : 3,", "18:string-not-closed"},
        {"\"TCK : 3,\"", "\"TCK : 3\"", "18:comma-missing"},
        {"\"TCK : 3,\"", "\"TCK : 3,,\"", "18:comma-surplus"},
        {"\"TCK : 3,\"", "\"TCK 3,\"", "18:colon-missing"},
        {"\"TCK : 3,\" &", "\"TCK : 3,\";", "18:ampersand-missing"},
        {"\"TCK : 3,\"", "'TCK : 3,\"", "18:string-not-opened"},
        {"LEVEL : (6", "LEVEL : [6", "21:parenthesis-missing"},
        {"\"TCK : 3,\" &", "\"TCK : 3,\" &amp;", "18:mark-surplus"},
        {"\"TCK : 3,\"", "\xE2\x80\x9CTCK : 3,\xE2\x80\x9D", "18:quote-typographic"},
        {"\"TCK : 3,\" &", "\"TCK : 3,\" & - clock", "18:comment-begin"},
        {"\"TCK : 3,\" &\n", "\"TCK\n : 3,\" &\n", "18:string-not-closed"},
        {"(6, 7,\" &", "(6, 7\" &", "21:comma-missing"},
        {"8, 9),", "8, 9,", "22:parenthesis-missing"},
        {"TDI : signal is true;", "TDI : signal is true,", "29:semicolon-missing"},
        {"TDI : signal is", "TDI : signal := ", "29:keyword-missing"},
        {"TAP_SCAN_IN of", "TAP_SCAN_IM of", "29:word-misspelt"},
        {"(20.0e6, BOTH)", "(20.0 e6, BOTH)", "32:blank-in-bits"},
        {"is 4;", "is \"4\";", "34:number-in-quotes"},
        {"EXTEST (0000, 1000)", "EXTEST (00 00, 1000)", "37:blank-in-bits"},
        {"EXTEST (0000, 1000)", "EXTEST (0000 1000)", "37:comma-missing"},
        {"EXTEST (0000, 1000),", "EXTEST (0000, 1000,", "37:parenthesis-missing"},
        {"STATUS[3]", "STATUS3]", "48:parenthesis-missing"},
        {"STATUS[3]", "STATUS(3)", "48:parenthesis-missing"},
        {"STATE CAPTURES", "STATE CAPTURE", "48:word-misspelt"},
        {"control, 0),", "control, 0,", "52:parenthesis-missing"},
        {"4 (BC_2, *,", "4 BC_2, *,", "52:parenthesis-missing"},
        {"LEVEL(5), output3", "LEVEL5), output3", "53:parenthesis-missing"},
        {"LEVEL(5), output3", "LEVEL[5], output3", "53:parenthesis-missing"},
        {"0 (BC_4, GATE", "0 (BC_4, GA TE", "56:blank-in-bits"},
        {"\"0 (BC_4, GATE, input, X)\";", "\"0 (BC_4, GATE, input, X),\";", "56:comma-surplus"},
        {"\"0 (BC_4, GATE, input, X)\";", "\"0 (BC_4, GATE, input, X)\"", "56:semicolon-missing"},
        {"end VALVE;", "", "56:end-missing"},
        {"end VALVE;", "VALVE;", "57:keyword-missing"},
        {"end VALVE;", "end WALVE;", "57:end-name"},
        {"end VALVE;", "end VALVE;\nThat is all.", "58:text-behind-end"},
        {"end VALVE;", "end VALVE;\nentity OTHER is end OTHER;", "58:second-entity"},
    };
    for (const Row& row : kRows) ExpectSameFacts(row);
}

struct FactRow {
    const char* from;
    const char* to;
    const char* findings;
    const char* digest;  ///< a line of it
};

TEST(Language, TakesTheFirstOfTwoAndKeepsTheRest) {
    const FactRow kRows[] = {
        {"GATE : in bit;", "GATE : in bit; GATE : in bit;", "7:said-twice", "port GATE 1"},
        {"GATE : in bit;", "GATE : in bit; GATE : out bit;", "7:port-twice", "port GATE 1"},
        {"\"GATE : 5,\"", "\"GATE : 5, GATE : 16,\"", "20:pin-map-entry-twice", "GATE: 5"},
        {"entity is 4;", "entity is 4; attribute INSTRUCTION_LENGTH of VALVE : entity is 5;",
         "34:attribute-twice", "4"},
        {"(6, 7,\" &\n    \"8, 9)", "(6),\" &\n    \"SENSE(3 to 4) : (7, 8)",
         "21:pin-count 22:pin-map-by-element 22:port-unknown", "SENSE(4): 8"},
        {"attribute INSTRUCTION_LENGTH of VALVE", "attribute INSTRUCTION_LENGTH of WALVE",
         "34:other-entity", "4"},
        {"end VALVE;", "attribute KEY_TEXT of TDI : signal is \"a;\" & \" -- b\";\nend VALVE;", "",
         "KEY_TEXT@TDI=a; -- b"},
        {"end VALVE;", "constant DEPTH : integer := 12;\nend VALVE;", "", "DEPTH@=12"},
    };
    for (const FactRow& row : kRows) {
        SCOPED_TRACE(row.to);
        const Description description = Parse(Replaced(std::string(kSound), row.from, row.to));
        const std::string digest = '\n' + Digest(description.GetFacts());
        EXPECT_NE(digest.find('\n' + std::string(row.digest) + '\n'), std::string::npos) << digest;
        EXPECT_EQ(Findings(description), row.findings);
    }
}

// A mark that is missing, or stands twice, is told once, in its line, and no fact is lost.
TEST(Language, KeepsWhatHasNoPlaceInTheStandard) {
    const char* const package = "package CELLS is\n  constant C : CELL_INFO;\nend CELLS;";
    std::string text = std::string("-- before\n") + package + '\n' + std::string(kSound) +
                       "package body CELLS is\nend;\n-- behind";
    text = Replaced(text, "generic (", "generic (WIDTH : integer := max(2, 4); ");
    text = Replaced(text, "STATUS[3] (STATE CAPTURES X01)",
                    "STATUS[*] (STATE CAPTURES X01 DOMAIN CORE)");
    text = Replaced(text, "end VALVE;",
                    "attribute EXTRA : BSDL_EXTENSION; attribute EXTRA of LEVEL(5) : signal is 1;"
                    "attribute boundary_Segment of VALVE : entity is \"A\"; end VALVE;");
    const Description description = Parse(text);
    const Facts& facts = description.GetFacts();
    ASSERT_EQ(facts.packages.size(), 2);
    EXPECT_EQ(facts.packages[0].text, package);
    EXPECT_EQ(facts.packages[0].line, 2);
    EXPECT_EQ(facts.packages[1].text, "package body CELLS is\nend;");
    ASSERT_EQ(facts.other_generics.size(), 1);
    EXPECT_EQ(facts.other_generics[0].text, "WIDTH : integer := max(2, 4)");
    EXPECT_EQ(facts.tap.clock_stop_word.text, "BOTH");
    ASSERT_EQ(facts.registers.size(), 2);
    EXPECT_EQ(facts.registers[1].length_word.text, "*");
    EXPECT_EQ(facts.registers[1].instructions[0].captures.text, "X01");
    EXPECT_EQ(facts.registers[1].instructions[0].domain.text, "CORE");
    ASSERT_EQ(facts.declarations.size(), 1);
    EXPECT_EQ(facts.declarations[0].name.text, "EXTRA");
    EXPECT_EQ(facts.declarations[0].type.text, "BSDL_EXTENSION");
    ASSERT_GE(facts.others.size(), 2);
    EXPECT_EQ(facts.others[facts.others.size() - 2].target_index, 5);
    EXPECT_EQ(facts.others[facts.others.size() - 2].standard_name, "");
    EXPECT_EQ(facts.others.back().standard_name, "BOUNDARY_SEGMENT");
}

TEST(Language, TellsEachWrongMarkOnce) {
    const Description sound = Parse(kSound);
    const std::string digest = Digest(sound.GetFacts());
    for (std::size_t at = 0; at < kSound.size(); ++at) {
        if (std::string_view(",;:()[]&\"").find(kSound[at]) == std::string_view::npos) continue;
        const auto line =
            1 + std::count(kSound.begin(), kSound.begin() + static_cast<int>(at), '\n');
        std::string missing(kSound), doubled(kSound);
        missing.erase(at, 1);
        doubled.insert(at, 1, kSound[at]);
        for (const std::string& text : {missing, doubled}) {
            SCOPED_TRACE(std::string(sound.Line(static_cast<int>(line))) + " @" +
                         std::to_string(at));
            const Description description = Parse(text);
            EXPECT_EQ(Digest(description.GetFacts()), digest);
            ASSERT_EQ(description.Findings().size(), 1U) << Findings(description);
            EXPECT_EQ(description.Findings().front().line, line) << Findings(description);
        }
    }
}

TEST(Language, TellsWhatStandsThereAndWhatToWrite) {
    const Finding finding =
        Parse(Replaced(std::string(kSound), "GATE : in bit;", "GATE : in bit")).Findings().front();
    EXPECT_EQ(finding.severity, Severity::kWarning);
    EXPECT_EQ(finding.column, 18);
    EXPECT_EQ(finding.message, "`;` is missing behind `GATE : in bit`");
    EXPECT_EQ(finding.remedy, "write `;` behind `GATE : in bit`");
}

void ExpectPlaces(std::string_view text) {
    const Description description = Parse(text);
    const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 2;
    EXPECT_LE(description.Findings().size(), kMaxFindings + 1);
    for (const Finding& finding : description.Findings()) {
        EXPECT_GE(finding.line, 0);
        EXPECT_LE(finding.line, lines);
        EXPECT_NE(DescribeRule(finding.rule), nullptr) << finding.rule;
    }
}

TEST(Language, SurvivesEveryPrefixAndEveryChangedByte) {
    for (std::size_t size = 0; size < kSound.size(); ++size) ExpectPlaces(kSound.substr(0, size));
    for (std::size_t at = 0; at < kSound.size(); ++at) {
        std::string text(kSound);
        for (const char byte : {'\0', '"', '(', ';', '-', '\xFF', ' ', 'A'}) {
            text[at] = byte;
            ExpectPlaces(text);
        }
    }
}

}  // namespace
}  // namespace bscan::test
