// Package pins, their numbers, and the ports that pin map strings bond to them.

#include <bscan/pin_order.h>

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

TEST(PinOrder, PutsShorterStringsAndLargerNumbersFirst) {
    const std::pair<std::string, std::string> strings[] = {
        {"B", "AA"}, {"AB", "AC"}, {"", "A"}, {"A", "\xC4"}};  // bytes count as unsigned
    for (const auto& [first, second] : strings) {
        // By its name, as a global operator< is hidden here by those of this namespace.
        EXPECT_TRUE(::operator<(first, second)) << first;
        EXPECT_FALSE(::operator<(second, first)) << first;
        EXPECT_FALSE(::operator<(first, first)) << first;
    }
    const std::pair<PIN_NAME, PIN_NAME> pins[] = {{{"A", 12}, {"A", 3}}, {{"B", 5}, {"AA", 5}},
                                                  {{"A", 5}, {"B", 5}},  {{"ZZ", 65535}, {"", 0}},
                                                  {{"", 5}, {"A", 5}},   {{"A", 5}, {"a", 5}}};
    for (const auto& [first, second] : pins) {
        EXPECT_TRUE(pin_smaller(first, second)) << first.letters;
        EXPECT_FALSE(pin_smaller(second, first)) << first.letters;
    }
}

std::string PackagePins(const BScanParser& parser) {
    if (parser.GetPackageMapCount() == 0) return "none";
    const PackagePinMap& map = *parser.GetPackageMap(0);
    std::string pins = map.GetPackageName() + std::string(":");
    for (int i = 0; i < map.GetNumberOfPins(); ++i) pins += std::string(" ") + map.GetPin(i);
    return pins;
}

/// What the package pass makes of a text; a number where it fails.
std::string PassOver(const std::string& text) {
    const TempDir directory;
    BScanParser parser;
    const int result = parser.ReadPackageDB(Text(directory.Write("p.bsd", text)));
    EXPECT_EQ(fptrBSDL, nullptr);
    return result == kOk ? PackagePins(parser) : std::to_string(result) + PackagePins(parser);
}

TEST(PackagePass, NumbersLetteredPins) {
    const std::pair<std::string, const char*> rows[] = {
        {"X : (B1, A1, B2, A2)", "pkg: A2 B2 A1 B1"},
        {"TDI : 1, TDO : A2", "none"},
        {"A : B2, C : 7, D : (2, AB2)", "pkg: 7 2 B2 AB2"},
        {"A : (A1, B1, A1)", "pkg: A1 B1"},
        {"A : (ABCDEG1, ABCDEF1, Z1, ABCDEG1)", "pkg: Z1 ABCDEF1 ABCDEG1"},
        {"A : (A3, B12, AA12, a12, B3, C3)", "pkg: B12 a12 AA12 A3 B3 C3"},
        {"A : (a01, A1, 1A, A-1)", "pkg: A1 a1"},
        {"A : (A65537, A65535, B99999999999999999999)", "pkg: A65535 B65535 A1"},
        {"D : (A1, A2", "pkg: A2 A1"},
        {"D : (A1,,A2)", "pkg: A2 A1"},
        {"A1, B2", "pkg: B2 A1"},
        {"X : , Y : ()", "none"},
        {"", "none"}};
    for (const auto& [value, pins] : rows) {
        SCOPED_TRACE(value);
        EXPECT_EQ(PassOver("constant PKG : PIN_MAP_STRING :=\n\"" + value + "\";\n"), pins);
    }
}

TEST(PackagePass, TakesTheFirstPinMapConstant) {
    const std::pair<const char*, const char*> rows[] = {
        {"entity X is\nend X;\n", "none"},
        {"", "none"},
        {"constant BGA_1:PIN_MAP_STRING:=\n\"X:A1\";\nconstant B:PIN_MAP_STRING:=\n\"X:B1\";\n",
         "bga_1: A1"},
        {"constant A : STRING := \"X\";\nconstant B : PIN_MAP_STRING := \"X:B1\";\n", "b: B1"},
        {"constant MY_PIN_MAP_STRING_2 : PIN_MAP_STRING := \"X:A1\";\n"
         "constant B : PIN_MAP_STRING := \"X:B1\";\n",
         "b: B1"},
        {"constant A : PIN_MAP_STRING := \"X:1\";\nconstant B : PIN_MAP_STRING := \"X:B1\";\n",
         "none"},
        {"constant A : PIN_MAP_STRING := \"X:A1,\" &\n\"Y:A2,\" & -- comment\n\"Z:A3\";\n",
         "a: A3 A2 A1"},
        {"constant A :\nPIN_MAP_STRING :=\n\"X:A1\";\n", "a: A1"},
        {"constant A :\nPIN_MAP_STRING := \"X:A1\" &\n\"Y:A2\";\n", "a: A2"},
        {"constant A : PIN_MAP_STRING\n", "-3none"},
        {"constant A : PIN_MAP_STRING :=\n\"X:A1\" &\n", "-3none"}};
    for (const auto& [text, pins] : rows) EXPECT_EQ(PassOver(text), pins) << text;
}

TEST(PackagePass, AddsToTheDesignatorsOfAFormerOne) {
    const TempDir directory;
    BScanParser parser;
    EXPECT_EQ(parser.ReadPackageDB(Text(directory.Path("absent"))), kCannotOpen);
    for (const char* text : {"constant A : PIN_MAP_STRING := \"X:(A1,B9)\";\n",
                             "constant B : PIN_MAP_STRING := \"X:C5\";\n", "no constant\n"})
        EXPECT_EQ(parser.ReadPackageDB(Text(directory.Write("p.bsd", text))), kOk);
    EXPECT_EQ(parser.GetPackageMapCount(), 1);
    EXPECT_EQ(PackagePins(parser), "b: B9 C5 A1");
}

// The ports are TDI, D[2..0] and d; a row gives their pins.
TEST(PinMap, GivesPortsTheirPins) {
    const Rows<const char*, const char*, const char*> rows = {
        {"P", "constant P:PIN_MAP_STRING:=\n\"TDI : 3, D : (+5, 4x , 07)\";",
         "3/3 +5/5 4x/4 07/7 -"},
        {"Bga64", "constant bGA64:PIN_MAP_STRING:=\n\"D:(A1,A2,B1),TDI:B2\";",
         "B2/2 A1/3 A2/1 B1/4 -"},
        // Pins are found as written, not as numbered.
        {"P", "constant P:PIN_MAP_STRING:=\n\"D:(A01,A1,a1), d:a1\";", "- A01/-13 A1/1 a1/2 a1/2"},
        {"Q", "constant P:PIN_MAP_STRING:=\n\"TDI:A1,D:(7A,A2,12)\";", "A1/0 7A/7 A2/0 12/12 -"},
        // Pins of a port that there is not, or beyond one, count for the others.
        {"P", "constant P:PIN_MAP_STRING:=\n\"X:(B1,B2),TDI:(A2,A1),D:(A1,B2,B1,A3),d:A2\";",
         "A2/2 A1/4 B2/3 B1/5 A2/2"},
        // Every constant counts, the first one numbers.
        {"P",
         "constant P:PIN_MAP_STRING:=\n\"TDI:A1,d:B1\";\n"
         "constant Q:PIN_MAP_STRING:=\n\"TDI:B1,D:C1\";",
         "B1/2 C1/-13 - - B1/2"},
        {"P", "constant P:PIN_MAP_STRING:=\n\"TDI:(1,2), X:3, D:(4,5,6,7), tdi:9\";",
         "1/1 4/4 5/5 6/6 -"},
        {"P", "constant P:PIN_MAP_STRING:=\n\"TDI:1,2,d:3\";", "1/1 - - - -"},
        {"P", "constant P:PIN_MAP_STRING:=\n\"D:(1,2,3) TDI:4\";", "4/4 1/1 2/2 3/3 -"},
        {"P", "constant P:PIN_MAP_STRING:=\n\"D:(1,2,3\";", "- 1/1 2/2 3/3 -"},
        {"P", "constant P:PIN_MAP_STRING:=\n\"D : ( 1 , 2 ,3 ) , d:4,\" &\n\" TDI :5 \";",
         "5/5 1/1 2/2 3/3 4/4"},
        // White space in front is of the name.
        {"P", "constant P:PIN_MAP_STRING:=\n\"\" &\n\"TDI:1\";", "- - - - -"},
        {"P", "attribute PIN_MAP_STRING of X : entity is\n\"TDI:8\";", "8/8 - - - -"}};
    for (const auto& [package, statements, bonded] : rows) {
        SCOPED_TRACE(statements);
        ReadDevice device(std::string("entity X is\ngeneric (PHYSICAL_PIN_MAP : string := \"") +
                          package + "\");\nport (\nTDI : in bit;\n" +
                          "D : inout bit_vector (2 downto 0);\nd : in bit;\n);\n" + statements +
                          "\nend X;\n");
        EXPECT_EQ(device.result(), kOk);
        std::string pins;
        for (int i = 0; i < device.map().GetNumberOfPins(); ++i) {
            const LPinNode& node = *NodeAt(device.map(), i);
            const char* const pin = PinName(node);
            pins += pin ? pin + ('/' + std::to_string(node.GetPinNumber())) + ' ' : "- ";
        }
        EXPECT_EQ(pins, bonded + std::string(" "));
    }
}

TEST(PinMap, FailureDoesNotEndTheReading) {
    BScanParser parser;
    parser.CreatePort(Text("TDI : in bit;"));
    const std::string_view cut = "\"TDI:1\" &\n";
    EXPECT_EQ(parser.ReadBSCANPinMap(Stream(cut), "constant P:PIN_MAP_STRING:="), kReadFailed);
    EXPECT_EQ(parser.ReadConstant(Stream(cut), "constant P:PIN_MAP_STRING:="), kOk);
    EXPECT_EQ(parser.ReadConstant(Stream(cut), "constant P"), kReadFailed);
    EXPECT_EQ(parser.ReadAttribute(Stream(cut), "attribute PIN_MAP_STRING of X : entity is "), kOk);
    EXPECT_EQ(Pins(parser.GetPinMap()), "TDI=(null)/-1");
    ReadDevice early("entity X is\n;\nconstant P:PIN_MAP_STRING:=\n\"TDI:1\";\nend X;\n");
    EXPECT_EQ(early.result(), kOk);
    EXPECT_EQ(early.parser.GetPinMap(), nullptr);
}

TEST(PinNumber, IsThatOfTheSelectedPackage) {
    const TempDir directory;
    const std::string file =
        directory.Write("p.bsd", "constant P:PIN_MAP_STRING:=\n\"X:(A1,A2,B1,B2)\";\n");
    const Rows<const char*, const char*, int> rows = {
        {nullptr, nullptr, kNoPinName},
        {nullptr, " \v\f+12x", 12},
        {nullptr, " -12x", -12},
        {nullptr, "--7", 0},
        {nullptr, "2147483648", INT_MIN},
        {nullptr, "9223372036854775806", -2},
        {nullptr, "99999999999999999999999999", -1},
        {nullptr, "-9223372036854775807", 1},
        {nullptr, "-99999999999999999999999999", 0},
        {nullptr, "B2", 0},  // no package is selected
        {"P", "B2", 0},      // the map's name is in lower case
        {"p", "A2", 1},
        {"p", "B2", 2},
        {"p", "A3", kUnknownPin},
        {"p", "A02", kUnknownPin},  // not spelled as in the map
        {"p", "C0", kUnknownPin},
        {"p", "B1", 4},
        {"p", "b1", kUnknownPin},
        {"p", "", kUnknownPin},
        {"p", nullptr, kNoPinName},
        {"q", "12", 12}};
    BScanParser parser;
    ASSERT_EQ(parser.ReadPackageDB(Text(file)), kOk);
    for (const auto& [package, pin, number] : rows) {
        SCOPED_TRACE(number);
        parser.SetPackageType(Text(package));
        EXPECT_EQ(parser.MapPinNametoPinNumber(pin), number);
    }
    // A host may write into the type, which is "q" now.
    for (const auto& [letter, number] : {std::pair('p', 2), {'\0', 0}, {'q', 0}, {'p', 2}}) {
        *parser.GetPackageType() = letter;
        EXPECT_EQ(parser.MapPinNametoPinNumber("B2"), number) << letter;
    }
}

}  // namespace
}  // namespace bscan::test
