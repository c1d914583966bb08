// The cells of differential pairs, completed behind a boundary register.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

/// A device of ten cells: P and N, Q and M are pairs of "inout" ports, S is a single port.
std::string WithPairs(std::string_view pairs, std::string_view value) {
    return Entity(
        "port (\nP, N, q, m, S : inout bit);\n"
        "attribute BOUNDARY_LENGTH of X : entity is 10;\n"
        "attribute PORT_GROUPING of X : entity is\n\"Differential_Voltage (" +
        std::string(pairs) + ")\";\nattribute BOUNDARY_REGISTER of X : entity is\n" +
        std::string(value));
}

constexpr const char* kPositive =
    "\"0 (BC_1, P, input, 0),1 (BC_2, P, output3, 1, 2, 1, PULL1),2 (BC_3, *, control, 1),\" &\n";

TEST(DifferentialCompletion, GivesTheNegativePortTheCellsOfThePositive) {
    ReadDevice device(WithPairs("(Q, M)",
                                "\"0 (BC_2, q, output3, 1, 1, 1, PULL1),\" &\n"
                                "\"1 (BC_3, *, control, 1),\" &-- pad\n"
                                "\"2 (BC_1, S, input, X),\" &\n"
                                "\"3 (BC_1, *, internal, 0),\" &\n"
                                "\"4 (BC_1, *, internal, 0),\" &-- m\n\"\";"));
    EXPECT_EQ(device.result(), kOk);
    BScanPinMap& map = device.map();
    EXPECT_EQ(Pairs(device.parser), "Q/M@0,4");
    EXPECT_EQ(Describe(*map.GetBScanCell(0)),
              "BC_2 OUTPUT3 [Q] [] safe 1 value 1 port Q:0 control 1 off 1 shows PULL1");
    EXPECT_EQ(Describe(*map.GetBScanCell(4)),
              "BC_2 OUTPUT3 [M] [M] safe 1 value 1 port M:0 control 3 off 1 shows PULL1");
    EXPECT_EQ(Describe(*map.GetBScanCell(3)), "BC_3 CONTROL [] [pad] safe 1 value 1");
    EXPECT_EQ(CellsOf(map.GetPortwName(Text("M"))), "4");
    EXPECT_EQ(map.GetBScanBitArray()[0], 0xC0) << "the completion leaves the bits";
    EXPECT_TRUE(map.GetPortwName(Text("Q"))->IsPositive());
    EXPECT_TRUE(map.GetPortwName(Text("M"))->IsNegative());
    EXPECT_EQ(FindFault(device.parser), "");
}

TEST(DifferentialCompletion, PassesOverOrGivesUp) {
    const struct {
        const char* name;
        const char* pairs;
        std::string value;
        int result;
        const char* completed;
        bool marked;  // whether P is still the positive leg
    } rows[] = {
        {"positive cell at the lowest position has no control cell", "(P,N)",
         kPositive + std::string("\"5 (BC_1, *, internal, 0),\" & -- N\n\"\";"), kOk, "P/N@-1,-1",
         true},
        {"no positive cell", "(N,P),(Q,M)", "\"5 (BC_1, *, internal, 0),\" & -- P\n\"\";", kOk,
         "N/P@-1,-1 Q/M@-1,-1", false},
        {"negative cell at position 0", "(P,N)",
         "\"0 (BC_1, *, internal, 0),\" &-- n\n\"1 (BC_2, P, output3, 1, 2, 1, Z)\";", kOk,
         "P/N@-1,-1", true},
        {"negative name of no port", "(P,none)",
         "\"1 (BC_2, P, output3, 1, 2, 1, Z),3 (BC_1, *, internal, 0),\" &-- NONE\n\"\";", kOk,
         "P/NONE@-1,-1", true},
        {"no negative cell", "(P,N)", "\"1 (BC_2, P, output3, 1, 2, 1, Z)\";", kOk, "", false},
        {"no negative cell for the second", "(P,N),(Q,M)",
         "\"1 (BC_2, P, output3, 1, 2, 1, Z),5 (BC_1, *, internal, 0),\" & --N\n"
         "\"6 (BC_2, q, output3, 1, 2, 1, Z)\";",
         kOk, "", false},
        {"second of two", "(S,N),(P,M)",
         "\"1 (BC_2, P, output3, 1, 2, 1, Z),5 (BC_1, *, internal, 0),\" & --M\n\"\";", kOk,
         "S/N@-1,-1 P/M@1,5", true},
        {"a failing entry does not prevent it", "(P,N)",
         "\"1 (BC_2, P, output3, 1, 2, 1, Z),5 (BC_1, *, internal, 0),\" & --N\n\"99 (a,*,b,0)\";",
         kFailed, "P/N@1,5", true},
        {"a value that cannot be cut does", "(P,N)",
         "\"1 (BC_2, P, output3, 1, 2, 1, Z),5 (BC_1, *, internal, 0),\" & --N\n\"1 (a))\";",
         kBadValue, "P/N@-1,-1", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ReadDevice device(WithPairs(row.pairs, row.value));
        EXPECT_EQ(device.result(), row.result);
        EXPECT_EQ(Pairs(device.parser), row.completed);
        EXPECT_EQ(device.map().GetPortwName(Text("P"))->IsPositive(), row.marked);
    }
}

TEST(DifferentialCompletion, FailureKeepsWhatEarlierPairsGot) {
    ReadDevice device(
        WithPairs("(P,N),(Q,M)",
                  "\"1 (BC_2, P, output3, 1, 2, 1, Z),5 (BC_1, *, internal, 0),\" & --N\n"
                  "\"6 (BC_2, q, output3, 1, 2, 1, Z)\";"));
    EXPECT_EQ(device.parser.GetDifferentialPairCount(), 0);
    for (int i = 0; i < device.map().GetNumberOfPins(); ++i) {
        const auto& node = *static_cast<LPinNode*>(device.map().GetPinListArray()->GetAt(i));
        EXPECT_FALSE(node.IsPositive() || node.IsNegative()) << i;
    }
    EXPECT_EQ(CellsOf(device.map().GetPortwName(Text("N"))), "5");
    EXPECT_EQ(Describe(*device.map().GetBScanCell(5)),
              "BC_2 OUTPUT3 [N] [N] safe 1 value 1 port N:0 control 4 off 1 shows Z");
}

TEST(DifferentialCompletion, TakesThePairsReadSoFar) {
    ReadDevice device(
        Entity("port (\nP, N : inout bit);\n"
               "attribute BOUNDARY_LENGTH of X : entity is 4;\n"
               "attribute BOUNDARY_REGISTER of X : entity is\n"
               "\"0 (BC_2, P, output3, 1, 1, 1, Z),3 (BC_1, *, internal, 0),\"& --N\n"
               "\"1 (BC_1, *, control, 1)\";\n"
               "attribute PORT_GROUPING of X : entity is\n"
               "\"Differential_Current ((P, N))\";"));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(Pairs(device.parser), "P/N@-1,-1");
    EXPECT_EQ(Describe(*device.map().GetBScanCell(3)), "BC_1 INTERNAL [] [N] safe 0 value 0");
}

}  // namespace
}  // namespace bscan::test
