// The generic clause and the port clause.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

TEST(GenericClause, NamesThePackage) {
    const struct {
        const char* text;
        const char* package;
    } rows[] = {
        {"is generic (PHYSICAL_PIN_MAP : string := \"PLCC44\");", "plcc44"},
        {"is generic (PHYSICAL_PIN_MAP : string := \" Tq_144 \" );", "tq_144"},
        {"is generic (A : string := \"X\"; PHYSICAL_PIN_MAP : string := \"Y\");", "x"},
        {"is generic (PHYSICAL_PIN_MAP : string := \"\");", ""},
        {"is generic (PHYSICAL_PIN_MAP : string := \"PLCC);", ""},
        {"is generic (PHYSICAL_PIN_MAP : string);", ""},
        {"is generic (physical_pin_map : string := \"PLCC44\");", nullptr},
        {"is generic (WIDTH : integer := 8);", nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        BScanParser parser;
        const Stream stream("");
        EXPECT_EQ(parser.ReadGeneric(stream, Text(row.text)), kOk);
        EXPECT_STREQ(parser.GetPackageType(), row.package);
        EXPECT_NE(parser.GetPinMap(), nullptr);
    }
    BScanParser parser;
    const Stream stream("\"A\");\n");
    EXPECT_EQ(parser.ReadGeneric(stream, Text("is generic (PHYSICAL_PIN_MAP := ")), kOk);
    EXPECT_STREQ(parser.GetPackageType(), "a");
    EXPECT_EQ(parser.ReadGeneric(stream, Text("is generic (")), kReadFailed);
}

TEST(PortDeclaration, AddsElementsInTheOrderWritten) {
    const struct {
        const char* declaration;
        const char* ports;
    } rows[] = {
        {"TDI: in bit;", "TDI:in:0"},
        {"A , B,C : out bit;", "A:out:0 B:out:0 C:out:0"},
        {"A : inout bit;", "A:inout:0"},
        {"A : buffer std_logic;", "A:buffer:0"},
        {"A : linkage bit;", "A:none:0"},
        {"A : IN bit;", "A:none:0"},
        {"A :in\tbit;", "A:in:0"},
        {"A : inout;", "A:none:0"},
        {"D : in bit_vector (0 to 3);", "D:in:0 D:in:1 D:in:2 D:in:3"},
        {"D : in bit_vector(3 downto 0);", "D:in:3 D:in:2 D:in:1 D:in:0"},
        {"D : in bit_vector ( 4 DOWNTO  1 );", "D:in:3 D:in:2 D:in:1 D:in:0"},
        {"D : in bit_vector (7 to 8);", "D:in:0 D:in:1"},
        {"A, B : out bit_vector (5 downto 4);", "A:out:1 A:out:0 B:out:1 B:out:0"},
        {"D : in bit_vector (0to3);", "D:in:0"},
        {"D : in bit_vector (0 3);", "D:in:0 D:in:1 D:in:2 D:in:3"},
        {"D : in bit_vector;", "D:in:0"},
        {"D : in bit_vector (x to y);", "D:in:0"},
        {"D : in BIT_VECTOR (0 to 3);", "D:in:0"},
        {"D : in bit_vector (-1 to 3);", ""},
        {"D : in bit_vector (0 to 1048576);", ""},
        {"D : in bit_vector (2147483647 downto 0);", ""},
        {"D : in bit_vector (0 to 4294967297);", "D:in:0 D:in:1"},
        {"no colon in bit;", ""},
        {" : in bit;", ""},
        {"A, : in bit;", "A:in:0"},
        {"A,,B : in bit;", "A:in:0 :in:0 B:in:0"},
        {",A : in bit;", ":in:0 A:in:0"},
        {"", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.declaration);
        BScanParser parser;
        EXPECT_EQ(parser.CreatePort(Text(row.declaration)), kOk);
        ASSERT_NE(parser.GetPinMap(), nullptr);
        EXPECT_EQ(Ports(parser.GetPinMap()), row.ports);
    }
}

TEST(PortDeclaration, KeepsTheNameListOfInoutPorts) {
    BScanParser parser;
    parser.CreatePort(Text("A, B : inout bit_vector (7 downto 4);"));
    parser.CreatePort(Text("C : in bit;"));
    parser.CreatePort(Text("D : InOut bit;"));
    ASSERT_EQ(parser.GetPinMap()->GetIOTypeCount(), 2);
    EXPECT_STREQ(parser.GetPinMap()->GetIOName(0), "A, B");
    EXPECT_STREQ(parser.GetPinMap()->GetIOName(1), "D");
    EXPECT_EQ(parser.GetPinMap()->GetIOName(2), nullptr);
    EXPECT_EQ(parser.GetPinMap()->GetIOName(-1), nullptr);
}

TEST(PortDeclaration, HasNoLimitBelowTheCeiling) {
    std::string names;
    for (int i = 0; i < 3000; ++i) names += "PORT_" + std::to_string(i) + ", ";
    BScanParser parser;
    parser.CreatePort(Text(names + "LAST : in bit;"));
    EXPECT_EQ(parser.GetPinMap()->GetNumberOfPins(), 3001);
    EXPECT_NE(parser.GetPinMap()->GetPortwName(Text("PORT_2999")), nullptr);

    BScanPinMap map;
    map.AddNewPorts(Text("A"), Text("in"), kMaxPortElements - 1, true);
    map.AddNewPorts(Text("B"), Text("in"), 0, 1);
    map.AddNewPorts(Text("C"), Text("in"), 2, false);
    EXPECT_EQ(map.GetNumberOfPins(), kMaxPortElements - 1);
    map.AddNewPorts(Text("D"), Text("in"), 1, false);
    EXPECT_EQ(map.GetNumberOfPins(), kMaxPortElements);
}

TEST(PortClause, EndsWithItsLastParenthesis) {
    const struct {
        const char* name;
        const char* clause;
        int result;
        const char* ports;
    } rows[] = {
        {"declarations on their lines",
         "port (TDI: in bit;\nTDO: out bit;\nD: inout bit_vector (0 to 1);\nTCK: in bit);\nX:Y "
         "Z;\n",
         kOk, "TDI:in:0 TDO:out:0 D:inout:0 D:inout:1 TCK:in:0"},
        {"end on its own line", "port (\nA : in bit;\n);\n", kOk, "A:in:0"},
        {"end with a blank", "port(\nA : in bit;\n) ;\n", kOk, "A:in:0"},
        {"end behind a range", "port (\nD : in bit_vector (1 downto 0) );\n", kOk, "D:in:1 D:in:0"},
        {"parenthesis with a blank", "port (\nA : in bit;\nB : out bit ) ;\n", kOk,
         "A:in:0 B:out:0"},
        {"declaration over lines", "port (TDI :\nin bit;\nTDO\n: out\nbit);\n", kOk,
         "TDI:in:0 TDO:none:0"},
        {"one port", "port (A : in bit);\nB : in bit);\n", kOk, "A:in:0 B:in:0"},
        {"one line", "port (TDI: in bit; TDO: out bit);\nA : in bit;\n);\n", kOk,
         "TDI:in:0 A:in:0"},
        {"one line without another end", "port (TDI: in bit; TDO: out bit);\nA : in bit;\n",
         kReadFailed, "TDI:in:0 A:in:0"},
        {"empty parentheses", "port (\nA : in bit();\nB : in bit);\n", kOk, "A:in:0 B:in:0"},
        {"without a parenthesis", "port A : in bit;\n);\n", kOk, "port A:in:0"},
        {"cut", "port (\nA : in bit;\nB : in", kEndOfFile, "A:in:0"},
        {"nothing behind", "port (\n", kReadFailed, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Stream stream(row.clause);
        BScanParser parser;
        char line[1024];
        ASSERT_EQ(parser.GetLine(stream, line, nullptr), kOk);
        EXPECT_EQ(parser.ReadPort(stream, line), row.result);
        EXPECT_EQ(Ports(parser.GetPinMap()), row.ports);
    }
}

}  // namespace
}  // namespace bscan::test
