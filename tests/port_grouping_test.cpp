// Differential pairs and their marks on the ports.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

/// A parser with the ports of four pairs.
struct Grouping {
    Grouping() { parser.CreatePort(Text("A_P, A_N, B_P, B_N, C_P, C_N, d_p, d_n : inout bit;")); }
    int Read(std::string_view value, std::string_view rest = "") {
        const Stream stream(rest);
        return parser.ReadPortGroupingAttribute(
            stream, ("attribute PORT_GROUPING of X : entity is " + std::string(value)).c_str());
    }
    std::string Marks() {
        std::string marks;
        for (int i = 0; i < parser.GetPinMap()->GetNumberOfPins(); ++i) {
            const auto& node =
                *static_cast<LPinNode*>(parser.GetPinMap()->GetPinListArray()->GetAt(i));
            marks += node.IsPositive() ? '+' : node.IsNegative() ? '-' : '.';
        }
        return marks;
    }
    BScanParser parser;
};

TEST(PortGrouping, RecordsPairsAndMarksPorts) {
    const struct {
        const char* value;
        int result;
        const char* pairs;
        const char* marks;
    } rows[] = {
        {"Differential_Voltage ((A_P, A_N), (B_P, B_N)), Differential_Current ((C_P, C_N))", kOk,
         "A_P/A_N@-1,-1 B_P/B_N@-1,-1 C_P/C_N@-1,-1", "+-+-+-.."},
        {"differential_voltage((a_p,a_n))", kOk, "A_P/A_N@-1,-1", "+-......"},
        {"DIFFERENTIAL_CURRENT ( ( D_P , D_N ) ) ", kOk, "D_P/D_N@-1,-1", "......+-"},
        {"Differential_Voltage ((A_P, A_N),\" & \"(B_P, B_N))", kOk, "A_P/A_N@-1,-1 B_P/B_N@-1,-1",
         "+-+-...."},
        {"Differential_Voltage ((A_P, NONE))", kOk, "A_P/NONE@-1,-1", "+......."},
        {"Differential_Voltage ((none, other))", kOk, "NONE/OTHER@-1,-1", "........"},
        {"Differential_Voltage ((A_P, A_N)), behind", kOk, "A_P/A_N@-1,-1", "+-......"},
        {"Differential_Voltage ((A_P, A_N), (B_P, B_N(1)))", kOk, "A_P/A_N@-1,-1", "+-......"},
        {"Differential_Voltage ((A_P, A_N, B_P))", kOk, "A_P/A_N, B_P@-1,-1", "+......."},
        {"Differential_Voltage ((A_P(0), A_N(0)), (B_P, B_N))", kFailed, "", "........"},
        {"Differential_Voltage (A_P, A_N)", kFailed, "", "........"},
        {"Differential_Voltage (A_P), Differential_Voltage ((B_P, B_N))", kOk, "B_P/B_N@-1,-1",
         "..+-...."},
        {"Single_Ended ((A_P, A_N))", kFailed, "", "........"},
        {"Differential_Voltage ((A_P, A_N)), Single_Ended ((B_P, B_N))", kFailed, "A_P/A_N@-1,-1",
         "+-......"},
        {"Differential_Voltage ((A_P, A_N) (B_P, B_N))", kFailed, "", "........"},
        {"Differential_Voltage ((A_P, A_N), (B_P, B_N) x)", kFailed, "A_P/A_N@-1,-1", "+-......"},
        {"Differential_Voltage ((A_P, A_N)) x", kFailed, "", "........"},
        {"Differential_Voltage ((A_P, A_N), (B_P))", kFailed, "A_P/A_N@-1,-1", "+-......"},
        {"Differential_Voltage ((A_P, ))", kFailed, "", "........"},
        {"Differential_Voltage (( , A_N))", kFailed, "", "........"},
        {"Differential_Voltage ((A_P, A_N)", kFailed, "", "........"},
        {"Differential_Voltage", kFailed, "", "........"},
        {")Differential_Voltage(", kFailed, "", "........"},
        {"((A_P, A_N))", kFailed, "", "........"},
        {"", kFailed, "", "........"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        Grouping grouping;
        EXPECT_EQ(grouping.Read('"' + std::string(row.value) + "\";"), row.result);
        EXPECT_EQ(Pairs(grouping.parser), row.pairs);
        EXPECT_EQ(grouping.Marks(), row.marks);
    }
}

TEST(PortGrouping, AppendsToTheList) {
    Grouping grouping;
    EXPECT_EQ(grouping.Read("", "\"Differential_Voltage ((A_P,\"&-- comment\n\"A_N))\";\n"), kOk);
    EXPECT_EQ(grouping.Read("\"Differential_Voltage ((B_P, B_N))\";"), kOk);
    EXPECT_EQ(grouping.Read("\"Differential_Voltage (C_P)\";"), kOk) << "the list holds pairs";
    EXPECT_EQ(grouping.Read("\"Differential", ""), kReadFailed);
    EXPECT_EQ(Pairs(grouping.parser), "A_P/A_N@-1,-1 B_P/B_N@-1,-1");
    EXPECT_EQ(grouping.parser.GetDifferentialPairCount(), 2);
    EXPECT_STREQ(grouping.parser.GetDifferentialPair(1)->GetPositiveElement(), "B_P");
    EXPECT_EQ(grouping.parser.GetDifferentialPair(2), nullptr);
    EXPECT_EQ(grouping.parser.GetDifferentialPair(-1), nullptr);
    grouping.parser.ClearDifferentialPairList();
    EXPECT_EQ(grouping.parser.GetDifferentialPairCount(), 0);
    EXPECT_EQ(grouping.parser.GetDifferentialPair(0), nullptr);
    EXPECT_EQ(grouping.Marks(), "+-+-....");
}

TEST(PortGrouping, NeedsADevice) {
    BScanParser parser;
    const Stream stream("");
    EXPECT_EQ(parser.ReadPortGroupingAttribute(stream, "is \"Differential_Voltage ((A, B))\";"),
              kFailed);
    EXPECT_EQ(parser.GetDifferentialPairCount(), 0);
}

}  // namespace
}  // namespace bscan::test
