// Port elements and the roles of their cells.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <set>

namespace bscan::test {
namespace {

TEST(PortMode, IsSetByExactText) {
    const std::pair<const char*, PortType> rows[] = {
        {"in", PORT_IN},        {"out", PORT_OUT}, {"inout", PORT_INOUT}, {"buffer", PORT_BUFFER},
        {"linkage", PORT_NONE}, {"IN", PORT_NONE}, {"in ", PORT_NONE},    {"", PORT_NONE}};
    for (const auto& [text, mode] : rows) {
        SCOPED_TRACE(text);
        LPinNode node;
        node.SetPortType(Text(text));
        EXPECT_EQ(node.GetPortType(), mode);
        node.SetPortType(Text("out"));
        node.SetPortType(Text("OUT"));
        node.SetPortType(nullptr);
        EXPECT_EQ(node.GetPortType(), PORT_OUT) << "an unknown text keeps the mode";
    }
}

TEST(CellTexts, AreMatchedWholeAndWithoutCase) {
    const std::pair<const char*, CellType> types[] = {
        {"BC_0", BC_0},   {"bc_4", BC_4},        {"Bc_7", BC_7},        {"BC_8", BC_UNKNOWN},
        {"", BC_UNKNOWN}, {"BC_10", BC_UNKNOWN}, {"BC_1 ", BC_UNKNOWN}, {nullptr, BC_UNKNOWN}};
    for (const auto& [text, type] : types)
        EXPECT_EQ(LBScanCell::ConvertCellTypeToEnum(text), type) << (text ? text : "null");
    const char* const functions[] = {"INPUT",    "CLOCK",     "OUTPUT2",     "OUTPUT3",
                                     "CONTROL",  "CONTROLR",  "INTERNAL",    "BIDIR",
                                     "BIDIR_IN", "BIDIR_OUT", "OBSERVE_ONLY"};
    for (int i = INPUT; i < FUNCTION_NONE; ++i) {
        SCOPED_TRACE(functions[i]);
        Text text(functions[i]);
        strlwr(text);
        LBScanCell cell;
        cell.SetFunction(text);
        EXPECT_EQ(cell.GetFunction(), i);
        EXPECT_STREQ(text, functions[i]) << "the caller's text is turned into upper case";
        cell.SetFunction(Text("INPUTS"));
        cell.SetFunction(nullptr);
        EXPECT_EQ(cell.GetFunction(), i);
    }
    LBScanCell cell;
    cell.SetCellType(Text("bc_3"));
    cell.SetCellType(nullptr);
    EXPECT_EQ(cell.GetBScanCellType(), BC_3);
    cell.SetCellType(Text("BC_9"));
    EXPECT_EQ(cell.GetBScanCellType(), BC_UNKNOWN);
}

TEST(Cell, IsCopiedWhole) {
    LPinNode node;
    LBScanCell control;
    control.SetBoundaryCellPosition(4);
    LBScanCell cell;
    EXPECT_EQ(Describe(cell), "BC_? NONE [] [] safe X value X");
    EXPECT_EQ(cell.disableValue, SIG_1);
    EXPECT_EQ(cell.disableResult, SIG_Z);
    cell.SetBoundaryCellPosition(5);
    cell.SetCellType(BC_2);
    cell.SetFunction(OUTPUT3);
    cell.SetPinNode(&node);
    cell.SetControlCell(&control);
    cell.SetPinName("IO3");
    cell.SetOriginalPinName("IO(3)");
    cell.safeValue = cell.disableValue = SIG_0;
    cell.disableResult = SIG_WEAK1;
    cell.cellValue = SIG_1;
    LBScanCell assigned;
    assigned = cell;
    for (const LBScanCell& copy : {LBScanCell(cell), assigned}) {
        EXPECT_EQ(copy.GetBoundaryCellPosition(), 5);
        EXPECT_EQ(Describe(copy),
                  "BC_2 OUTPUT3 [IO3] [IO(3)] safe 0 value 1 port (null):-1 control 4 off 0 shows "
                  "WEAK1");
    }
}

const char* const kModeTexts[] = {"in", "out", "inout", "buffer", "linkage"};

TEST(Association, TakesTheFunctionsOfTheMode) {
    const std::set<int> accepted[] = {
        {INPUT, CLOCK, OBSERVE_ONLY},
        {OUTPUT2, OUTPUT3},
        {INPUT, OUTPUT2, OUTPUT3, BIDIR, BIDIR_IN, BIDIR_OUT, OBSERVE_ONLY},
        {OUTPUT2},
        {}};
    for (int mode = PORT_IN; mode <= PORT_NONE; ++mode) {
        for (int function = INPUT; function <= FUNCTION_NONE; ++function) {
            SCOPED_TRACE(testing::Message() << kModeTexts[mode] << " takes " << function);
            LPinNode node;
            node.SetPortType(Text(kModeTexts[mode]));
            LBScanCell cell;
            cell.SetFunction(static_cast<CellFunction>(function));
            const bool taken = accepted[mode].count(function) > 0;
            EXPECT_EQ(node.AssociateBScanCell(&cell), taken ? 0 : -1);
            EXPECT_EQ(node.AssociateBScanCell(&cell), taken ? 0 : -1);
            if (taken) {
                EXPECT_EQ(node.GetBScanCells()->GetCount(), 2);
            } else {
                EXPECT_EQ(node.GetBScanCells(), nullptr);
            }
            EXPECT_EQ(node.AssociateBScanCell(nullptr), -1);
        }
    }
}

/// A port element with some cells and one control cell, for which every cell value starts as Z.
struct Port {
    Port(const char* mode, const std::vector<CellFunction>& functions, eSignal off = SIG_0,
         eSignal shows = SIG_Z, bool controlled = true)
        : cells(functions.size()) {
        node.SetPortType(Text(mode));
        control.cellValue = SIG_Z;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            cells[i].SetFunction(functions[i]);
            cells[i].cellValue = SIG_Z;
            cells[i].disableValue = off;
            cells[i].disableResult = shows;
            if (controlled) cells[i].SetControlCell(&control);
            EXPECT_EQ(node.AssociateBScanCell(&cells[i]), 0);
        }
    }
    /// The values of the cells and, behind a slash, of the control cell.
    std::string Values() const {
        const char* const letters = "01XZ";
        std::string values;
        for (const LBScanCell& cell : cells) values += letters[cell.cellValue];
        return values + '/' + letters[control.cellValue];
    }
    LPinNode node;
    LBScanCell control;
    std::vector<LBScanCell> cells;
};

struct Request {
    const char* name;
    const char* mode;
    std::vector<CellFunction> functions;
    eSignal level;
    int result;
    const char* values;
    eSignal off = SIG_0;
    eSignal shows = SIG_Z;
    bool controlled = true;
};

TEST(Drive, SetsOutputAndControlCell) {
    const Request rows[] = {
        {"inout, off by 0", "inout", {INPUT, OUTPUT3}, SIG_1, 0, "Z1/1"},
        {"inout, off by 1", "inout", {INPUT, OUTPUT3}, SIG_1, 0, "Z1/0", SIG_1},
        {"off by another value", "out", {OUTPUT3}, SIG_0, 0, "0/0", SIG_X},
        {"X counts as 0", "out", {OUTPUT3}, SIG_X, 0, "0/1"},
        {"WEAK1 counts as 0", "out", {OUTPUT3}, SIG_WEAK1, 0, "0/1"},
        {"first output cell", "out", {OUTPUT2, OUTPUT3}, SIG_1, 0, "1Z/1"},
        {"one BIDIR cell", "inout", {BIDIR}, SIG_1, 0, "1/1"},
        {"BIDIR_IN and BIDIR_OUT", "inout", {BIDIR_IN, BIDIR_OUT}, SIG_0, 0, "Z0/1"},
        {"inout without input cell", "inout", {OUTPUT3}, SIG_1, -1, "1/1"},
        {"observe cell takes no role", "inout", {OBSERVE_ONLY, OUTPUT3}, SIG_1, -1, "Z1/1"},
        {"no output cell", "in", {INPUT}, SIG_1, -1, "Z/Z"},
        {"no control cell", "out", {OUTPUT2}, SIG_1, -1, "Z/Z", SIG_0, SIG_Z, false},
        {"buffer", "buffer", {OUTPUT2}, SIG_1, 0, "1/1"},
        {"no cells", "out", {}, SIG_1, -1, "/Z"},
    };
    for (const Request& row : rows) {
        SCOPED_TRACE(row.name);
        Port port(row.mode, row.functions, row.off, row.shows, row.controlled);
        EXPECT_EQ(port.node.SetOutput(row.level), row.result);
        EXPECT_EQ(port.Values(), row.values);
    }
}

TEST(Receive, SetsInputCellAndTurnsTheDriverOff) {
    const Request rows[] = {
        {"in", "in", {INPUT}, SIG_1, 0, "1/Z"},
        {"X counts as 0", "in", {INPUT}, SIG_X, 0, "0/Z"},
        {"CLOCK takes no role", "in", {CLOCK}, SIG_1, -1, "Z/Z"},
        {"observe cell ends the walk",
         "in",
         {INPUT, OBSERVE_ONLY, OBSERVE_ONLY},
         SIG_1,
         0,
         "Z1Z/Z"},
        {"observe cell on inout", "inout", {INPUT, OUTPUT3, OBSERVE_ONLY}, SIG_0, 0, "ZZ0/Z"},
        {"inout", "inout", {INPUT, OUTPUT3}, SIG_1, 0, "10/0"},
        {"off by 1", "inout", {INPUT, OUTPUT3}, SIG_1, 0, "10/1", SIG_1},
        {"PULL1", "inout", {INPUT, OUTPUT3}, SIG_0, 0, "01/0", SIG_0, SIG_PULL1},
        {"WEAK1", "inout", {INPUT, OUTPUT3}, SIG_0, 0, "01/0", SIG_0, SIG_WEAK1},
        {"PULL0", "inout", {INPUT, OUTPUT3}, SIG_0, 0, "00/0", SIG_0, SIG_PULL0},
        {"one BIDIR cell", "inout", {BIDIR}, SIG_1, 0, "1/0", SIG_0, SIG_PULL1},
        {"second BIDIR cell", "inout", {BIDIR_IN, BIDIR}, SIG_1, 0, "10/0"},
        {"inout without control cell",
         "inout",
         {INPUT, OUTPUT3},
         SIG_1,
         -1,
         "1Z/Z",
         SIG_0,
         SIG_Z,
         false},
        {"inout without output cell", "inout", {INPUT}, SIG_1, -1, "1/Z"},
        {"no input cell", "out", {OUTPUT3}, SIG_1, -1, "Z/Z"},
        {"no cells", "in", {}, SIG_1, -1, "/Z"},
    };
    for (const Request& row : rows) {
        SCOPED_TRACE(row.name);
        Port port(row.mode, row.functions, row.off, row.shows, row.controlled);
        EXPECT_EQ(port.node.SetInput(row.level), row.result);
        EXPECT_EQ(port.Values(), row.values);
    }
}

TEST(Drive, ControlCellIsThatOfTheLastOutputCell) {
    Port port("out", {OUTPUT3, OUTPUT3});
    LBScanCell last;
    port.cells[1].SetControlCell(&last);
    EXPECT_EQ(port.node.SetOutput(SIG_1), 0);
    EXPECT_EQ(port.Values(), "1Z/Z");
    EXPECT_EQ(last.cellValue, SIG_1);
    port.cells[1].SetControlCell(nullptr);
    EXPECT_EQ(port.node.SetOutput(SIG_0), -1);
    EXPECT_EQ(port.Values(), "1Z/Z");
}

TEST(Dispatch, FollowsTheMode) {
    const struct {
        const char* mode;
        const char* received;  // null where the mode refuses to receive
        const char* driven;
    } rows[] = {{"in", "1/Z", nullptr},
                {"out", nullptr, "1/1"},
                {"buffer", nullptr, "1/1"},
                {"inout", "1/0", "1/1"}};
    for (const auto& row : rows) {
        const std::string mode = row.mode;
        const CellFunction function = mode == "in" ? INPUT : mode == "inout" ? BIDIR : OUTPUT2;
        for (int direction = PORT_IN - 1; direction <= PORT_NONE + 1; ++direction) {
            SCOPED_TRACE(mode + " towards " + std::to_string(direction));
            Port port(row.mode, {function});
            const char* const values = direction == PORT_IN    ? row.received
                                       : direction == PORT_OUT ? row.driven
                                                               : nullptr;
            EXPECT_EQ(port.node.SetBScanCell(static_cast<PortType>(direction), SIG_1),
                      values ? 0 : -1);
            EXPECT_EQ(port.Values(), values ? values : "Z/Z");
        }
    }
}

}  // namespace
}  // namespace bscan::test
