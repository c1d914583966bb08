// The device: making ports and cells, and finding them.

#include <bscan/text.h>

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

TEST(Texts, SetTypesAndFunctions) {
    const std::pair<const char*, CellType> types[] = {
        {"BC_0", BC_0},   {"bc_4", BC_4},        {"Bc_7", BC_7},        {"BC_8", BC_UNKNOWN},
        {"", BC_UNKNOWN}, {"BC_10", BC_UNKNOWN}, {"BC_1 ", BC_UNKNOWN}, {nullptr, BC_UNKNOWN}};
    for (const auto& [text, type] : types) EXPECT_EQ(LBScanCell::ConvertCellTypeToEnum(text), type);
    Text text("bidir");
    LBScanCell cell;
    cell.SetFunction(text);
    EXPECT_STREQ(text, "BIDIR") << "the caller's text is turned into upper case";
    cell.SetFunction(Text("INPUTS"));
    EXPECT_EQ(cell.GetFunction(), BIDIR);
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

TEST(CellTable, AllocatedAgainLeavesNoCellBehind) {
    EXPECT_EQ(BScanPinMap().GetBScanCellTable(), nullptr);
    struct {
        int Add(int cell, int index) {
            return map.AddNewRegister(cell, Text("BC_1"), Text("data"), index, Text("output3"),
                                      SIG_X, 4, SIG_0, SIG_WEAK0, SIG_1, "old");
        }
        BScanPinMap map;
    } device;
    device.map.AddNewPorts(Text("data"), Text("out"), 0, 3);
    device.map.AllocateBScanCellTable(10);
    EXPECT_EQ(device.Add(9, -2), 0) << "an index that no element has";
    EXPECT_STREQ(device.map.GetBScanCell(9)->GetPinName(), "DATA-2");
    EXPECT_EQ(device.Add(5, 3), 0);
    EXPECT_EQ(Describe(LBScanCell(*device.map.GetBScanCell("data3"))),
              "BC_1 OUTPUT3 [DATA3] [old] safe X value 1 port DATA:3 control -1 off 0 shows WEAK0");
    EXPECT_TRUE(BitAt(device.map, 5));
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
        EXPECT_EQ(node->GetBScanCells(), list);
        EXPECT_EQ(CellsOf(node), "");
        EXPECT_EQ(device.map.GetBScanCell("DATA3"), nullptr);
        EXPECT_EQ(device.map.GetBScanCellByOriginalName("old"), nullptr);
        EXPECT_EQ(device.Add(5, 3), -1);
    }
}

}  // namespace
}  // namespace bscan::test
