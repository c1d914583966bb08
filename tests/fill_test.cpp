// Models filled from descriptions.

#include <bscan/description.h>

#include "support/oracle.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

/// A parser filled from a text.
class FilledDevice {
public:
    explicit FilledDevice(std::string_view text, std::vector<unsigned char> capture = {},
                          const char* package = nullptr)
        : description(Description::Parse(text, "device.bsd")) {
        if (!capture.empty()) {
            parser.SetBSCANBitArray(capture.data(), static_cast<int>(capture.size()), nullptr);
        }
        result = package ? description.Fill(parser, package) : description.Fill(parser);
    }
    BScanPinMap& map() { return *parser.GetPinMap(); }
    std::string Cell(int position) {
        const LBScanCell* const cell = map().GetBScanCell(position);
        return cell ? Describe(*cell) : "none";
    }

    Description description;
    BScanParser parser;
    int result;
};

/// The model but for the number of lines, which only a file has.
std::string Model(BScanParser& parser) {
    std::string dump = DumpModel(parser);
    const std::size_t lines = dump.find(" lines ");
    return dump.erase(lines, dump.find('\n') - lines);
}

void ExpectSameModel(std::string_view text, const std::vector<unsigned char>& capture) {
    ReadDevice read(text, capture);
    FilledDevice filled(text, capture);
    ASSERT_EQ(filled.result, kOk);
    EXPECT_EQ(Model(filled.parser), Model(read.parser));
    EXPECT_EQ(FindFault(filled.parser), "");
    EXPECT_EQ(FindDriveFault(filled.parser), FindDriveFault(read.parser));
    EXPECT_EQ(Model(filled.parser), Model(read.parser)) << "after driving";
    for (int pin = 0; pin <= read.map().GetNumberOfPins(); ++pin) {
        EXPECT_EQ(filled.map().GetPortValue(pin), read.map().GetPortValue(pin)) << pin;
        EXPECT_EQ(filled.map().GetPortDirection(pin), read.map().GetPortDirection(pin)) << pin;
    }
}

TEST(Fill, GivesTheModelOfTheLineReader) {
    for (const std::filesystem::path& file : FilesIn(SourceDir() / "examples" / "devices")) {
        SCOPED_TRACE(file);
        ExpectSameModel(Contents(file), {});
        ExpectSameModel(Contents(file), {1, 0, 1, 1, 0, 2, 0, 1, 1});
    }
}

TEST(Fill, ReadsManufacturersDevices) {
    const std::vector<std::filesystem::path> files = FilesIn(BSCAN_DEVICES_DIR);
    if (files.empty()) GTEST_SKIP() << "no device files of manufacturers beside the repository";
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file);
        const Description description = Description::Read(file.c_str());
        BScanParser parser;
        EXPECT_EQ(description.Result(), kOk);
        EXPECT_EQ(description.Fill(parser), kOk);
        EXPECT_EQ(parser.GetBSDLFilename(), file);
        EXPECT_EQ(FindFault(parser), "");
        BScanPinMap& map = *parser.GetPinMap();
        for (int i = 0; i < map.GetNumberOfPins(); ++i) {
            const LPinNode& node = *NodeAt(map, i);
            if (!PinName(node)) continue;
            const LPinNode* const found = map.GetPort(node.GetPinNumber());
            ASSERT_NE(found, nullptr) << PinName(node);
            EXPECT_EQ(found->GetPinNumber(), node.GetPinNumber());
        }
    }
}

/// Ports, and a register of one cell for each entry.
std::string Register(std::string_view ports, std::string_view length,
                     std::vector<std::string> entries) {
    std::string text = "port (" + std::string(ports) + ");\n";
    if (!length.empty()) {
        text += "attribute BOUNDARY_LENGTH of CHIP : entity is " + std::string(length) + ";\n";
    }
    text += "attribute BOUNDARY_REGISTER of CHIP : entity is\n";
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::size_t remark = std::min(entries[i].find("--"), entries[i].size());
        text += '"' + entries[i].substr(0, remark) + (i + 1 < entries.size() ? ",\" & " : "\"; ") +
                entries[i].substr(remark) + '\n';
    }
    return Entity(text);
}

TEST(Fill, TiesCellsToTheElementsThatTheyName) {
    const struct {
        std::string ports;
        std::string entry;
        const char* cell;
        const char* listed_by;  // the port and vector index, and the cells that it lists
    } rows[] = {
        {"D : in bit_vector (4 to 7)", "0 (BC_1, D(6), input, X)",
         "BC_1 INPUT [D6] [] safe X value X port D:2", "D 2 0"},
        {"D : in bit_vector (7 downto 4)", "0 (bc_4, d(6), Input, x)",
         "BC_4 INPUT [D6] [] safe X value X port D:2", "D 2 0"},
        {"D : in bit_vector (0 to 3)", "0 (BC_1, D(0), input, 1)",
         "BC_1 INPUT [D] [] safe 1 value 1 port D:0", "D 0 0"},
        {"D : in bit_vector (5 to 5)", "0 (BC_1, D, input, X)",
         "BC_1 INPUT [D] [] safe X value X port D:0", "D 0 0"},
        {"D : in bit_vector (5 to 5)", "0 (BC_1, D(5), input, X)",
         "BC_1 INPUT [D5] [] safe X value X port D:0", "D 0 0"},
        {"A : in bit", "0 (BC_1, A(0), input, X)", "BC_1 INPUT [A] [] safe X value X port A:0",
         "A 0 0"},
        // In doubt, so no pin moves.
        {"D : in bit_vector (4 to 7)", "0 (BC_1, D(3), input, X)",
         "BC_1 INPUT [D3] [] safe X value X", "D 0 "},
        {"D : in bit_vector (4 to 7)", "0 (BC_1, D, input, X)", "BC_1 INPUT [D] [] safe X value X",
         "D 0 "},
        {"A : in bit", "0 (BC_1, A(1), input, X)", "BC_1 INPUT [A1] [] safe X value X", "A 0 "},
        {"A : in bit", "0 (BC_1, NONE, input, X)", "BC_1 INPUT [NONE] [] safe X value X", "A 0 "},
        {"A : in bit", "0 (BC_9, *, internal, 0)", "BC_? INTERNAL [] [] safe 0 value 0", "A 0 "},
        // The port does not take the cell.
        {"A : in bit", "0 (BC_1, A, output2, 1)", "BC_1 OUTPUT2 [A] [] safe 1 value 1 port A:0",
         "A 0 "},
        {"A : IN BIT", "0 (BC_1, A, output3, X, 0, 1, keeper)",
         "BC_1 OUTPUT3 [A] [] safe X value X port A:0 control 0 off 1 shows Z", "A 0 "},
        {"A : out bit", "0 (BC_1, A, output3, X, 1, 1, Z)",
         "BC_1 OUTPUT3 [A] [] safe X value X port A:0", "A 0 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ports + " / " + row.entry);
        FilledDevice device(Register(row.ports, "1", {row.entry}));
        EXPECT_EQ(device.result, kOk);
        EXPECT_EQ(device.Cell(0), row.cell);
        EXPECT_EQ(BitAt(device.map(), 0), device.map().GetBScanCell(0)->safeValue == SIG_1);
        const std::string name(1, row.listed_by[0]);
        const int index = row.listed_by[2] - '0';
        const LPinNode* const node = device.map().GetPort(Text(name), index);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(CellsOf(node), row.listed_by + 4);
    }
}

TEST(Fill, KeepsWhatARegisterSays) {
    const std::string ports = "A, B : in bit; C : out bit";
    FilledDevice merged(
        Register(ports, "3",
                 {"1 (BC_1, C, output3, X, 0, 1, Z) -- one", "1 (BC_4, A, input, 0) -- t - wo",
                  "2 (BC_4, B, "
                  "clock, 1)"}));
    EXPECT_EQ(merged.Cell(1),
              "BC_4 INPUT [A] [two] safe 0 value 0 port A:0 control -1 off 1 shows Z");
    EXPECT_EQ(CellsOf(merged.map().GetPortwName(Text("c"))), "1");
    EXPECT_EQ(merged.map().GetBScanCell(0)->GetBoundaryCellPosition(), -1);

    FilledDevice beyond(Register(ports, "2", {"1 (BC_4, A, input, 1)", "2 (BC_4, B, input, 1)"}));
    EXPECT_EQ(beyond.map().GetBScanLength(), 2);
    EXPECT_EQ(CellsOf(beyond.map().GetPortwName(Text("B"))), "");

    FilledDevice unlimited(Register(ports, "", {"7 (BC_4, A, input, 1)", "2 (BC_4, B, input, 1)"}));
    EXPECT_EQ(unlimited.map().GetBScanLength(), 8);

    FilledDevice captured(
        Register(ports, "3",
                 {"1 (BC_4, A, input, 1)", "0 (BC_4, B, input, 0)", "2 (BC_4, *, internal, 0)"}),
        {1, 0});
    EXPECT_EQ(captured.map().GetBScanCell(0)->cellValue, SIG_1);
    EXPECT_EQ(captured.map().GetBScanCell(1)->cellValue, SIG_0);
    EXPECT_EQ(captured.map().GetBScanCell(2)->cellValue, SIG_X);
    EXPECT_TRUE(BitAt(captured.map(), 0));
}

TEST(Fill, NumbersPins) {
    const struct {
        const char* ports;
        const char* map;
        const char* pins;
        const char* package;  // "" for none
    } rows[] = {
        // As the line reader does, where every pin can be found.
        {"A, B : in bit; C : in bit", "A : 3, B : 1, C : 2", "A=3/3 B=1/1 C=2/2", ""},
        {"A : in bit; D : in bit_vector (4 downto 2)", "a : A1, D : (A2, B1, B2)",
         "A=A1/3 D=A2/1 D=B1/4 D=B2/2", "A2 B2 A1 B1"},
        // Otherwise all anew.
        {"A : in bit; B : in bit", "A : 3, B : 1", "A=3/1 B=1/2", "3 1"},
        {"A : in bit; B : in bit", "A : A01, B : B1", "A=A01/1 B=B1/2", "A01 B1"},
        {"A : in bit; B : in bit", "A : A01, B : A1", "A=A01/1 B=A1/2", "A01 A1"},
        {"A : in bit; B : in bit", "A : A1, B : C2, NONE : (B1, B3)", "A=A1/2 B=C2/1", "C2 A1"},
        {"A : in bit; B : in bit", "A : (B1, C2), B : A2", "A=B1/2 B=A2/1", "A2 B1"},
        // Forms that makers write.
        {"D : in bit_vector (4 to 6)", "D(5) : A1, D(4) : A2, D(5) : A3, D(7) : A4",
         "D=A2/2 D=A1/3 D=(null)/-1", "A4 A2 A1"},
        {"D : in bit_vector (1 to 3)", "D : (1, 2)", "D=1/1 D=2/2 D=(null)/-1", ""},
        {"D : in bit_vector (1 to 2)", "D : (1, 2, 3)", "D=1/1 D=2/2", ""},
        {"A : in bit; B : in bit", "A : 1, A : 2, B : 2", "A=1/1 B=2/2", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.map);
        FilledDevice device(Entity(std::string("port (") + row.ports +
                                   ");\nconstant PKG : PIN_MAP_STRING := \"" + row.map + "\";"));
        EXPECT_EQ(Pins(&device.map()), row.pins);
        const PackagePinMap* const package = device.parser.GetPackageMap(0);
        std::string pins;
        for (int i = 0; package && i < package->GetNumberOfPins(); ++i) {
            pins += (i ? " " : "") + std::string(package->GetPin(i));
            // Of pins that the order takes for the same, only the first can be asked for.
            const int number = device.parser.MapPinNametoPinNumber(package->GetPin(i));
            EXPECT_TRUE(number == i + 1 || (i > 0 && number == kUnknownPin)) << number;
        }
        EXPECT_EQ(pins, row.package);
    }
}

TEST(Fill, ChoosesThePackage) {
    const std::string maps =
        "port (A : in bit; B : in bit);\n"
        "constant Grid : PIN_MAP_STRING := \"A : A1, B : A2\";\n"
        "constant FLAT : PIN_MAP_STRING := \"A : 2, B : 1\";\n"
        "constant OTHER : PIN_MAP_STRING := \"A : C7, B : B7\";\n";
    const auto entity = [&](const std::string& generic) {
        return "entity X is " + generic + maps + "end X;";
    };
    const std::string flat = "generic (PHYSICAL_PIN_MAP : string := \"flat\");";
    const struct {
        std::string generic;
        const char* package;
        const char* type;
        const char* pins;
    } rows[] = {
        {flat, nullptr, "flat", "A=2/2 B=1/1"},
        {flat, "OTHER", "other", "A=C7/2 B=B7/1"},
        {flat, "gRID", "grid", "A=A1/2 B=A2/1"},
        {"", nullptr, "grid", "A=A1/2 B=A2/1"},
        {"generic (PHYSICAL_PIN_MAP : string := \"DIE\");", nullptr, "grid", "A=A1/2 B=A2/1"},
        {"generic (PHYSICAL_PIN_MAP : string);", nullptr, "grid", "A=A1/2 B=A2/1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.generic + (row.package ? row.package : ""));
        FilledDevice device(entity(row.generic), {}, row.package);
        EXPECT_EQ(device.result, kOk);
        EXPECT_STREQ(device.parser.GetPackageType(), row.type);
        EXPECT_EQ(Pins(&device.map()), row.pins);
    }
    EXPECT_EQ(FilledDevice(entity(flat), {}, "NONE").result, kNoSuchPackage);
}

TEST(Fill, KeepsAllPairs) {
    const struct {
        const char* ports;
        const char* pairs;
        std::vector<std::string> entries;
        const char* expected;
        const char* legs;
    } rows[] = {
        {"P, N, Q, M : in bit",
         "(p, N), (Q, m)",
         {"1 (BC_4, P, input, X)", "0 (BC_4, Q, input, X)"},
         "P/N@1,-1 Q/M@0,-1",
         "+-+-"},
        {"P, N : in bit",
         "(P, N)",
         {"2 (BC_4, P, observe_only, X)", "1 (BC_4, P, input, X)", "0 (BC_4, N, input, X)"},
         "P/N@1,0",
         "+-"},
        // Of the first pair a remark tells the cell, of the second none does.
        {"P, N, Q, M : out bit",
         "(P, N), (Q, M)",
         {"4 (BC_1, *, internal, 0) -- N", "3 (BC_1, *, internal, 0)",
          "2 (BC_1, P, output3, X, 0, 1, Z)", "1 (BC_1, Q, output2, 1)", "0 (BC_2, *, control, 1)"},
         "P/N@2,4 Q/M@1,-1",
         "+-+-"},
        // What has no driver cannot be followed.
        {"P, N : in bit",
         "(P, N)",
         {"1 (BC_4, *, internal, X) -- N", "0 (BC_4, P, input, X)"},
         "P/N@-1,-1",
         "+-"},
        {"P : in bit_vector (4 downto 3); N : in bit_vector (1 to 2)",
         "(P, N)",
         {"1 (BC_4, P(3), input, X)", "0 (BC_4, N(1), input, X)"},
         "P(4)/N(1)@-1,0 P(3)/N(2)@1,-1",
         "++--"},
        {"P : in bit_vector (0 to 2); N : in bit_vector (0 to 1)",
         "(P(2), N(0)), (P, N)",
         {"0 (BC_4, P(2), input, X)"},
         "P(2)/N(0)@0,-1 P(0)/N(0)@-1,-1 P(1)/N(1)@-1,-1",
         "+++--"},
        {"P : out bit_vector (1 to 2); N : out bit_vector (1 to 2)",
         "(P(2), N(2))",
         {"3 (BC_1, *, internal, 0) -- N (2)", "2 (BC_1, *, internal, 0)",
          "1 (BC_1, P(2), output3, X, 0, 1, Z)", "0 (BC_2, *, control, 1)"},
         "P(2)/N(2)@1,3",
         ".+.-"},
        {"P : in bit",
         "(P, none), (P(1), P)",
         {"0 (BC_4, P, input, X)"},
         "P/NONE@0,-1 P(1)/P@-1,0",
         "+"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pairs);
        std::string text = Register(row.ports, std::to_string(row.entries.size()), row.entries);
        text.insert(text.find("attribute BOUNDARY_REGISTER"),
                    std::string("attribute PORT_GROUPING of CHIP : entity is "
                                "\"Differential_Voltage (") +
                        row.pairs + ")\";\n");
        FilledDevice device(text);
        EXPECT_EQ(Pairs(device.parser), row.expected);
        EXPECT_EQ(Legs(&device.map()), row.legs);
        EXPECT_EQ(FindFault(device.parser), "");
        for (int i = 0; i < device.parser.GetDifferentialPairCount(); ++i) {
            const CDifferentialPair& pair = *device.parser.GetDifferentialPair(i);
            const int followed = pair.GetPositiveBScanPosition();
            const int following = pair.GetNegativeBScanPosition();
            if (following < 3) continue;
            LBScanCell& cell = *device.map().GetBScanCell(following);
            EXPECT_EQ(cell.GetFunction(), device.map().GetBScanCell(followed)->GetFunction());
            EXPECT_EQ(cell.GetControlCell(), device.map().GetBScanCell(following - 1));
            EXPECT_EQ(CellsOf(cell.GetPinNode()), std::to_string(following));
        }
    }
}

TEST(Fill, FindsElementsByTheirDeclaredIndexes) {
    FilledDevice device(
        Entity("port (A : in bit; D : in bit_vector (7 downto 4); E : in bit_vector (3 to 3);"
               "F : in bit_vector (2 to 5));"));
    const struct {
        const char* port;
        std::optional<int> index;
        int place;  // -1 for no element
    } rows[] = {{"a", {}, 0}, {"A", 0, 0},  {"A", 1, -1},  {"d", 7, 1},   {"D", 4, 4},
                {"D", 3, -1}, {"D", 8, -1}, {"D", {}, -1}, {"E", {}, 5},  {"E", 3, 5},
                {"E", 0, -1}, {"F", 2, 6},  {"F", 5, 9},   {"G", {}, -1}, {"", {}, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.port) + std::to_string(row.index.value_or(-1)));
        EXPECT_EQ(device.description.FindElement(device.map(), row.port, row.index),
                  row.place < 0 ? nullptr : NodeAt(device.map(), row.place));
    }
}

TEST(Fill, WritesRecordsAsTheLineReaderDoes) {
    FilledDevice device(Entity(R"bsdl(port (A,
    B : -- a remark
       INOUT bit; C, D : inout bit_vector (0 to 1); E : out bit);
attribute INSTRUCTION_LENGTH of CHIP : entity is 4;
attribute INSTRUCTION_OPCODE of CHIP : entity is "ByPass (11 11, 1110), EXTEST (0000)";
attribute INSTRUCTION_CAPTURE of CHIP : entity is "XX" & "01";
attribute REGISTER_ACCESS of CHIP : entity is "BOUNDARY (EXTEST), USER [12] (One, TWO)";)bsdl"));
    EXPECT_EQ(Model(device.parser), R"(component CHIP package pkg
instructions 4 "XX01" ByPass(1111,1110) EXTEST(0000)
registers BOUNDARY(EXTEST) USER[12](One,TWO)
pairs 
io A, B
io C, D
port A:inout:0 pin (null)/-1 cells 
port B:inout:0 pin (null)/-1 cells 
port C:inout:0 pin (null)/-1 cells 
port C:inout:1 pin (null)/-1 cells 
port D:inout:0 pin (null)/-1 cells 
port D:inout:1 pin (null)/-1 cells 
port E:out:0 pin (null)/-1 cells 
bits 
)");
    EXPECT_STREQ(device.parser.GetBSDLFilename(), "device.bsd");
}

TEST(Fill, RefusesAParserWithAModel) {
    FilledDevice device(SmallDevice());
    const std::string model = Model(device.parser);
    EXPECT_EQ(device.description.Fill(device.parser), kModelExists);
    EXPECT_EQ(device.description.Fill(device.parser, "P"), kModelExists);
    EXPECT_EQ(Model(device.parser), model);
    ReadDevice read(Entity("port (A : in bit);"));
    EXPECT_EQ(device.description.Fill(read.parser), kModelExists);
    EXPECT_EQ(FilledDevice("nothing of the kind").result, kNoEntity);
    BScanParser untouched;
    EXPECT_EQ(Description::Parse("", nullptr).Fill(untouched), kNoEntity);
    EXPECT_EQ(untouched.GetPinMap(), nullptr);
    EXPECT_EQ(Description::Parse(SmallDevice(), nullptr).Fill(untouched), kOk);
    EXPECT_EQ(untouched.GetBSDLFilename(), nullptr);
}

TEST(Fill, HoldsTheCeilings) {
    FilledDevice ports(
        Entity("port (D : in bit_vector (0 to 2000000); A : in bit; "
               "E : in bit_vector (2147483647 downto 0));"));
    EXPECT_EQ(ports.result, kOk);
    EXPECT_LE(ports.map().GetNumberOfPins(), 3);
    FilledDevice cells(Register("A : in bit", "2000000", {"1999999 (BC_1, A, input, X)"}));
    EXPECT_EQ(cells.result, kOk);
    EXPECT_EQ(cells.map().GetBScanLength(), 0);
    FilledDevice numbers(Register("A : in bit", "", {"2147483647 (BC_1, A, input, X)"}));
    EXPECT_EQ(numbers.map().GetBScanLength(), 0);
}

}  // namespace
}  // namespace bscan::test
