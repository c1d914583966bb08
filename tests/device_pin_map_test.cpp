// The device: making ports and cells, and finding them.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

LPinNode* Node(const BScanPinMap& map, int index) {
    return static_cast<LPinNode*>(map.GetPinListArray()->GetAt(index));
}

TEST(NewPorts, CountFromTheLowerBound) {
    const struct {
        int from;
        int to;
        const char* ports;
    } rows[] = {{3, 7, "D:in:0 D:in:1 D:in:2 D:in:3 D:in:4"},
                {7, 3, "D:in:4 D:in:3 D:in:2 D:in:1 D:in:0"},
                {5, 5, "D:in:0"},
                {INT_MAX - 1, INT_MAX, "D:in:0 D:in:1"},
                {-1, 3, ""},
                {3, -1, ""},
                {0, INT_MAX, ""},
                {INT_MIN, INT_MAX, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.from);
        BScanPinMap map;
        map.AddNewPorts(Text("D"), Text("in"), row.from, row.to);
        EXPECT_EQ(Ports(&map), row.ports);
    }
    BScanPinMap map;
    map.AddNewPorts(Text("A"), Text("out"), 2, true);
    map.AddNewPorts(Text("B"), Text("out"), 2, false);
    for (int count : {0, -1, INT_MIN, INT_MAX}) map.AddNewPorts(Text("C"), Text("in"), count, true);
    EXPECT_EQ(Ports(&map), "A:out:0 A:out:1 B:out:1 B:out:0");
}

/// The ports A, D[2..0], d, without a name, Tdo; numbered from 1.
struct Device {
    Device() {
        map.AddNewPorts(Text("A"), Text("in"), 1, true);
        map.AddNewPorts(Text("D"), Text("inout"), 2, 0);
        map.AddNewPorts(Text("d"), Text("buffer"), 1, true);
        map.GetPinListArray()->AddTail(new LPinNode);
        map.AddNewPorts(Text("Tdo"), Text("out"), 1, true);
        for (int i = 0; i < map.GetNumberOfPins(); ++i) Node(map, i)->SetPinNumber(i + 1);
    }
    BScanPinMap map;
};

TEST(Lookup, ByPinNumberEndsAtTheNumberOfPins) {
    Device device;
    Node(device.map, 0)->SetPinNumber(8);
    Node(device.map, 1)->SetPinNumber(0);
    Node(device.map, 2)->SetPinNumber(7);
    const std::pair<int, int> rows[] = {{8, -1}, {0, -1}, {1, -1},       {-1, -1},
                                        {7, 2},  {5, 4},  {INT_MAX, -1}, {INT_MIN, -1}};
    for (const auto& [number, index] : rows) {
        SCOPED_TRACE(number);
        LPinNode* const node = index < 0 ? nullptr : Node(device.map, index);
        EXPECT_EQ(device.map.GetPort(number), node);
        EXPECT_EQ(device.map.GetPortType(number), node ? node->GetPortType() : PORT_NONE);
        EXPECT_STREQ(device.map.GetPortName(number), node ? node->GetPortName() : nullptr);
        EXPECT_EQ(device.map.GetPinName(number), nullptr);
    }
}

TEST(Lookup, BySerialNumberOrIndexSetsAnElement) {
    Device device;
    device.map.SerialSetPinName(Text("D"), 1, Text("B2"));
    device.map.SerialSetPinName(Text("Tdo"), 0, Text("B2"));
    device.map.SerialSetPinName(Text("tdo"), 0, Text("C3"));
    device.map.SerialSetPinName(Text("D"), 3, Text("C3"));
    device.map.SerialSetPinNumber(Text("D"), 2, 17);
    device.map.SetPinNumber(Text("tDo"), 0, 99);
    EXPECT_EQ(Pins(&device.map),
              "A=(null)/1 D=(null)/2 D=B2/3 D=(null)/17 D=(null)/5 (null)=(null)/6 Tdo=B2/7")
        << "SetPinNumber looks no further than the port without a name";
    EXPECT_EQ(device.map.GetPinNumber("B2"), 3);
    EXPECT_EQ(device.map.GetPinNumber("b2"), -1);
    EXPECT_EQ(device.map.GetPinNumberwPortName(Text("TDO")), 7);
    EXPECT_EQ(device.map.GetPinNumberwPortName(Text("X")), -1);
}

/// A device with DATA[0..3] "out" and IN1 "in", and ten cells.
struct Register {
    Register() {
        map.AddNewPorts(Text("data"), Text("out"), 0, 3);
        map.AddNewPorts(Text("IN1"), Text("in"), 1, true);
        map.AllocateBScanCellTable(10);
    }
    int Add(int cell, std::string_view port, int index, std::string_view function, int control,
            eSignal value, const char* original) {
        return map.AddNewRegister(cell, Text("BC_1"), Text(port), index, Text(function), SIG_X,
                                  control, SIG_0, SIG_WEAK0, value, original);
    }
    BScanPinMap map;
};

TEST(NewRegister, FillsTheCellAndTiesItToItsPort) {
    const struct {
        const char* name;
        int cell;
        const char* port;
        int index;
        const char* function;
        int control;
        eSignal value;
        const char* original;
        int result;
        const char* described;
        bool bit;
        const char* listed;  // the cells of the port element
    } rows[] = {
        {"vector element", 5, "DATA", 3, "output3", 4, SIG_1, "DATA(3)", 0,
         "BC_1 OUTPUT3 [DATA3] [DATA(3)] safe X value 1 port DATA:3 control 4 off 0 shows WEAK0",
         true, "5"},
        {"element 0 is named like a scalar", 9, "data", 0, "OUTPUT2", -1, SIG_0, nullptr, 0,
         "BC_1 OUTPUT2 [DATA] [] safe X value 0 port DATA:0", false, "9"},
        {"no port", 0, "", 0, "control", -1, SIG_1, "", 0, "BC_1 CONTROL [] [] safe X value 1",
         true, ""},
        {"unknown port", 0, "other", -2, "input", -5, SIG_Z, "", 0,
         "BC_1 INPUT [OTHER-2] [] safe X value Z", false, ""},
        {"unknown element", 0, "DATA", 4, "output2", -1, SIG_X, "", 0,
         "BC_1 OUTPUT2 [DATA4] [] safe X value X", false, ""},
        {"refused by the port", 1, "data", 1, "input", 1, SIG_1, "x", -1,
         "BC_1 INPUT [DATA1] [x] safe X value 1 port DATA:1 control 1 off 0 shows WEAK0", true, ""},
        {"unknown function", 1, "in1", 0, "inputs", -1, SIG_1, "", -1,
         "BC_1 NONE [IN1] [] safe X value 1 port IN1:0", true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Register device;
        for (int n = 0; n < 10; ++n) device.map.GetBScanCell(n)->SetBoundaryCellPosition(n);
        EXPECT_EQ(device.Add(row.cell, row.port, row.index, row.function, row.control, row.value,
                             row.original),
                  row.result);
        EXPECT_EQ(Describe(*device.map.GetBScanCell(row.cell)), row.described);
        EXPECT_EQ((device.map.GetBScanBitArray()[row.cell / 8] & (0x80 >> row.cell % 8)) != 0,
                  row.bit);
        EXPECT_EQ(CellsOf(device.map.GetPort(Text(row.port), row.index)), row.listed);
    }
}

TEST(NewRegister, RefusesNumbersOutsideTheRegister) {
    Register device;
    EXPECT_EQ(device.Add(10, "IN1", 0, "input", -1, SIG_1, ""), -1);
    EXPECT_EQ(device.Add(-1, "IN1", 0, "input", -1, SIG_1, ""), -1);
    EXPECT_EQ(device.Add(INT_MIN, "IN1", 0, "input", -1, SIG_1, ""), -1);
    EXPECT_EQ(device.Add(0, "IN1", 0, "input", 10, SIG_1, ""), -1);
    EXPECT_EQ(device.Add(0, "IN1", 0, "input", INT_MAX, SIG_1, ""), -1);
    EXPECT_EQ(device.map.AddNewRegister(0, nullptr, nullptr, 0, nullptr, SIG_X, -1, SIG_0, SIG_Z,
                                        SIG_1, nullptr),
              -1);
    for (int n = 0; n < 10; ++n)
        EXPECT_EQ(Describe(*device.map.GetBScanCell(n)), "BC_? NONE [] [] safe X value X");
    EXPECT_EQ(device.map.GetBScanBitArray()[0], 0);
    EXPECT_EQ(CellsOf(device.map.GetPort(Text("IN1"), 0)), "");
    BScanPinMap empty;
    EXPECT_EQ(empty.AddNewRegister(0, Text("BC_1"), Text(""), 0, Text("input"), SIG_X, -1, SIG_0,
                                   SIG_Z, SIG_1, ""),
              -1);
}

TEST(ScanBits, LieFromTheHighBitOfTheFirstByte) {
    Register device;
    const unsigned char* bits = device.map.GetBScanBitArray();
    EXPECT_EQ(device.map.SetBit(0, SIG_1), 0);
    EXPECT_EQ(device.map.SetBit(7, SIG_1), 0);
    EXPECT_EQ(device.map.SetBit(9, SIG_1), 0);
    EXPECT_EQ(bits[0], 0x81);
    EXPECT_EQ(bits[1], 0x40);
    for (int n : {10, -1, INT_MAX, INT_MIN}) EXPECT_EQ(device.map.SetBit(n, SIG_1), -1);
    for (int level = SIG_0; level <= SIG_WEAK1; ++level) {
        device.map.SetBit(9, static_cast<eSignal>(level));
        EXPECT_EQ(bits[1], level == SIG_1 ? 0x40 : 0) << level;
    }
    device.map.ResetAllPort();
    EXPECT_EQ(bits[0], 0);
    EXPECT_EQ(device.map.GetBScanCell(-1), nullptr);
    EXPECT_EQ(device.map.GetBScanCell(10), nullptr);
}

TEST(CellTable, AllocatedAgainLeavesNoCellBehind) {
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
    device.map.AllocateBScanCellTable(3);
    EXPECT_EQ(device.map.GetBScanLength(), 3);
    EXPECT_EQ(device.map.GetBScanBitArray()[0], 0);
    EXPECT_EQ(node->GetBScanCells(), list);
    EXPECT_EQ(CellsOf(node), "");
    EXPECT_EQ(device.map.GetBScanCell("DATA3"), nullptr);
    EXPECT_EQ(device.map.GetBScanCellByOriginalName("old"), nullptr);
    device.map.AllocateBScanCellTable(0);
    EXPECT_EQ(device.map.GetBScanLength(), 0);
    EXPECT_EQ(device.map.GetBScanCell(0), nullptr);
    EXPECT_EQ(device.Add(0, "DATA", 3, "output3", -1, SIG_1, ""), -1);
}

TEST(CellLookup, GivesAPortsFirstInputCell) {
    Register device;
    EXPECT_EQ(device.map.GetPinIndexwPortName(Text("x")), -1);
    EXPECT_EQ(device.map.GetPinIndexwPortName(Text("in1")), 0) << "a port without cells";
    device.Add(6, "IN1", 0, "clock", -1, SIG_0, "");
    EXPECT_EQ(device.map.GetPinIndexwPortName(Text("in1")), 0);
    device.Add(8, "IN1", 0, "input", -1, SIG_0, "");
    device.Add(2, "IN1", 0, "input", -1, SIG_0, "");
    EXPECT_EQ(device.map.GetPinIndexwPortName(Text("in1")), 8);
}

}  // namespace
}  // namespace bscan::test
