// The generic clause, the port clause, and the pairs that port groupings make of ports.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

TEST(GenericClause, NamesThePackage) {
    const std::pair<const char*, const char*> rows[] = {
        {"(PHYSICAL_PIN_MAP : string := \"PLCC44\");", "plcc44"},
        {"(PHYSICAL_PIN_MAP : string := \" Tq_144 \" );", "tq_144"},
        {"(A : string := \"X\"; PHYSICAL_PIN_MAP : string := \"Y\");", "x"},
        {"(PHYSICAL_PIN_MAP : string := \"\");", ""},
        {"(PHYSICAL_PIN_MAP : string := \"PLCC);", ""},
        {"(PHYSICAL_PIN_MAP : string);", ""},
        {"(PHYSICAL_PIN_MAP := ", "a"},
        {"(physical_pin_map : string := \"PLCC44\");", nullptr}};
    for (const auto& [text, package] : rows) {
        SCOPED_TRACE(text);
        BScanParser parser;
        EXPECT_EQ(parser.ReadGeneric(Stream("\"A\");\n"), Text(text)), kOk);
        EXPECT_STREQ(parser.GetPackageType(), package);
        EXPECT_NE(parser.GetPinMap(), nullptr);
        EXPECT_EQ(parser.ReadGeneric(Stream(""), Text("is generic (")), kReadFailed);
    }
}

TEST(PortDeclaration, AddsElementsInTheOrderWritten) {
    const std::pair<const char*, const char*> rows[] = {
        {"A , B,C : out bit;", "A:out:0 B:out:0 C:out:0"},
        {"A : buffer std_logic;", "A:buffer:0"},
        {"A : linkage bit;", "A:none:0"},
        {"A :in\tbit;", "A:in:0"},
        {"A : inout;", "A:none:0"},
        {"D : in bit_vector (0 to 3);", "D:in:0 D:in:1 D:in:2 D:in:3"},
        {"D : in bit_vector(3 downto 0);", "D:in:3 D:in:2 D:in:1 D:in:0"},
        {"D : in bit_vector (7 to 8);", "D:in:0 D:in:1"},
        {"A, B : out bit_vector (5 downto 4);", "A:out:1 A:out:0 B:out:1 B:out:0"},
        {"D : in bit_vector (0to3);", "D:in:0"},
        {"D : in bit_vector (0 3);", "D:in:0 D:in:1 D:in:2 D:in:3"},
        {"D : in bit_vector;", "D:in:0"},
        {"D : in BIT_VECTOR (0 to 3);", "D:in:0"},
        {"D : in bit_vector (-1 to 3);", ""},
        {"D : in bit_vector (0 to 1048576);", ""},
        {"D : in bit_vector (0 to 4294967297);", "D:in:0 D:in:1"},
        {" : in bit;", ""},
        {", : in bit;", ":in:0"},
        {"A, : in bit;", "A:in:0"},
        {"A,,B : in bit;", "A:in:0 :in:0 B:in:0"},
        {"", ""}};
    for (const auto& [declaration, ports] : rows) {
        SCOPED_TRACE(declaration);
        BScanParser parser;
        EXPECT_EQ(parser.CreatePort(Text(declaration)), kOk);
        ASSERT_NE(parser.GetPinMap(), nullptr);
        EXPECT_EQ(Ports(parser.GetPinMap()), ports);
    }
}

TEST(PortDeclaration, HasNoLimitBelowTheCeiling) {
    BScanPinMap map;
    map.AddNewPorts(Text("A"), Text("in"), kMaxPortElements - 1, true);
    map.AddNewPorts(Text("B"), Text("in"), 0, 1);
    map.AddNewPorts(Text("C"), Text("in"), 2, false);
    EXPECT_EQ(map.GetNumberOfPins(), kMaxPortElements - 1);
    map.AddNewPorts(Text("D"), Text("in"), 1, false);
    EXPECT_EQ(map.GetNumberOfPins(), kMaxPortElements);
}

TEST(PortClause, EndsWithItsLastParenthesis) {
    const Rows<const char*, int, const char*> rows = {
        {"port (TDI: in bit;\nTDO: out bit;\nD: inout bit_vector (0 to 1);\nTCK: in bit);\nX:Y "
         "Z;\n",
         kOk, "TDI:in:0 TDO:out:0 D:inout:0 D:inout:1 TCK:in:0"},
        {"port (\nA : in bit;\n);\n", kOk, "A:in:0"},
        {"port (\nA : in bit;\nB : out bit ) ;\n", kOk, "A:in:0 B:out:0"},
        {"port (TDI :\nin bit;\nTDO\n: out\nbit);\n", kOk, "TDI:in:0 TDO:none:0"},
        {"port (A: in bit; B: out bit);\nC : in bit;\n);\n", kOk, "A:in:0 C:in:0"},
        {"port (A: in bit; B: out bit);\nC : in bit;\n", kReadFailed, "A:in:0 C:in:0"},
        {"port (\nA : in bit();\nB : in bit);\n", kOk, "A:in:0 B:in:0"},
        {"port (, : in bit;\n, : in bit);\n", kOk, ":in:0 :in:0"},
        {"port A : in bit;\n);\n", kOk, "port A:in:0"},
        {"port (\nA : in bit;\nB : in", kEndOfFile, "A:in:0"}};
    for (const auto& [clause, result, ports] : rows) {
        SCOPED_TRACE(clause);
        const Stream stream(clause);
        BScanParser parser;
        Text line("");
        ASSERT_EQ(parser.GetLine(stream, line, nullptr), kOk);
        EXPECT_EQ(parser.ReadPort(stream, line), result);
        EXPECT_EQ(Ports(parser.GetPinMap()), ports);
    }
}

/// A parser with the ports of four pairs.
struct Grouping {
    Grouping() { parser.CreatePort(Text("A_P, A_N, B_P, B_N, C_P, C_N, d_p, d_n : inout bit;")); }
    int Read(const std::string& value, std::string_view rest = "") {
        return parser.ReadPortGroupingAttribute(Stream(rest), ("X is " + value).c_str());
    }
    std::string legs() const { return Legs(parser.GetPinMap()); }
    BScanParser parser;
};

// In a value "V" stands for "Differential_Voltage".
TEST(PortGrouping, RecordsPairsAndMarksPorts) {
    const Rows<std::string, int, const char*, const char*> rows = {
        {"V ((A_P, A_N), (B_P, B_N)), Differential_Current ((C_P, C_N))", kOk,
         "A_P/A_N@-1,-1 B_P/B_N@-1,-1 C_P/C_N@-1,-1", "+-+-+-.."},
        {"differential_voltage((a_p,a_n))", kOk, "A_P/A_N@-1,-1", "+-......"},
        {"DIFFERENTIAL_CURRENT ( ( D_P , D_N ) ) ", kOk, "D_P/D_N@-1,-1", "......+-"},
        {"V ((A_P, A_N),\" & \"(B_P, B_N))", kOk, "A_P/A_N@-1,-1 B_P/B_N@-1,-1", "+-+-...."},
        {"V ((A_P, NONE))", kOk, "A_P/NONE@-1,-1", "+......."},
        {"V ((A_P, A_N), (B_P, B_N(1)))", kOk, "A_P/A_N@-1,-1", "+-......"},
        {"V ((A_P, A_N, B_P))", kOk, "A_P/A_N, B_P@-1,-1", "+......."},
        {"V ((A_P(0), A_N(0)), (B_P, B_N))", kFailed, "", "........"},
        {"V (A_P), V ((B_P, B_N))", kOk, "B_P/B_N@-1,-1", "..+-...."},
        {"Single_Ended ((A_P, A_N))", kFailed, "", "........"},
        {"V ((A_P, A_N)), Single_Ended ((B_P, B_N))", kFailed, "A_P/A_N@-1,-1", "+-......"},
        {"V ((A_P, A_N)) x", kFailed, "", "........"},
        {"V ((A_P, A_N), (B_P))", kFailed, "A_P/A_N@-1,-1", "+-......"},
        {"V ((A_P, ))", kFailed, "", "........"},
        {"V ((A_P, A_N)", kFailed, "", "........"},
        {"", kFailed, "", "........"}};
    for (const auto& [written, result, pairs, legs] : rows) {
        SCOPED_TRACE(written);
        std::string value = written;
        while (value.find("V (") != value.npos) {
            value.replace(value.find("V ("), 1, "Differential_Voltage");
        }
        Grouping grouping;
        EXPECT_EQ(grouping.Read('"' + value + "\";"), result);
        EXPECT_EQ(Pairs(grouping.parser), pairs);
        EXPECT_EQ(grouping.legs(), legs);
    }
}

TEST(PortGrouping, AppendsToTheList) {
    Grouping grouping;
    EXPECT_EQ(grouping.Read("", "\"Differential_Voltage ((A_P,\"&-- comment\n\"A_N))\";\n"), kOk);
    EXPECT_EQ(grouping.Read("\"Differential_Voltage ((B_P, B_N))\";"), kOk);
    EXPECT_EQ(grouping.Read("\"Differential_Voltage (C_P)\";"), kOk) << "the list holds pairs";
    EXPECT_EQ(grouping.Read("\"Differential", ""), kReadFailed);
    EXPECT_EQ(Pairs(grouping.parser), "A_P/A_N@-1,-1 B_P/B_N@-1,-1");
    for (const int index : {-1, 2}) EXPECT_EQ(grouping.parser.GetDifferentialPair(index), nullptr);
    grouping.parser.ClearDifferentialPairList();
    EXPECT_EQ(Pairs(grouping.parser), "");
    EXPECT_EQ(grouping.legs(), "+-+-....");
    BScanParser parser;
    EXPECT_EQ(parser.ReadPortGroupingAttribute(Stream(""), "\"Differential_Voltage ((A, B))\";"),
              kFailed)
        << "there are no ports";
}

}  // namespace
}  // namespace bscan::test
