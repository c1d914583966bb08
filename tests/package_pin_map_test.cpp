// Package pins and their numbers.

#include <bscan/pin_order.h>

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

// A global operator< is hidden here by those of this namespace, so it is called by its name.
bool Less(const char* left, const char* right) {
    return ::operator<(std::string(left), std::string(right));
}

TEST(PinOrder, PutsShorterStringsFirst) {
    EXPECT_TRUE(Less("B", "AA"));
    EXPECT_FALSE(Less("AA", "B"));
    EXPECT_FALSE(Less("A", "A"));
    EXPECT_TRUE(Less("AB", "AC"));
    EXPECT_TRUE(Less("", "A"));
    EXPECT_TRUE(Less("A", "\xC4")) << "bytes count as unsigned";
}

TEST(PinOrder, PutsLargerNumbersFirst) {
    const struct {
        PIN_NAME first;
        PIN_NAME second;
    } rows[] = {{{"A", 12}, {"A", 3}},    {{"B", 5}, {"AA", 5}}, {{"A", 5}, {"B", 5}},
                {{"ZZ", 65535}, {"", 0}}, {{"", 5}, {"A", 5}},   {{"A", 5}, {"a", 5}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first.letters + std::to_string(row.first.number));
        EXPECT_TRUE(pin_smaller(row.first, row.second));
        EXPECT_FALSE(pin_smaller(row.second, row.first));
        EXPECT_FALSE(pin_smaller(row.first, row.first));
    }
}

TEST(PackagePinMap, FindsTheFirstOfEqualPins) {
    PackagePinMap map;
    for (const char* pin : {"A1", "B1", "A1"}) map.AddPin(pin);
    EXPECT_EQ(map.GetPinNumber("A1"), 0);
    EXPECT_EQ(map.GetPinNumber("a1"), -1);
    EXPECT_EQ(map.GetPinNumber(nullptr), -1);
    map.SetPin(3, "X");
    map.SetPin(0, "C1");
    map.SetPin(1, nullptr);
    EXPECT_EQ(map.GetPinNumber("A1"), 2);
    EXPECT_EQ(map.GetPinNumber("B1"), 1);
    EXPECT_EQ(map.GetNumberOfPins(), 3);
}

std::string PackagePins(const BScanParser& parser) {
    if (parser.GetPackageMapCount() == 0) return "none";
    const PackagePinMap& map = *parser.GetPackageMap(0);
    std::string pins = map.GetPackageName() + std::string(":");
    for (int i = 0; i < map.GetNumberOfPins(); ++i) pins += std::string(" ") + map.GetPin(i);
    return pins;
}

TEST(PackagePass, NumbersLetteredPins) {
    const struct {
        const char* value;
        const char* pins;
    } rows[] = {
        {"X : (B1, A1, B2, A2)", "pkg: A2 B2 A1 B1"},
        {"X : A1, Y : B2", "pkg: B2 A1"},
        {"TDI : 1, TDO : 2", "none"},
        {"TDI : 1, TDO : A2", "none"},
        {"A : B2, C : 7, D : (2, AB2)", "pkg: 7 2 B2 AB2"},
        {"A : (A1, B1, A1)", "pkg: A1 B1"},
        {"A : (a01, A1, 1A, A-1)", "pkg: A1 a1"},
        {"A : A", "pkg: A0"},
        {"A : (A65537, A65535, B99999999999999999999)", "pkg: A65535 B65535 A1"},
        {"D : (A1, A2) TDI : B3", "pkg: B3 A2 A1"},
        {"D : (A1, A2", "pkg: A2 A1"},
        {"D : ( A1 ,A2 ) , E:B3", "pkg: B3 A2 A1"},
        {"D : A(1)", "pkg: A1"},
        {"D : (A1,,A2)", "pkg: A2 A1"},
        {"A1, B2", "pkg: B2 A1"},
        {"X : , Y : ()", "none"},
        {"", "none"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        const TempDir directory;
        BScanParser parser;
        const std::string path = directory.Write(
            "p.bsd", "constant PKG : PIN_MAP_STRING :=\n\"" + std::string(row.value) + "\";\n");
        EXPECT_EQ(parser.ReadPackageDB(Text(path)), kOk);
        EXPECT_EQ(PackagePins(parser), row.pins);
        EXPECT_EQ(fptrBSDL, nullptr);
    }
}

TEST(PackagePass, TakesTheFirstPinMapConstant) {
    const struct {
        const char* name;
        const char* text;
        int result;
        const char* pins;
    } rows[] = {
        {"no constant", "entity X is\nend X;\n", kOk, "none"},
        {"empty file", "", kOk, "none"},
        {"first of two",
         "constant BGA_1:PIN_MAP_STRING:=\n\"X:A1\";\nconstant B:PIN_MAP_STRING:=\n\"X:B1\";\n",
         kOk, "bga_1: A1"},
        {"another type first",
         "constant A : STRING := \"X\";\nconstant B : PIN_MAP_STRING := \"X:B1\";\n", kOk, "b: B1"},
        {"type word in a name",
         "constant MY_PIN_MAP_STRING_2 : PIN_MAP_STRING := \"X:A1\";\n"
         "constant B : PIN_MAP_STRING := \"X:B1\";\n",
         kOk, "b: B1"},
        {"numbers first",
         "constant A : PIN_MAP_STRING := \"X:1\";\n"
         "constant B : PIN_MAP_STRING := \"X:B1\";\n",
         kOk, "none"},
        {"value from the first line on",
         "constant A : PIN_MAP_STRING := \"X:A1,\" &\n\"Y:A2,\" & -- comment\n\"Z:A3\";\n", kOk,
         "a: A3 A2 A1"},
        {"statement over lines", "constant A :\nPIN_MAP_STRING :=\n\"X:A1\";\n", kOk, "a: A1"},
        {"quote on a continuation line", "constant A :\nPIN_MAP_STRING := \"X:A1\" &\n\"Y:A2\";\n",
         kOk, "a: A2"},
        {"cut before the value", "constant A : PIN_MAP_STRING\n", kReadFailed, "none"},
        {"cut in the value", "constant A : PIN_MAP_STRING :=\n\"X:A1\" &\n", kReadFailed, "none"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TempDir directory;
        BScanParser parser;
        EXPECT_EQ(parser.ReadPackageDB(Text(directory.Write("p.bsd", row.text))), row.result);
        EXPECT_EQ(PackagePins(parser), row.pins);
    }
}

TEST(PackagePass, AddsToTheDesignatorsOfAFormerOne) {
    const TempDir directory;
    BScanParser parser;
    EXPECT_EQ(parser.ReadPackageDB(Text(directory.Path("absent"))), kCannotOpen);
    for (const char* text : {"constant A : PIN_MAP_STRING := \"X:(A1,B9)\";\n",
                             "constant B : PIN_MAP_STRING := \"X:C5\";\n"})
        EXPECT_EQ(parser.ReadPackageDB(Text(directory.Write("p.bsd", text))), kOk);
    EXPECT_EQ(parser.GetPackageMapCount(), 1);
    EXPECT_EQ(PackagePins(parser), "b: B9 C5 A1");
    EXPECT_EQ(parser.ReadPackageDB(Text(directory.Write("p.bsd", "no constant\n"))), kOk);
    EXPECT_EQ(PackagePins(parser), "b: B9 C5 A1");
    EXPECT_EQ(parser.GetPackageMap(1), nullptr);
    EXPECT_EQ(parser.GetPackageMap(-1), nullptr);
}

}  // namespace
}  // namespace bscan::test
