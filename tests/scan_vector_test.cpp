// Driving and observing ports through the scan vector.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

constexpr std::string_view kThreeCells = R"bsdl(entity CHIP is
generic (PHYSICAL_PIN_MAP : string := "PKG");
port (
  IN1 : in bit;
  IO  : inout bit
);
constant PKG : PIN_MAP_STRING := "IN1 : 1, " &
  "IO : 2";
attribute BOUNDARY_LENGTH of CHIP : entity is 3;
attribute BOUNDARY_REGISTER of CHIP : entity is
  "0 (BC_1, IN1, input, X)," &
  "1 (BC_1, *, control, 0)," &
  "2 (BC_7, IO, bidir, X, 1, 0, Z)";
end CHIP;
)bsdl";

TEST(ScanVector, DrivesAndReleasesAPort) {
    ReadDevice device(kThreeCells);
    ASSERT_EQ(device.result(), kOk);
    BScanPinMap& map = device.map();
    const unsigned char* const bits = map.GetBScanBitArray();
    EXPECT_EQ(map.GetBScanLength(), 3);
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(map.GetPortDirection(2), PORT_IN);
    EXPECT_EQ(map.setPort(2, PORT_OUT, SIG_1), 0);
    EXPECT_EQ(bits[0], 0x60);
    EXPECT_EQ(map.GetPort(2)->GetPortValue(), SIG_1);
    EXPECT_EQ(map.GetPortDirection(2), PORT_OUT);
    EXPECT_EQ(map.GetPortValue(2), SIG_1);
    EXPECT_EQ(map.setPort(2, PORT_IN, SIG_X), 0);
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(map.GetPortDirection(2), PORT_IN);
    EXPECT_EQ(map.GetPortValue(2), SIG_Z);
    EXPECT_EQ(map.GetPortValue(1), SIG_X);
}

TEST(ScanVector, StartsFromACapture) {
    const struct {
        std::vector<unsigned char> data;
        std::vector<unsigned char> mask;  // empty for none
        unsigned char bits;
        eSignal in1;
        eSignal io;
        PortType direction;
    } rows[] = {
        {{1, 0, 1}, {}, 0xA0, SIG_1, SIG_1, PORT_IN},
        {{1, 0, 0}, {}, 0x80, SIG_1, SIG_Z, PORT_IN},
        {{0, 1, 0}, {}, 0x40, SIG_0, SIG_0, PORT_OUT},
        {{0, 1, 1}, {0, 1, 0xFF}, 0x60, SIG_X, SIG_1, PORT_OUT},
        {{1, 2, 1}, {1, 1, 1}, 0xA0, SIG_1, SIG_1, PORT_OUT},  // an unknown control cell drives
        {{1, 0, 1}, {1, 1, 0}, 0x80, SIG_1, SIG_X, PORT_IN},
        {{1}, {}, 0x80, SIG_1, SIG_X, PORT_OUT},
        {{1, 0, 1, 1, 1}, {}, 0xA0, SIG_1, SIG_1, PORT_IN},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ReadDevice device(kThreeCells, row.data, row.mask.empty() ? nullptr : &row.mask);
        ASSERT_EQ(device.result(), kOk);
        EXPECT_EQ(device.map().GetBScanBitArray()[0], row.bits);
        EXPECT_EQ(device.map().GetPortValue(1), row.in1);
        EXPECT_EQ(device.map().GetPortValue(2), row.io);
        EXPECT_EQ(device.map().GetPortDirection(2), row.direction);
    }
}

TEST(ScanVector, RefusedCapturesLeaveTheStoredOne) {
    const TempDir directory;
    BScanParser parser;
    unsigned char data[] = {1, 0, 1};
    EXPECT_EQ(parser.SetBSCANBitArray(data, 3, nullptr), kOk);
    EXPECT_EQ(parser.SetBSCANBitArray(data, -1, nullptr), -1);
    EXPECT_EQ(parser.SetBSCANBitArray(nullptr, 3, data), -1);
    ASSERT_EQ(parser.Initialize(directory.Write("d", kThreeCells).c_str(), ""), kOk);
    ASSERT_EQ(parser.Read(), kOk);
    EXPECT_EQ(parser.GetPinMap()->GetBScanBitArray()[0], 0xA0);

    BScanParser empty;
    EXPECT_EQ(empty.SetBSCANBitArray(data, 0, nullptr), kOk);
    ASSERT_EQ(empty.Initialize(directory.Path("d").c_str(), ""), kOk);
    ASSERT_EQ(empty.Read(), kOk);
    EXPECT_EQ(empty.GetPinMap()->GetBScanCell(1)->cellValue, SIG_X) << "no byte was captured";
}

/// A port "P" of pin number 1 whose cells are numbered from 1, with control cell 0.
struct Port {
    Port(const char* mode, const std::vector<CellFunction>& functions, bool controlled = true) {
        map.AddNewPorts(Text("P"), Text(mode), 1, true);
        map.SetPinNumber(Text("P"), 0, 1);
        map.AllocateBScanCellTable(8);
        for (int n = 0; n < 8; ++n) Cell(n).SetBoundaryCellPosition(n);
        int n = 1;
        for (const CellFunction function : functions) {
            Cell(n).SetFunction(function);
            Cell(n).disableValue = SIG_0;
            if (controlled) Cell(n).SetControlCell(&Cell(0));
            EXPECT_EQ(map.GetPort(1)->AssociateBScanCell(&Cell(n++)), 0);
        }
    }
    LBScanCell& Cell(int n) { return *map.GetBScanCell(n); }
    BScanPinMap map;
};

TEST(PortValue, IsReadFromTheCells) {
    const struct {
        const char* name;
        const char* mode;
        std::vector<CellFunction> functions;
        eSignal control;
        std::vector<eSignal> values;
        eSignal value;
        PortType direction;
        bool controlled = true;
    } rows[] = {
        {"in", "in", {INPUT}, SIG_X, {SIG_1}, SIG_1, PORT_IN},
        {"last input",
         "in",
         {INPUT, OBSERVE_ONLY, CLOCK},
         SIG_X,
         {SIG_1, SIG_Z, SIG_0},
         SIG_Z,
         PORT_IN},
        {"clock alone", "in", {CLOCK}, SIG_X, {SIG_1}, SIG_X, PORT_IN},
        {"out, driver on", "out", {OUTPUT3}, SIG_1, {SIG_0}, SIG_0, PORT_OUT},
        {"out, driver off", "out", {OUTPUT3}, SIG_0, {SIG_1}, SIG_X, PORT_OUT},
        {"out, control unknown", "out", {OUTPUT3}, SIG_X, {SIG_1}, SIG_X, PORT_OUT},
        {"out, control weak", "out", {OUTPUT2}, SIG_WEAK1, {SIG_1}, SIG_X, PORT_OUT},
        {"out, no control", "out", {OUTPUT2}, SIG_1, {SIG_1}, SIG_X, PORT_OUT, false},
        {"inout, driver on", "inout", {INPUT, OUTPUT3}, SIG_1, {SIG_0, SIG_1}, SIG_1, PORT_OUT},
        {"inout, driver off", "inout", {INPUT, OUTPUT3}, SIG_0, {SIG_0, SIG_1}, SIG_0, PORT_IN},
        {"first driver on", "inout", {OUTPUT2, OUTPUT3}, SIG_1, {SIG_X, SIG_1}, SIG_X, PORT_OUT},
        {"BIDIR off and 1", "inout", {BIDIR}, SIG_0, {SIG_1}, SIG_1, PORT_IN},
        {"BIDIR off and 0", "inout", {BIDIR}, SIG_0, {SIG_0}, SIG_Z, PORT_IN},
        {"BIDIR off and X", "inout", {BIDIR}, SIG_0, {SIG_X}, SIG_X, PORT_IN},
        {"BIDIR on", "inout", {BIDIR}, SIG_1, {SIG_0}, SIG_0, PORT_OUT},
        {"BIDIR, control unknown", "inout", {BIDIR}, SIG_X, {SIG_0}, SIG_Z, PORT_OUT},
        {"BIDIR off ends the walk", "inout", {BIDIR, INPUT}, SIG_0, {SIG_0, SIG_1}, SIG_Z, PORT_IN},
        {"BIDIR without control",
         "inout",
         {BIDIR, INPUT},
         SIG_1,
         {SIG_0, SIG_1},
         SIG_1,
         PORT_NONE,
         false},
        {"BIDIR_OUT is no driver here",
         "inout",
         {BIDIR_IN, BIDIR_OUT},
         SIG_1,
         {SIG_1, SIG_1},
         SIG_X,
         PORT_NONE},
        {"buffer", "buffer", {OUTPUT2}, SIG_1, {SIG_1}, SIG_WEAK0, PORT_OUT},
        {"no cells", "out", {}, SIG_1, {}, SIG_X, PORT_OUT},
        {"inout without cells", "inout", {}, SIG_1, {}, SIG_X, PORT_NONE},
        {"linkage", "linkage", {}, SIG_1, {}, SIG_X, PORT_NONE},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Port port(row.mode, row.functions, row.controlled);
        port.map.GetPort(1)->SetPortValue(SIG_WEAK0);
        port.Cell(0).cellValue = row.control;
        int n = 1;
        for (const eSignal value : row.values) port.Cell(n++).cellValue = value;
        EXPECT_EQ(port.map.GetPortValue(1), row.value);
        EXPECT_EQ(port.map.GetPortDirection(1), row.direction);
        EXPECT_EQ(port.map.HasBScanCell(1), !row.functions.empty());
    }
}

TEST(SetPort, UpdatesTheBitsOfAllRoles) {
    Port port("inout", {INPUT, OUTPUT3});
    const unsigned char* const bits = port.map.GetBScanBitArray();
    for (int n = 0; n < 8; ++n) port.map.SetBit(n, SIG_1);
    EXPECT_EQ(port.map.setPort(1, PORT_OUT, SIG_0), 0);
    EXPECT_EQ(bits[0], 0x9F) << "control on, the input cell's X and the output's 0 cleared";
    port.Cell(1).cellValue = SIG_1;
    EXPECT_EQ(port.map.setPort(1, PORT_OUT, SIG_1), 0);
    EXPECT_EQ(bits[0], 0xFF);
    port.map.ResetAllPort();
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(port.map.UpdateBScanBitArray(port.map.GetPort(1)), 0);
    EXPECT_EQ(bits[0], 0xE0);
    EXPECT_EQ(port.map.setPort(1, PORT_IN, SIG_1), 0);
    EXPECT_EQ(bits[0], 0x40);
    Port observed("in", {INPUT, OBSERVE_ONLY});
    EXPECT_EQ(observed.map.setPort(1, PORT_IN, SIG_1), 0);
    EXPECT_EQ(observed.map.GetBScanBitArray()[0], 0x20);
}

TEST(SetPort, FailsWithoutChangingBits) {
    Port in("in", {INPUT});
    EXPECT_EQ(in.map.setPort(1, PORT_OUT, SIG_1), -1);
    EXPECT_EQ(in.map.GetPort(1)->GetPortValue(), SIG_1) << "recorded all the same";
    EXPECT_EQ(in.Cell(1).cellValue, SIG_X);
    for (int pin : {0, 2, -1}) EXPECT_EQ(in.map.setPort(pin, PORT_IN, SIG_1), -1) << pin;
    EXPECT_EQ(in.map.GetBScanBitArray()[0], 0x00);
    Port half("inout", {OUTPUT3});
    EXPECT_EQ(half.map.setPort(1, PORT_OUT, SIG_1), -1);
    EXPECT_EQ(half.Cell(1).cellValue, SIG_1) << "written before the input cell was missed";
    EXPECT_EQ(half.map.GetBScanBitArray()[0], 0x00);
    Port output2("out", {OUTPUT2}, false);
    EXPECT_EQ(output2.map.setPort(1, PORT_OUT, SIG_1), -1);
    Port none("out", {});
    EXPECT_EQ(none.map.setPort(1, PORT_IN, SIG_1), 0) << "a port without cells takes anything";
    EXPECT_EQ(none.map.GetPort(1)->GetPortValue(), SIG_1);
}

TEST(SetPort, MarksTheCellsOfAPort) {
    Port port("inout", {INPUT, OBSERVE_ONLY, OUTPUT3});
    EXPECT_EQ(port.map.setPort(1, PORT_NONE, SIG_0, false), 0);
    EXPECT_EQ(port.map.GetBScanBitArray()[0], 0xD0) << "control, input and output cell";
    EXPECT_EQ(port.Cell(1).cellValue, SIG_X);
    EXPECT_EQ(port.map.GetPort(1)->GetPortValue(), SIG_0);
    EXPECT_EQ(port.map.setPort(2, PORT_OUT, SIG_1, true), -1);
    EXPECT_EQ(port.map.setPort(-1, PORT_OUT, SIG_1, true), -1);
    Port clock("in", {CLOCK});
    EXPECT_EQ(clock.map.setPort(1, PORT_IN, SIG_1, true), 0);
    EXPECT_EQ(clock.map.GetBScanBitArray()[0], 0x00);
}

TEST(SetPort, NeedsARegisterForItsBits) {
    BScanPinMap map;
    map.AddNewPorts(Text("P"), Text("in"), 1, true);
    map.SetPinNumber(Text("P"), 0, 1);
    EXPECT_EQ(map.UpdateBScanBitArray(map.GetPort(1)), -1);
    EXPECT_EQ(map.setPort(1, PORT_IN, SIG_1, true), 0) << "a port without cells has no bits";
    LBScanCell cell;
    cell.SetFunction(INPUT);
    EXPECT_EQ(map.GetPort(1)->AssociateBScanCell(&cell), 0);
    EXPECT_EQ(map.setPort(1, PORT_IN, SIG_1), -1);
    EXPECT_EQ(cell.cellValue, SIG_1);
    EXPECT_EQ(map.setPort(1, PORT_IN, SIG_1, true), -1);
}

}  // namespace
}  // namespace bscan::test
