// Ports and the package pins that pin map strings bond them to.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

std::string WithPorts(std::string_view package, std::string_view statements) {
    return "entity X is\ngeneric (PHYSICAL_PIN_MAP : string := \"" + std::string(package) +
           "\");\nport (\nTDI : in bit;\nD : inout bit_vector (2 downto 0);\nd : in bit;\n);\n" +
           std::string(statements) + "\nend X;\n";
}

TEST(PinMap, GivesPortsTheirPins) {
    const struct {
        const char* name;
        const char* package;
        const char* statements;
        const char* pins;
    } rows[] = {
        {"numbers", "P", "constant P:PIN_MAP_STRING:=\n\"TDI : 3, D : (+5, 4x , 07)\";",
         "TDI=3/3 D=+5/5 D=4x/4 D=07/7 d=(null)/-1"},
        {"letters", "Bga64", "constant bGA64:PIN_MAP_STRING:=\n\"D:(A1,A2,B1),TDI:B2\";",
         "TDI=B2/2 D=A1/3 D=A2/1 D=B1/4 d=(null)/-1"},
        {"as written, not as numbered", "P",
         "constant P:PIN_MAP_STRING:=\n\"D:(A01,A1,a1), d:a1\";",
         "TDI=(null)/-1 D=A01/-13 D=A1/1 D=a1/2 d=a1/2"},
        {"another package", "Q", "constant P:PIN_MAP_STRING:=\n\"TDI:A1,D:(7A,A2,12)\";",
         "TDI=A1/0 D=7A/7 D=A2/0 D=12/12 d=(null)/-1"},
        {"every constant counts, the first numbers", "P",
         "constant P:PIN_MAP_STRING:=\n\"TDI:A1,d:B1\";\nconstant "
         "Q:PIN_MAP_STRING:=\n\"TDI:B1,D:C1\";",
         "TDI=B1/2 D=C1/-13 D=(null)/-1 D=(null)/-1 d=B1/2"},
        {"too many pins and unknown ports", "P",
         "constant P:PIN_MAP_STRING:=\n\"TDI:(1,2), X:3, D:(4,5,6,7), tdi:9\";",
         "TDI=1/1 D=4/4 D=5/5 D=6/6 d=(null)/-1"},
        {"an entry without a name is the former port's", "P",
         "constant P:PIN_MAP_STRING:=\n\"TDI:1,2\";",
         "TDI=2/2 D=(null)/-1 D=(null)/-1 D=(null)/-1 d=(null)/-1"},
        {"no comma behind a group", "P", "constant P:PIN_MAP_STRING:=\n\"D:(1,2,3) TDI:4\";",
         "TDI=4/4 D=1/1 D=2/2 D=3/3 d=(null)/-1"},
        {"group without end", "P", "constant P:PIN_MAP_STRING:=\n\"D:(1,2,3\";",
         "TDI=(null)/-1 D=1/1 D=2/2 D=3/3 d=(null)/-1"},
        {"white space", "P",
         "constant P:PIN_MAP_STRING:=\n\"D : ( 1 , 2 ,3 ) , d:4,\" &\n\" TDI :5 \";",
         "TDI=5/5 D=1/1 D=2/2 D=3/3 d=4/4"},
        {"white space in front is of the name", "P",
         "constant P:PIN_MAP_STRING:=\n\"\" &\n\"TDI:1\";",
         "TDI=(null)/-1 D=(null)/-1 D=(null)/-1 D=(null)/-1 d=(null)/-1"},
        {"attribute", "P", "attribute PIN_MAP_STRING of X : entity is\n\"TDI:8\";",
         "TDI=8/8 D=(null)/-1 D=(null)/-1 D=(null)/-1 d=(null)/-1"},
        {"constant of another type", "P", "constant P:PIN_MAP_STRINGS:=\n\"TDI:8\";",
         "TDI=(null)/-1 D=(null)/-1 D=(null)/-1 D=(null)/-1 d=(null)/-1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ReadDevice device(WithPorts(row.package, row.statements));
        EXPECT_EQ(device.result(), kOk);
        EXPECT_EQ(Pins(device.parser.GetPinMap()), row.pins);
    }
}

TEST(PinMap, FailureDoesNotEndTheReading) {
    BScanParser parser;
    parser.CreatePort(Text("TDI : in bit;"));
    const std::string_view cut = "\"TDI:1\" &\n";
    EXPECT_EQ(parser.ReadBSCANPinMap(Stream(cut), "constant P:PIN_MAP_STRING:="), kReadFailed);
    EXPECT_EQ(parser.ReadConstant(Stream(cut), "constant P:PIN_MAP_STRING:="), kOk);
    EXPECT_EQ(parser.ReadConstant(Stream(cut), "constant P"), kReadFailed);
    EXPECT_EQ(Pins(parser.GetPinMap()), "TDI=(null)/-1");
    ReadDevice early("entity X is\n;\nconstant P:PIN_MAP_STRING:=\n\"TDI:1\";\nend X;\n");
    EXPECT_EQ(early.result(), kOk);
    EXPECT_EQ(early.parser.GetPinMap(), nullptr);
}

TEST(PinNumber, IsThatOfTheSelectedPackage) {
    BScanParser parser;
    EXPECT_EQ(parser.MapPinNametoPinNumber(nullptr), kNoPinName);
    EXPECT_EQ(parser.MapPinNametoPinNumber(" -12x"), -12);
    EXPECT_EQ(parser.MapPinNametoPinNumber("A1"), 0);
    EXPECT_EQ(parser.MapPinNametoPinNumber(""), 0);
    EXPECT_EQ(parser.MapPinNametoPinNumber("4294967297"), 1);
    const TempDir directory;
    ASSERT_EQ(parser.ReadPackageDB(Text(
                  directory.Write("p.bsd", "constant P:PIN_MAP_STRING:=\n\"X:(A1,A2,B1,B2)\";\n"))),
              kOk);
    EXPECT_EQ(parser.MapPinNametoPinNumber("B2"), 0) << "no package is selected";
    parser.SetPackageType(Text("P"));
    EXPECT_EQ(parser.MapPinNametoPinNumber("B2"), 0) << "the map's name is in lower case";
    parser.SetPackageType(Text("p"));
    EXPECT_EQ(parser.MapPinNametoPinNumber("B2"), 2);
    EXPECT_EQ(parser.MapPinNametoPinNumber("B1"), 4);
    EXPECT_EQ(parser.MapPinNametoPinNumber("b1"), kUnknownPin);
    EXPECT_EQ(parser.MapPinNametoPinNumber(""), kUnknownPin);
    EXPECT_EQ(parser.MapPinNametoPinNumber(nullptr), kNoPinName);
    parser.SetPackageType(Text("q"));
    EXPECT_EQ(parser.MapPinNametoPinNumber("12"), 12);
}

}  // namespace
}  // namespace bscan::test
