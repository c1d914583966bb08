// The boundary register attribute, what it makes of its entries, and the cells of differential
// pairs, which are completed behind it.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

/// A device with IN1 "in", IO[0..3] "inout" and OUT1 "out", of eight cells, and a register.
std::string WithRegister(const std::string& value) {
    return Entity(
        "port (\nIN1 : in bit;\nIO : inout bit_vector (0 to 3);\nOUT1 : out bit);\n"
        "attribute BOUNDARY_LENGTH of X : entity is 8;\n"
        "attribute BOUNDARY_REGISTER of X : entity is\n" +
        value);
}

/// The cells that an entry has filled, each on a line of its own.
std::string FilledCells(BScanPinMap& map) {
    std::string cells;
    for (int n = 0; n < map.GetBScanLength(); ++n) {
        const LBScanCell& cell = *map.GetBScanCell(n);
        if (cell.GetBoundaryCellPosition() < 0) continue;
        cells += (cells.empty() ? "" : "\n") + std::to_string(n) + ": " + Describe(cell);
    }
    return cells;
}

TEST(BoundaryRegister, FillsACellForEachEntry) {
    ReadDevice device(
        WithRegister("\"2 (BC_1, *, control, 1),\" &\n"
                     "\"1 (BC_1, IO(1), output3, X, 2, 1, Z),\" & -- IO_N1\n"
                     "\"0 (BC_1, IO(0), input, X)\";"));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(FilledCells(device.map()),
              "0: BC_1 INPUT [IO] [] safe X value X port IO:0\n"
              "1: BC_1 OUTPUT3 [IO1] [IO_N1] safe X value X port IO:1 control 2 off 1 shows Z\n"
              "2: BC_1 CONTROL [] [] safe 1 value 1");
    EXPECT_EQ(device.map().GetBScanBitArray()[0], 0x20);
    EXPECT_EQ(CellsOf(device.map().GetPort(Text("IO"), 1)), "1");
}

// The fields behind the cell number 3.
TEST(BoundaryRegister, ReadsAnEntrysFields) {
    const Rows<const char*, int, const char*> rows = {
        {"(BC_2, IO(3), bidir, 0, 7, 1, weak1)", kOk,
         "BC_2 BIDIR [IO3] [] safe 0 value 0 port IO:3 control -1 off 1 shows WEAK1"},
        {" ( bc_2 ,io ( 3 ) , Input , x )", kOk, "BC_2 INPUT [IO3] [] safe X value X port IO:3"},
        {"(AC_1, out1, output3, 1, 7, 0, PULL0)", kOk,
         "BC_? OUTPUT3 [OUT1] [] safe 1 value 1 port OUT1:0 control -1 off 0 shows PULL0"},
        {"(BC_1, IO(*), internal, 0)", kOk, "BC_1 INTERNAL [] [] safe 0 value 0"},
        {"(BC_1, none(2), input, 0)", kOk, "BC_1 INPUT [NONE2] [] safe 0 value 0"},
        {"(BC_1, IO(-1), input, 0)", kOk, "BC_1 INPUT [IO-1] [] safe 0 value 0"},
        {"(BC_1, *, internal, X, -5, 1, z)", kOk, "BC_1 INTERNAL [] [] safe X value X"},
        {"(BC_1, IO(0), input, PULL0)", kBadValue, nullptr},
        {"(BC_1, IO(0), input)", kBadValue, nullptr},
        {"(BC_1, IO(0), output3, X, 5, 1)", kBadValue, nullptr},
        {"(BC_1, IO(0), output3, X, 5, Z, Z)", kBadValue, nullptr},
        {"(BC_1, IO(0), output3, X, 5, 1, KEEPER)", kBadValue, nullptr},
        {"(BC_1, IO, X)", kFailed, "BC_1 NONE [IO] [] safe X value X port IO:0"},
        {"(X)", kOk, "BC_? NONE [] [] safe X value X"},
        {"(BC_1, OUT1, observe_only, X)", kFailed,
         "BC_1 OBSERVE_ONLY [OUT1] [] safe X value X port OUT1:0"},
        {"(BC_1, IN1, input, X, 8, 1, Z)", kFailed, nullptr},
    };
    for (const auto& [fields, result, cell] : rows) {
        SCOPED_TRACE(fields);
        ReadDevice device(WithRegister(std::string("\"3 ") + fields + "\";"));
        EXPECT_EQ(device.result(), result);
        EXPECT_EQ(FilledCells(device.map()), cell ? std::string("3: ") + cell : "");
    }
}

// How the value is cut into entries and remarks: each row tells the cells with their remarks. In a
// value '#' stands for "(a,*,b,0)" and '|' for the end of a piece and of a line.
TEST(BoundaryRegister, CutsTheValueIntoEntries) {
    const Rows<std::string, int, const char*> rows = {
        {"\"1 #,2 #\";", kOk, "1[] 2[]"},
        {"\"1 (a,*,|b,0)|, 2 #\";", kOk, "1[] 2[]"},
        {"\"1 #,\" & -- x - y 3\n\"2 #\";", kOk, "1[xy3] 2[]"},
        {"\"1 #,2 #,\" & -- r\n\"3 #\";", kOk, "1[] 2[r] 3[]"},
        {"\"1 #,\" & -- one\n\" \" & -- two\n\"2 #\";", kOk, "1[two] 2[]"},
        {"\"\" & -- r\n\"1 #\";", kOk, "1[]"},
        {"\"1 #,\" &\n-- alone\n\"2 #\";", kOk, "1[] 2[]"},
        {"\"1 #,\" & -- r*2\n\"#\";", kOk, "1[r] 2[]"},
        {"\"1 #,\" & -- r*3 #,\n\"2 #\";", kOk, "0[] 1[r] 3[]"},
        {"\"1 #\"; -- r\n", kBadValue, ""},
        {"\"1 #,,2 #\";", kOk, "0[] 1[]"},
        {"\"1 # 2 #\";", kBadValue, ""},
        {"\"1 #),\";", kBadValue, ""},
        {"\"1 #, 2 (a,*,b\";", kOk, "1[]"},  // an unfinished entry is dropped
        {"\"\";", kBadValue, ""},
        {"\"1 #, 2 (a,*,b,9), 3 #\";", kBadValue, "1[]"},
        {"\"1 #, 8 #\";", kFailed, "1[]"},
        {"\"x3 #, 4294967297 #\";", kOk, "0[] 1[]"},
        {"\"1 #,\" &", kReadFailed, ""},
    };
    for (const auto& [written, result, filled] : rows) {
        SCOPED_TRACE(written);
        std::string value;
        for (const char c : written) {
            value += c == '#' ? "(a,*,b,0)" : c == '|' ? "\" &\n\"" : std::string(1, c);
        }
        BScanParser parser;
        parser.CreatePort(Text("IN1 : in bit;"));
        parser.GetPinMap()->AllocateBScanCellTable(8);
        EXPECT_EQ(parser.ReadBSCANBoundaryRegister(Stream(value + "\n"), Text("X is ")), result);
        std::string cells;
        for (int n = 0; n < 8; ++n) {
            const LBScanCell& cell = *parser.GetPinMap()->GetBScanCell(n);
            if (cell.GetBoundaryCellPosition() < 0) continue;
            cells += (cells.empty() ? "" : " ") + std::to_string(n) + '[' +
                     cell.GetOriginalPinName() + ']';
        }
        EXPECT_EQ(cells, filled);
    }
}

TEST(BoundaryRegister, NeedsItsLengthAndADevice) {
    const std::string attribute =
        "attribute BOUNDARY_REGISTER of X : entity is\n\"0 (BC_1, *, internal, X)\";";
    EXPECT_EQ(ReadDevice(Entity(attribute)).result(), kFailed);
    EXPECT_EQ(ReadDevice("entity X is;\n" + attribute + "\nend X;\n").result(), kFailed);
}

TEST(BoundaryRegister, MayBeAConstant) {
    ReadDevice device(
        Entity("attribute BOUNDARY_LENGTH of X : entity is 2;\n"
               "constant R_1 : BOUNDARY_REGISTER := \"0 (BC_1, *, internal, X),\" &\n"
               "\"1 (BC_1, *, internal, 1)\";\n"
               "constant R_2 : BOUNDARY_REGISTERS := \"2 (\";\n"));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.map().GetBScanBitArray()[0], 0x40);
}

/// A device of ten cells: P and N, Q and M are pairs of "inout" ports, S is a single port.
std::string WithPairs(const std::string& pairs, const std::string& value) {
    return Entity(
        "port (\nP, N, q, m, S : inout bit);\n"
        "attribute BOUNDARY_LENGTH of X : entity is 10;\n"
        "attribute PORT_GROUPING of X : entity is\n\"Differential_Voltage (" +
        pairs + ")\";\nattribute BOUNDARY_REGISTER of X : entity is\n" + value);
}

const std::string kPositive = "\"1 (BC_2, P, output3, 1, 2, 1, Z),";
const std::string kBoth = kPositive + "5 (BC_1, *, internal, 0),\" & -- N\n";

TEST(DifferentialCompletion, GivesTheNegativePortTheCellsOfThePositive) {
    ReadDevice device(WithPairs("(Q, M)",
                                "\"0 (BC_2, q, output3, 1, 1, 1, PULL1),\" &\n"
                                "\"1 (BC_3, *, control, 1),\" &-- pad\n"
                                "\"2 (BC_1, S, input, X), 3 (BC_1, *, internal, 0),\" &\n"
                                "\"4 (BC_1, *, internal, 0),\" &-- m\n\"\";"));
    BScanPinMap& map = device.map();
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(Pairs(device.parser), "Q/M@0,4");
    EXPECT_EQ(FilledCells(map),
              "0: BC_2 OUTPUT3 [Q] [] safe 1 value 1 port Q:0 control 1 off 1 shows PULL1\n"
              "1: BC_3 CONTROL [] [pad] safe 1 value 1\n"
              "2: BC_1 INPUT [S] [] safe X value X port S:0\n"
              "3: BC_3 CONTROL [] [pad] safe 1 value 1\n"
              "4: BC_2 OUTPUT3 [M] [M] safe 1 value 1 port M:0 control 3 off 1 shows PULL1");
    EXPECT_EQ(CellsOf(device.Port("M")), "4");
    EXPECT_EQ(map.GetBScanBitArray()[0], 0xC0) << "the completion leaves the bits";
    EXPECT_EQ(Legs(&map), "..+-.");
    EXPECT_EQ(FindFault(device.parser), "");
}

TEST(DifferentialCompletion, PassesOverOrGivesUp) {
    const Rows<const char*, const char*, std::string, int, const char*, const char*> rows = {
        {"no control cell", "(P,N)", "\"0 (BC_1, P, input, 0)," + kBoth.substr(1) + "\"\";", kOk,
         "P/N@-1,-1", "+-..."},
        {"no positive cell", "(N,P),(Q,M)", "\"5 (BC_1, *, internal, 0),\" & -- P\n\"\";", kOk,
         "N/P@-1,-1 Q/M@-1,-1", "-++-."},
        {"negative cell at position 0", "(P,N)",
         "\"0 (BC_1, *, internal, 0),\" &-- n\n" + kPositive + "\";", kOk, "P/N@-1,-1", "+-..."},
        {"negative name of no port", "(P,none)",
         kPositive + "3 (BC_1, *, internal, 0),\" &-- NONE\n\"\";", kOk, "P/NONE@-1,-1", "+...."},
        {"no negative cell", "(P,N)", kPositive + "\";", kOk, "", "....."},
        {"none for the second", "(P,N),(Q,M)", kBoth + "\"6 (BC_2, q, output3, 1, 2, 1, Z)\";", kOk,
         "", "....."},
        {"first has no cells", "(S,Q),(P,N)", kBoth + "\"\";", kOk, "S/Q@-1,-1 P/N@1,5", "+--.+"},
        {"after a failing entry", "(P,N)", kBoth + "\"99 (a,*,b,0)\";", kFailed, "P/N@1,5",
         "+-..."},
        {"not after a bad value", "(P,N)", kBoth + "\"1 (a))\";", kBadValue, "P/N@-1,-1", "+-..."},
    };
    for (const auto& [name, pairs, value, result, completed, legs] : rows) {
        SCOPED_TRACE(name);
        ReadDevice device(WithPairs(pairs, value));
        EXPECT_EQ(device.result(), result);
        EXPECT_EQ(Pairs(device.parser), completed);
        EXPECT_EQ(Legs(&device.map()), legs);
        // What earlier pairs got stays when a later one fails.
        const bool got = std::string(completed).find("P/N@1,5") != std::string::npos ||
                         name == std::string("none for the second");
        EXPECT_EQ(CellsOf(device.Port("N")), got ? "5" : "");
    }
}

TEST(DifferentialCompletion, MeetsPositionsThatAHostHasSet) {
    ReadDevice device(WithPairs("(P,N)", kBoth + "\"\";"));
    for (const int position : {INT_MIN, -1, 0, INT_MAX}) {
        SCOPED_TRACE(position);
        device.map().GetBScanCell(5)->SetBoundaryCellPosition(position);
        const Stream value("\"8 (a,*,b,0)\";\n");
        EXPECT_EQ(device.parser.ReadBSCANBoundaryRegister(value, Text("X is ")), kOk);
        EXPECT_EQ(Pairs(device.parser), "P/N@1,5");
    }
}

}  // namespace
}  // namespace bscan::test
