// Driving and observing ports through their cells and the scan vector.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

/// A device of an input, a control and a "bidir" cell, and a capture for it.
struct ThreeCells : ReadDevice {
    explicit ThreeCells(const std::vector<unsigned char>& data,
                        const std::vector<unsigned char>& mask = {})
        : ReadDevice(Contents(SourceDir() / "tests" / "devices" / "three_cells.bsd"), data, mask) {}
};

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
        {{}, {}, 0x00, SIG_X, SIG_X, PORT_IN},
        {{0, 1, 0}, {}, 0x40, SIG_0, SIG_0, PORT_OUT},
        {{0, 1, 1}, {0, 1, 0xFF}, 0x60, SIG_X, SIG_1, PORT_OUT},
        {{1, 2, 1}, {1, 1, 1}, 0xA0, SIG_1, SIG_1, PORT_OUT},  // an unknown control cell drives
        {{1, 0, 1}, {1, 1, 0}, 0x80, SIG_1, SIG_X, PORT_IN},
        {{1}, {}, 0x80, SIG_1, SIG_X, PORT_OUT},
        {{1, 0, 1, 1, 1}, {}, 0xA0, SIG_1, SIG_1, PORT_IN}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ThreeCells device(row.data, row.mask);
        EXPECT_EQ(device.map().GetBScanBitArray()[0], row.bits);
        EXPECT_EQ(device.map().GetPortValue(1), row.in1);
        EXPECT_EQ(device.map().GetPortValue(2), row.io);
        EXPECT_EQ(device.map().GetPortDirection(2), row.direction);
    }
}

TEST(ScanVector, RefusedCapturesLeaveTheStoredOne) {
    ThreeCells device({1, 0, 1});
    unsigned char data[] = {0, 0, 0};
    EXPECT_EQ(device.parser.SetBSCANBitArray(data, -1, nullptr), -1);
    EXPECT_EQ(device.parser.SetBSCANBitArray(nullptr, 3, data), -1);
    EXPECT_EQ(device.parser.ReadBSCANBoundaryLength(nullptr, Text("is 2;")), kOk);
    EXPECT_EQ(device.parser.ReadBSCANBoundaryRegister(nullptr, Text("is \"0 (a,*,b,0)\";")), kOk);
    EXPECT_EQ(device.map().GetBScanBitArray()[0], 0x80);
}

constexpr std::string_view kLevels = "01XZpPwW";        // in the order of eSignal
constexpr std::string_view kFunctions = "IC23cr.BioV";  // in the order of CellFunction

char Letter(eSignal level) { return kLevels[static_cast<std::size_t>(level)]; }
eSignal Level(char letter) { return static_cast<eSignal>(kLevels.find(letter)); }

/// A port "P" of pin number 1 whose cells, one for each letter, are numbered from 1; their control
/// cell is number 0.
struct Port {
    Port(const char* mode, std::string_view functions, bool controlled = true)
        : length(static_cast<int>(functions.size())) {
        map.AddNewPorts(Text("P"), Text(mode), 1, true);
        map.SetPinNumber(Text("P"), 0, 1);
        map.AllocateBScanCellTable(8);
        for (int n = 0; n < 8; ++n) Cell(n).SetBoundaryCellPosition(n);
        for (int n = 1; n <= length; ++n) {
            const auto function = kFunctions.find(functions[static_cast<std::size_t>(n) - 1]);
            Cell(n).SetFunction(static_cast<CellFunction>(function));
            Cell(n).disableValue = SIG_0;
            if (controlled) Cell(n).SetControlCell(&Cell(0));
            EXPECT_EQ(node().AssociateBScanCell(&Cell(n)), 0);
        }
    }
    LPinNode& node() { return *map.GetPort(1); }
    LBScanCell& Cell(int n) { return *map.GetBScanCell(n); }
    unsigned char bits() { return map.GetBScanBitArray()[0]; }
    /// The values of the cells and, behind a slash, of the control cell.
    std::string Values() {
        std::string values;
        for (int n = 1; n <= length; ++n) values += Letter(Cell(n).cellValue);
        return values + '/' + Letter(Cell(0).cellValue);
    }
    int length;
    BScanPinMap map;
};

// Every cell value starts as Z.
TEST(Drive, SetsTheCellsOfTheRoles) {
    const struct {
        PortType direction;
        const char* mode;
        const char* functions;
        char level;
        int result;
        const char* values;
        char off = '0';
        char shows = 'Z';
        bool controlled = true;
    } rows[] = {{PORT_OUT, "inout", "I3", '1', 0, "Z1/1"},
                {PORT_OUT, "inout", "I3", '1', 0, "Z1/0", '1'},
                {PORT_OUT, "out", "3", '0', 0, "0/0", 'X'},
                {PORT_OUT, "out", "3", 'W', 0, "0/1"},
                {PORT_OUT, "out", "23", '1', 0, "1Z/1"},  // the first output cell
                {PORT_OUT, "inout", "B", '1', 0, "1/1"},
                {PORT_OUT, "inout", "3", '1', -1, "1/1"},    // lacks an input cell
                {PORT_OUT, "inout", "V3", '1', -1, "Z1/1"},  // which an observing cell is not
                {PORT_OUT, "in", "I", '1', -1, "Z/Z"},
                {PORT_OUT, "out", "2", '1', -1, "Z/Z", '0', 'Z', false},
                {PORT_OUT, "buffer", "2", '1', 0, "1/1"},
                {PORT_IN, "in", "I", '1', 0, "1/Z"},
                {PORT_IN, "in", "C", '1', -1, "Z/Z"},
                {PORT_IN, "in", "IVV", '1', 0, "Z1Z/Z"},  // an observing cell ends the walk
                {PORT_IN, "inout", "I3V", '0', 0, "ZZ0/Z"},
                {PORT_IN, "inout", "I3", '1', 0, "10/0"},
                {PORT_IN, "inout", "I3", '0', 0, "01/0", '0', 'P'},
                {PORT_IN, "inout", "I3", '0', 0, "00/0", '0', 'p'},
                {PORT_IN, "inout", "B", '1', 0, "1/0", '0', 'P'},
                {PORT_IN, "inout", "iB", '1', 0, "10/0"},
                {PORT_IN, "inout", "I3", '1', -1, "1Z/Z", '0', 'Z', false},
                {PORT_IN, "inout", "I", '1', -1, "1/Z"},
                {PORT_IN, "out", "3", '1', -1, "Z/Z"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Port port(row.mode, row.functions, row.controlled);
        for (int n = 0; n < 8; ++n) {
            port.Cell(n).cellValue = SIG_Z;
            port.Cell(n).disableValue = Level(row.off);
            port.Cell(n).disableResult = Level(row.shows);
        }
        EXPECT_EQ(row.direction == PORT_OUT ? port.node().SetOutput(Level(row.level))
                                            : port.node().SetInput(Level(row.level)),
                  row.result);
        EXPECT_EQ(port.Values(), row.values);
    }
}

TEST(Drive, FollowsTheMode) {
    const Rows<const char*, const char*, const char*, const char*> rows = {
        {"in", "I", "1/X", "X/X"},
        {"out", "2", "X/X", "1/1"},
        {"buffer", "2", "X/X", "1/1"},
        {"inout", "B", "1/0", "1/1"}};
    for (const auto& [mode, function, received, driven] : rows) {
        for (int direction = PORT_IN - 1; direction <= PORT_NONE + 1; ++direction) {
            SCOPED_TRACE(mode + std::to_string(direction));
            Port port(mode, function);
            const std::string values = direction == PORT_IN    ? received
                                       : direction == PORT_OUT ? driven
                                                               : "X/X";
            EXPECT_EQ(port.node().SetBScanCell(static_cast<PortType>(direction), SIG_1),
                      values == "X/X" ? -1 : 0);
            EXPECT_EQ(port.Values(), values);
        }
    }
}

TEST(PortValue, IsReadFromTheCells) {
    const struct {
        const char* mode;
        const char* functions;
        const char* values;  // of the control cell and the cells
        char value;
        PortType direction;
        bool controlled = true;
    } rows[] = {
        {"in", "C", "X1", 'X', PORT_IN},        {"out", "3", "10", '0', PORT_OUT},
        {"out", "2", "W1", 'X', PORT_OUT},      {"out", "2", "11", 'X', PORT_OUT, false},
        {"inout", "I3", "101", '1', PORT_OUT},  {"inout", "I3", "001", '0', PORT_IN},
        {"inout", "23", "1X1", 'X', PORT_OUT},  {"inout", "B", "01", '1', PORT_IN},
        {"inout", "B", "10", '0', PORT_OUT},    {"inout", "B", "X0", 'Z', PORT_OUT},
        {"inout", "BI", "001", 'Z', PORT_IN},   {"inout", "BI", "101", '1', PORT_NONE, false},
        {"inout", "io", "111", 'X', PORT_NONE}, {"buffer", "2", "11", 'w', PORT_OUT}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode + std::string(row.functions) + row.values);
        Port port(row.mode, row.functions, row.controlled);
        port.node().SetPortValue(SIG_WEAK0);
        for (int n = 0; row.values[n] != '\0'; ++n) port.Cell(n).cellValue = Level(row.values[n]);
        EXPECT_EQ(port.map.GetPortValue(1), Level(row.value));
        EXPECT_EQ(port.map.GetPortDirection(1), row.direction);
        EXPECT_EQ(port.map.HasBScanCell(1), port.length > 0);
    }
}

TEST(SetPort, UpdatesTheBitsOfAllRoles) {
    Port port("inout", "IV3");
    for (int n = 0; n < 8; ++n) port.map.SetBit(n, SIG_1);
    EXPECT_EQ(port.map.setPort(1, PORT_OUT, SIG_0), 0);
    EXPECT_EQ(port.bits(), 0x8F) << "control on, the X of both inputs and the output's 0 cleared";
    port.map.ResetAllPort();
    port.Cell(2).cellValue = SIG_1;
    EXPECT_EQ(port.map.UpdateBScanBitArray(&port.node()), 0);
    EXPECT_EQ(port.bits(), 0xA0);
    EXPECT_EQ(port.map.setPort(1, PORT_NONE, SIG_1, false), 0) << "which marks the bits alone";
    EXPECT_EQ(port.bits(), 0xF0);
    EXPECT_EQ(port.Values(), "X10/1");
    EXPECT_EQ(port.node().GetPortValue(), SIG_1);
    port.map.ResetAllPort();
    EXPECT_EQ(port.bits(), 0x00);
    EXPECT_EQ(port.map.setPort(1, PORT_NONE, SIG_0, true), 0);
    EXPECT_EQ(port.bits(), 0xD0) << "control, input and output cell";
    EXPECT_EQ(port.map.setPort(2, PORT_OUT, SIG_1, true), -1);
}

TEST(SetPort, FailsWithoutChangingBits) {
    Port in("in", "I");
    EXPECT_EQ(in.map.setPort(1, PORT_OUT, SIG_1), -1);
    EXPECT_EQ(in.node().GetPortValue(), SIG_1) << "recorded all the same";
    EXPECT_EQ(in.Values(), "X/X");
    for (int pin : {0, 2, -1}) EXPECT_EQ(in.map.setPort(pin, PORT_IN, SIG_1), -1) << pin;
    for (int n : {-1, 8, INT_MAX}) EXPECT_EQ(in.map.SetBit(n, SIG_1), -1) << n;
    EXPECT_EQ(in.bits(), 0x00);
    Port half("inout", "3");
    EXPECT_EQ(half.map.setPort(1, PORT_OUT, SIG_1), -1);
    EXPECT_EQ(half.Values(), "1/1") << "written before the input cell was missed";
    EXPECT_EQ(half.bits(), 0x00);
    Port none("out", "");
    EXPECT_EQ(none.map.setPort(1, PORT_IN, SIG_1), 0) << "a port without cells takes anything";
    BScanPinMap map;  // without a register
    map.AddNewPorts(Text("P"), Text("in"), 1, true);
    map.SetPinNumber(Text("P"), 0, 1);
    EXPECT_EQ(map.UpdateBScanBitArray(map.GetPort(1)), -1);
    EXPECT_EQ(map.setPort(1, PORT_IN, SIG_1, true), 0) << "a port without cells has no bits";
    LBScanCell cell;
    cell.SetFunction(INPUT);
    EXPECT_EQ(map.GetPort(1)->AssociateBScanCell(&cell), 0);
    EXPECT_EQ(map.setPort(1, PORT_IN, SIG_1), -1);
    EXPECT_EQ(cell.cellValue, SIG_1);
}

}  // namespace
}  // namespace bscan::test
