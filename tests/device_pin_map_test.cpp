// The device: making ports and cells, and finding them.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <string>
#include <strings.h>

namespace bscan::test {
namespace {

TEST(Texts, SetTypesAndFunctions) {
    const std::pair<const char*, CellType> types[] = {
        {"BC_0", BC_0},   {"bc_4", BC_4},        {"Bc_7", BC_7},        {"BC_8", BC_UNKNOWN},
        {"", BC_UNKNOWN}, {"BC_10", BC_UNKNOWN}, {"BC_1 ", BC_UNKNOWN}, {nullptr, BC_UNKNOWN}};
    for (const auto& [text, type] : types) EXPECT_EQ(LBScanCell::ConvertCellTypeToEnum(text), type);
    const char* const functions[] = {"INPUT",    "CLOCK",     "OUTPUT2",     "OUTPUT3",
                                     "CONTROL",  "CONTROLR",  "INTERNAL",    "BIDIR",
                                     "BIDIR_IN", "BIDIR_OUT", "OBSERVE_ONLY"};
    for (int i = INPUT; i < FUNCTION_NONE; ++i) {
        Text text(functions[i]);
        strlwr(text);
        LBScanCell cell;
        cell.SetFunction(text);
        EXPECT_STREQ(text, functions[i]) << "the caller's text is turned into upper case";
        cell.SetFunction(Text("INPUTS"));
        EXPECT_EQ(cell.GetFunction(), i);
    }
}

TEST(NewPorts, CountFromTheLowerBound) {
    BScanPinMap map;
    for (const int count : {0, -1, INT_MIN, INT_MAX}) {
        map.AddNewPorts(Text("C"), Text("in"), count, true);
        map.AddNewPorts(Text("C"), Text("in"), count, -1);
        map.AddNewPorts(Text("C"), Text("in"), -1, count);
    }
    map.AddNewPorts(Text("C"), Text("in"), 0, INT_MAX);
    EXPECT_EQ(Ports(&map), "");
    map.AddNewPorts(Text("A"), Text("out"), 2, true);
    map.AddNewPorts(Text("B"), Text("out"), 2, false);
    map.AddNewPorts(Text("D"), Text("in"), INT_MAX - 1, INT_MAX);
    EXPECT_EQ(Ports(&map), "A:out:0 A:out:1 B:out:1 B:out:0 D:in:0 D:in:1");
}

TEST(Serial, NumbersCountTheElementsOfAName) {
    BScanPinMap map;
    for (int i = 0; i < 2; ++i) map.AddNewPorts(Text("a"), Text("in"), 2, true);
    EXPECT_EQ(map.GetPinListArray()->GetCount(), 4);
    EXPECT_EQ(map.GetPort(Text("A"), 0), NodeAt(map, 0));
    for (const int k : {INT_MAX, INT_MIN, -1, 4}) map.SerialSetPinNumber(Text("A"), k, 9);
    map.SerialSetPinNumber(Text("A"), 0, 1);
    map.SerialSetPinNumber(Text("a"), 2, 7);
    map.SerialSetPinName(Text("a"), INT_MAX, Text("C3"));
    map.SerialSetPinName(Text("a"), 0, Text("B2"));
    EXPECT_EQ(Pins(&map), "A=(null)/1 a=B2/-1 a=(null)/-1 a=(null)/7");
    EXPECT_EQ(map.GetPort(7), nullptr) << "there are fewer pins";
}

/// A device with DATA[0..3] "out" and IN1 "in", and ten cells.
struct Register {
    Register() {
        map.AddNewPorts(Text("data"), Text("out"), 0, 3);
        map.AddNewPorts(Text("IN1"), Text("in"), 1, true);
        map.AllocateBScanCellTable(10);
    }
    int Add(int cell, const char* port, int index, const char* function, int control, eSignal value,
            const char* original) {
        return map.AddNewRegister(cell, Text("BC_1"), Text(port), index, Text(function), SIG_X,
                                  control, SIG_0, SIG_WEAK0, value, original);
    }
    BScanPinMap map;
};

TEST(NewRegister, FillsTheCellAndTiesItToItsPort) {
    const struct {
        int cell;
        const char* port;
        int index;
        const char* function;
        int control;
        eSignal value;
        const char* original;
        int result;
        const char* described;
        const char* listed;  // the cells of the port element
    } rows[] = {
        {5, "DATA", 3, "output3", 4, SIG_1, "DATA(3)", 0,
         "BC_1 OUTPUT3 [DATA3] [DATA(3)] safe X value 1 port DATA:3 control 4 off 0 shows WEAK0",
         "5"},
        {9, "data", 0, "OUTPUT2", -1, SIG_0, nullptr, 0,
         "BC_1 OUTPUT2 [DATA] [] safe X value 0 port DATA:0", "9"},
        {0, "other", -2, "input", -5, SIG_Z, "", 0, "BC_1 INPUT [OTHER-2] [] safe X value Z", ""},
        {1, "data", 1, "input", 1, SIG_1, "x", -1,
         "BC_1 INPUT [DATA1] [x] safe X value 1 port DATA:1 control 1 off 0 shows WEAK0", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.described);
        Register device;
        for (int n = 0; n < 10; ++n) device.map.GetBScanCell(n)->SetBoundaryCellPosition(n);
        EXPECT_EQ(device.Add(row.cell, row.port, row.index, row.function, row.control, row.value,
                             row.original),
                  row.result);
        const LBScanCell copy(*device.map.GetBScanCell(row.cell));
        EXPECT_EQ(Describe(copy), row.described);
        EXPECT_EQ(BitAt(device.map, row.cell), row.value == SIG_1);
        EXPECT_EQ(CellsOf(device.map.GetPort(Text(row.port), row.index)), row.listed);
    }
}

TEST(CellTable, AllocatedAgainLeavesNoCellBehind) {
    EXPECT_EQ(BScanPinMap().GetBScanCellTable(), nullptr);
    Register device;
    EXPECT_EQ(device.Add(5, "DATA", 3, "output3", 4, SIG_1, "old"), 0);
    const LBScanCell* table = device.map.GetBScanCellTable();
    for (int length : {-1, INT_MIN, INT_MAX, kMaxBoundaryLength + 1}) {
        device.map.AllocateBScanCellTable(length);
        EXPECT_EQ(device.map.GetBScanCellTable(), table);
        EXPECT_EQ(device.map.GetBScanLength(), 10);
    }
    LPinNode* const node = device.map.GetPort(Text("DATA"), 3);
    const LObjList* const list = node->GetBScanCells();
    for (const int length : {3, 0}) {
        device.map.AllocateBScanCellTable(length);
        EXPECT_EQ(device.map.GetBScanLength(), length);
        EXPECT_NE(device.map.GetBScanCellTable(), nullptr);
        EXPECT_EQ(node->GetBScanCells(), list);
        EXPECT_EQ(CellsOf(node), "");
        EXPECT_EQ(device.map.GetBScanCell("DATA3"), nullptr);
        EXPECT_EQ(device.map.GetBScanCellByOriginalName("old"), nullptr);
        EXPECT_EQ(device.Add(5, "DATA", 3, "output3", -1, SIG_1, ""), -1);
    }
}

TEST(CellTable, IsSearchedAsAWalkDoesIt) {
    constexpr int kCells = 60;
    std::mt19937 random(1);
    BScanPinMap map;
    const auto below = [&](unsigned count) { return random() % count; };
    const auto cell = [&] { return map.GetBScanCell(static_cast<int>(below(kCells))); };
    // Few names or many, in either case; long ones and none, too.
    const auto name = [&](unsigned names) {
        const std::size_t k = below(names);
        if (k == 0) return std::string();
        return (below(2) == 0 ? "io" : "IO") + std::string(k % 9, '_') + std::to_string(k);
    };
    const auto first = [&](const char* (LBScanCell::*get)() const, const std::string& sought) {
        LBScanCell* const table = map.GetBScanCellTable();
        LBScanCell* const found = std::find_if(table, table + kCells, [&](const LBScanCell& one) {
            return strcasecmp((one.*get)(), sought.c_str()) == 0;
        });
        return found == table + kCells ? nullptr : found;
    };
    for (int step = 0; step < 100'000; ++step) {
        // In turn: a fresh table, many searches, many renamings.
        if (step % 1'000 == 0) map.AllocateBScanCellTable(kCells);
        const unsigned names = step % 2'000 < 1'000 ? 6 : 2 * kCells;
        const std::string text = name(names);
        switch (below(step % 200 < 100 ? 4 : 16)) {
            case 0:
                cell()->SetPinName(text.c_str());
                break;
            case 1:
                cell()->SetOriginalPinName(text.c_str());
                break;
            case 2:
                *cell() = *cell();
                break;
            default:
                ASSERT_EQ(map.GetBScanCell(text.c_str()), first(&LBScanCell::GetPinName, text));
                ASSERT_EQ(map.GetBScanCellByOriginalName(text.c_str()),
                          first(&LBScanCell::GetOriginalPinName, text));
        }
    }
}

}  // namespace
}  // namespace bscan::test
