// The attributes of one value, the lists of names, and the choice of an attribute's reader.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

/// Length of the register, of instructions and what the instruction register captures.
std::string Values(const BScanParser& parser) {
    const CInstrRegisterDesc* const list = parser.GetInstructionRegisterDescription();
    return std::to_string(parser.GetPinMap()->GetBScanLength()) + ' ' +
           std::to_string(list->GetInstructionLength()) + ' ' + list->GetInstructionCapture();
}

TEST(Attributes, GiveTheirValueOrACode) {
    const Rows<const char*, const char*, int, const char*> rows = {
        {"BOUNDARY_LENGTH of X : entity is", "27;", kOk, "27 0 "},
        {"BOUNDARY_LENGTH of X : entity is\n", "27 ; ", kOk, "27 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "4294967301;", kOk, "5 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "1048576;", kOk, "1048576 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "1048577;", kBadValue, "0 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "99999999999999999999;", kBadValue, "0 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "0x1B;", kBadValue, "0 0 "},
        {"BOUNDARY_LENGTH of X : entity is", ";", kBadValue, "0 0 "},
        {"BOUNDARY_LENGTH of X : entity is", "8", kBadValue, "0 0 "},
        {"INSTRUCTION_LENGTH of X : entity is", "-3;", kOk, "0 -3 "},
        {"INSTRUCTION_CAPTURE of X : entity is", "\"0101\";", kOk, "0 0 \"0101\""},
        {"INSTRUCTION_CAPTURE of X : entity is\n", "\"01\" &\n\"XX\";", kOk, "0 0 &\"XX\""},

        // Whatever no reader wants is skipped to its semicolon.
        {"INSTRUCTION_PRIVATE of X : entity is\n", "\"A,\" &\n\"B\";", kOk, "0 0 "},
        {"boundary_length of X : entity is", "5;", kOk, "0 0 "},

        // A keyword anywhere in the statement selects; another name leaves the statement unread.
        {"NOTE of X : entity is", "\"BOUNDARY_REGISTER\" &\n\"more\" &\n\"x\";", kOk, "0 0 "},
        {"NOTE of BOUNDARY_REGISTER : entity is\n", "bare;", kUnexpectedLine, "0 0 "},
        {"BOUNDARY_LENGTH of INSTRUCTION_LENGTH : entity is", "5;", kOk, "5 0 "},
        {"BOUNDARY_REGISTER_ACCESS of X : entity is", "\"z\";", kOk, "0 0 "},

        // " is " must stand in one line with what follows it.
        {"BOUNDARY_LENGTH of X :\nentity is", "5;", kOk, "5 0 "},
        {"BOUNDARY_LENGTH of X :\nentity is\n", "5;\nx is 8;", kBadValue, "0 0 "},

        // A pin map that cannot be read does not end the reading.
        {"PIN_MAP_STRING of X : entity is", "\"TDI : 1\";", kReadFailed, "0 0 "},
        {"PIN_MAP_STRING of X : entity is\n", "\"TDI : 1\";", kOk, "0 0 "}};
    for (const auto& [name, value, result, values] : rows) {
        const std::string attribute = std::string("attribute ") + name + ' ' + value;
        SCOPED_TRACE(attribute);
        ReadDevice device(Entity("attribute NONE of X : entity is 0;\n" + attribute));
        EXPECT_EQ(device.result(), result);
        EXPECT_EQ(Values(device.parser), values);
    }
}

TEST(Attributes, ReportAMissingObjectBeforeABadValue) {
    for (const char* value : {"5;", "0;", ";"}) {
        const std::string length = std::string("attribute BOUNDARY_LENGTH of X is ") + value;
        EXPECT_EQ(ReadDevice("entity X is;\n" + length).result(), kLengthWithoutPorts);
    }
    BScanParser parser;
    const Stream empty("");
    EXPECT_EQ(parser.ReadInstructionLength(empty, Text(";")), kLengthWithoutRegister);
    EXPECT_EQ(parser.ReadInstructionCapture(empty, Text("x is 8;")), kCaptureWithoutRegister);
    EXPECT_EQ(parser.ReadInstructionOpcode(empty, Text("\"A (1)\";")), kBadOpcode);
    EXPECT_EQ(parser.ReadRegisterAccess(empty, Text("\"A (1)\";")), kBadRegisterAccess);
    EXPECT_EQ(parser.ReadInstructionOpcode(empty, Text("\"(1)\";")), kBadValue);
    EXPECT_EQ(parser.ReadRegisterAccess(empty, Text(";")), kOk);
    EXPECT_EQ(parser.ReadAttribute(empty, "attribute X of Y : entity is 1;"), kOk);
    // A pin map's own failure counts for nothing, once the statement is complete.
    EXPECT_EQ(parser.ReadAttribute(empty, "attribute PIN_MAP_STRING of X : entity is "), kOk);
    EXPECT_EQ(parser.ReadInstructionCapture(empty, Text(" ; 8;")), kBadValue);
    EXPECT_EQ(parser.ReadInstructionCapture(empty, Text("10;")), kOk);
    EXPECT_STREQ(parser.GetInstructionRegisterDescription()->GetInstructionCapture(), "10");
}

constexpr int kSyntax = 1;  // in a row: the syntax code of the attribute at hand

// INSTRUCTION_OPCODE and REGISTER_ACCESS are read alike.
TEST(NameList, ReadsEntriesOfNamesAndItems) {
    const Rows<std::string, int, std::string> rows = {
        {"\"BYPASS (111),\" &\n\"EXTEST (000, 010)\";", kOk, "BYPASS(111) EXTEST(000,010)"},
        {"\"EXTEST (000,\" & -- comment\n\"010)\";", kOk, "EXTEST(000,010)"},
        {"\"A(1),\" & \"B(2)\";", kOk, "A(1) B(2)"},
        {"\"BOUNDARY[12] (EXTEST)\";", kOk, "BOUNDARY[12](EXTEST)"},
        {"\"BOUNDARY [12] (EXTEST)\";", kSyntax, ""},
        {"\"A (1),\" &\n\"A (2)\";", kOk, "A(1) A(2)"},
        {"\"A (1), B (2)\";", kSyntax, "A(1)"},  // two entries in one piece
        {"\"A (1),B (2)\";", kOk, "A(1) ,B(2)"},
        {"\"A (1),\" &\n\"B (2, 3 4)\";", kSyntax, "A(1)"},
        {"\"A (,2)\";", kSyntax, ""},
        {"\"A (1,)\";", kSyntax, ""},
        {"\"A (1,\" &\n\")\";", kSyntax, ""},
        {"\"A ()\";", kSyntax, ""},
        {"\"(1)\";", kBadValue, ""},
        {"\"A 1)\";", kBadValue, ""},
        {"\"A (1(2))\";", kBadValue, "A(1(2)"},
        {"\"A (1\r2)\";", kOk, "A(1\r2)"},  // carriage returns are no white space
        {"\"A (1)\" & \"and no more\";", kOk, "A(1)"},
        {";", kOk, ""},
        {"A (1);", kSyntax, ""},
        {"\"A (1),\" &", kReadFailed, ""}};
    for (const auto& [value, result, entries] : rows) {
        SCOPED_TRACE(value);
        BScanParser parser;
        // Skipped attributes, which make the descriptions.
        parser.ReadAttribute(Stream(""), "attribute X of Y : entity is ;");
        parser.ReadAttribute(Stream(""), "attribute X_REGISTER_ACCESS of Y : entity is ;");
        EXPECT_EQ(parser.ReadInstructionOpcode(Stream(value + "\n"), Text("X is ")),
                  result == kSyntax ? kBadOpcode : result);
        EXPECT_EQ(parser.ReadRegisterAccess(Stream(value + "\n"), Text("X is ")),
                  result == kSyntax ? kBadRegisterAccess : result);
        EXPECT_EQ(Instructions(parser.GetInstructionRegisterDescription()), entries);
        EXPECT_EQ(Registers(parser.GetRegisterAccessDescription()), entries);
    }
}

}  // namespace
}  // namespace bscan::test
