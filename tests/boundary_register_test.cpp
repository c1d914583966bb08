// The boundary register attribute and what it makes of its entries.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

/// A device with IN1 "in", IO[0..3] "inout" and OUT1 "out", of eight cells, and a register.
std::string WithRegister(std::string_view value) {
    return Entity(
        "port (\nIN1 : in bit;\nIO : inout bit_vector (0 to 3);\nOUT1 : out bit);\n"
        "attribute BOUNDARY_LENGTH of X : entity is 8;\n"
        "attribute BOUNDARY_REGISTER of X : entity is\n" +
        std::string(value));
}

/// The cells that an entry has filled, each on a line of its own.
std::string FilledCells(const BScanPinMap& map) {
    std::string cells;
    for (int n = 0; n < map.GetBScanLength(); ++n) {
        const LBScanCell& cell = map.GetBScanCellTable()[n];
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

// The fields of entries, of which each row has one and sees what it fills.
TEST(BoundaryRegister, ReadsAnEntrysFields) {
    const struct {
        const char* entry;
        int result;
        const char* cells;
    } rows[] = {
        {"3 (BC_2, IO(3), bidir, 0, 7, 1, weak1)", kOk,
         "3: BC_2 BIDIR [IO3] [] safe 0 value 0 port IO:3 control -1 off 1 shows WEAK1"},
        {" 3 ( bc_2 ,io ( 3 ) , Input , x )", kOk,
         "3: BC_2 INPUT [IO3] [] safe X value X port IO:3"},
        {"3 (AC_1, out1, output3, 1, 7, 0, PULL0)", kOk,
         "3: BC_? OUTPUT3 [OUT1] [] safe 1 value 1 port OUT1:0 control -1 off 0 shows PULL0"},
        {"3 (BC_1, IN1, input, X,)", kOk, "3: BC_1 INPUT [IN1] [] safe X value X port IN1:0"},
        {"3 (BC_1, IO(*), internal, 0)", kOk, "3: BC_1 INTERNAL [] [] safe 0 value 0"},
        {"3 (BC_1, none(2), input, 0)", kOk, "3: BC_1 INPUT [NONE2] [] safe 0 value 0"},
        {"3 (BC_1, IO(7), input, 0)", kOk, "3: BC_1 INPUT [IO7] [] safe 0 value 0"},
        {"3 (BC_1, *, internal, X, 5, 1, z)", kOk,
         "3: BC_1 INTERNAL [] [] safe X value X control -1 off 1 shows Z"},
        {"3 (BC_1, *, internal, X, -5, 1, z)", kOk, "3: BC_1 INTERNAL [] [] safe X value X"},
        {"x3 (BC_1, *, internal, 0)", kOk, "0: BC_1 INTERNAL [] [] safe 0 value 0"},
        {"3 (BC_1, IO(0), input, PULL0)", kBadValue, ""},
        {"3 (BC_1, IO(0), input)", kBadValue, ""},
        {"3 (BC_1, IO(0), output3, X, 5)", kBadValue, ""},
        {"3 (BC_1, IO(0), output3, X, 5, 1)", kBadValue, ""},
        {"3 (BC_1, IO(0), output3, X, 5, 1, Z, 1)", kBadValue, ""},
        {"3 (BC_1, IO(0), output3, X, 5, Z, Z)", kBadValue, ""},
        {"3 (BC_1, IO(0), output3, X, 5, 1, KEEPER)", kBadValue, ""},
        {"3 (BC_1, IO, X)", kFailed, "3: BC_1 NONE [IO] [] safe X value X port IO:0"},
        {"3 (X)", kOk, "3: BC_? NONE [] [] safe X value X"},
        {"3 (BC_1, OUT1, observe_only, X)", kFailed,
         "3: BC_1 OBSERVE_ONLY [OUT1] [] safe X value X port OUT1:0"},
        {"8 (BC_1, IN1, input, X)", kFailed, ""},
        {"-1 (BC_1, IN1, input, X)", kBadValue, ""},  // a dash begins a remark
        {"4294967299 (BC_1, IN1, input, X)", kOk,
         "3: BC_1 INPUT [IN1] [] safe X value X port IN1:0"},
        {"3 (BC_1, IN1, input, X, 8, 1, Z)", kFailed, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        ReadDevice device(WithRegister('"' + std::string(row.entry) + "\";"));
        EXPECT_EQ(device.result(), row.result);
        EXPECT_EQ(FilledCells(device.map()), row.cells);
    }
}

// How the value is cut. Entries are "n (*,*,x,0)"; the row tells the cells with their remarks.
TEST(BoundaryRegister, CutsTheValueIntoEntries) {
    const struct {
        const char* name;
        const char* value;
        int result;
        const char* cells;
    } rows[] = {
        {"one piece", "\"1 (a,*,b,0),2 (a,*,b,0)\";", kOk, "1[] 2[]"},
        {"split entry", "\"1 (a,*,\" &\n\"b,0)\" &\n\", 2 (a,*,b,0)\";", kOk, "1[] 2[]"},
        {"remark", "\"1 (a,*,b,0),\" & -- x - y 3\n\"2 (a,*,b,0)\";", kOk, "1[xy3] 2[]"},
        {"remark of the last entry of a line",
         "\"1 (a,*,b,0),2 (a,*,b,0),\" & -- r\n\"3 (a,*,b,0)\";", kOk, "1[] 2[r] 3[]"},
        {"second remark", "\"1 (a,*,b,0),\" & -- one\n\" \" & -- two\n\"2 (a,*,b,0)\";", kOk,
         "1[two] 2[]"},
        {"remark before the first entry", "\"\" & -- r\n\"1 (a,*,b,0)\";", kOk, "1[]"},
        {"comment alone is lost", "\"1 (a,*,b,0),\" &\n-- r\n\"2 (a,*,b,0)\";", kOk, "1[] 2[]"},
        {"comment in an entry", "\"1 (a,*,\" & -- r\n\"b,0)\";", kOk, "1[]"},
        {"star in a remark", "\"1 (a,*,b,0),\" & -- r*2\n\"(a,*,b,0)\";", kOk, "1[r] 2[]"},
        {"star in a remark, then an entry",
         "\"1 (a,*,b,0),\" & -- r*3 (a,*,b,0),\n\"2 (a,*,b,0)\";", kOk, "0[] 1[r] 3[]"},
        {"remark behind the last entry", "\"1 (a,*,b,0)\"; -- r\n", kBadValue, ""},
        {"comma at the end", "\"1 (a,*,b,0),\";", kOk, "1[]"},
        {"commas", "\"1 (a,*,b,0),,2 (a,*,b,0)\";", kOk, "0[] 1[]"},
        {"no comma", "\"1 (a,*,b,0) 2 (a,*,b,0)\";", kBadValue, ""},
        {"parenthesis first", "\"(a,*,b,0)\";", kBadValue, ""},
        {"closed twice", "\"1 (a,*,b,0)),\";", kBadValue, ""},
        {"depth is not balanced", "\"1 ((a,*,b,0), 2 (a,*,b,0)\";", kBadValue, ""},
        {"unfinished entry is dropped", "\"1 (a,*,b,0), 2 (a,*,b\";", kOk, "1[]"},
        {"no entry", "\"\";", kBadValue, ""},
        {"cell twice", "\"1 (a,*,b,0), 1 (a,*,b,X)\";", kOk, "1[]"},
        {"earlier entries stay", "\"1 (a,*,b,0), 2 (a,*,b,9), 3 (a,*,b,0)\";", kBadValue, "1[]"},
        {"cut file", "\"1 (a,*,b,0),\" &", kReadFailed, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        BScanParser parser;
        parser.CreatePort(Text("IN1 : in bit;"));
        parser.GetPinMap()->AllocateBScanCellTable(8);
        const Stream stream(std::string(row.value) + "\n");
        EXPECT_EQ(parser.ReadBSCANBoundaryRegister(
                      stream, Text("attribute BOUNDARY_REGISTER of X : entity is ")),
                  row.result);
        std::string cells;
        for (int n = 0; n < 8; ++n) {
            const LBScanCell& cell = *parser.GetPinMap()->GetBScanCell(n);
            if (cell.GetBoundaryCellPosition() < 0) continue;
            cells += (cells.empty() ? "" : " ") + std::to_string(n) + '[' +
                     cell.GetOriginalPinName() + ']';
        }
        EXPECT_EQ(cells, row.cells);
    }
}

TEST(BoundaryRegister, NeedsItsLengthAndADevice) {
    EXPECT_EQ(ReadDevice(Entity("attribute BOUNDARY_REGISTER of X : entity is\n"
                                "\"0 (BC_1, *, internal, X)\";"))
                  .result(),
              kFailed);
    EXPECT_EQ(ReadDevice("entity X is;\nattribute BOUNDARY_REGISTER of X : entity is\n"
                         "\"0 (BC_1, *, internal, X)\";\nend X;\n")
                  .result(),
              kFailed);
}

TEST(BoundaryRegister, MayBeAConstant) {
    ReadDevice device(
        Entity("attribute BOUNDARY_LENGTH of X : entity is 2;\n"
               "constant R_1 : BOUNDARY_REGISTER := \"0 (BC_1, *, internal, X),\" &\n"
               "\"1 (BC_1, *, internal, 1)\";\n"
               "constant R_2 : BOUNDARY_REGISTERS := \"2 (\";\n"));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.map().GetBScanBitArray()[0], 0x40);
    EXPECT_EQ(ReadDevice(Entity("constant R : BOUNDARY_REGISTER := \"0 (BC_1, *, internal, X)\";"))
                  .result(),
              kFailed);
}

TEST(BoundaryRegister, ASecondLengthStartsAfresh) {
    ReadDevice device(
        WithRegister("\"0 (BC_1, IN1, input, X), 1 (BC_1, OUT1, output2, 1)\";\n"
                     "attribute BOUNDARY_LENGTH of X : entity is 1;\n"
                     "attribute BOUNDARY_REGISTER of X : entity is\n"
                     "\"0 (BC_1, OUT1, output2, X)\";"));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(FilledCells(device.map()), "0: BC_1 OUTPUT2 [OUT1] [] safe X value X port OUT1:0");
    EXPECT_EQ(CellsOf(device.map().GetPort(Text("IN1"), 0)), "");
    EXPECT_EQ(CellsOf(device.map().GetPort(Text("OUT1"), 0)), "0");
    EXPECT_EQ(device.map().GetBScanBitArray()[0], 0x00);
}

TEST(BoundaryRegister, TakesEntriesOfAnyLength) {
    std::string value = "\"2 (BC_1, \" &\n";
    for (int i = 0; i < 40; ++i) value += '"' + std::string(200, 'n') + "\" &\n";
    ReadDevice device(WithRegister(value + "\", input, X)\";"));
    EXPECT_EQ(device.result(), kOk);
    const std::string name = device.map().GetBScanCell(2)->GetPinName();
    EXPECT_EQ(name.size(), 40U * 201 - 1);
    EXPECT_EQ(name.find_first_not_of("N "), std::string::npos);
}

}  // namespace
}  // namespace bscan::test
