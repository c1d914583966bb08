// INSTRUCTION_OPCODE and REGISTER_ACCESS, which are read alike.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

constexpr int kSyntax = 1;  // in a row: the syntax code of the attribute at hand

TEST(NameList, ReadsEntriesOfNamesAndItems) {
    std::string many;
    for (int i = 0; i < 400; ++i) many += (i ? ",\" &\n\"" : "") + std::string("0101010101");
    const std::string all = [&] {
        std::string text = many;
        for (std::size_t at; (at = text.find("\" &\n\"")) != std::string::npos;) text.erase(at, 5);
        return text;
    }();
    const struct {
        const char* name;
        std::string value;
        int result;
        std::string entries;
    } rows[] = {
        {"a piece for each entry", "\"BYPASS (111),\" &\n\"EXTEST (000, 010)\";", kOk,
         "BYPASS(111) EXTEST(000,010)"},
        {"list over pieces", "\"EXTEST (000,\" &\n\"010)\";", kOk, "EXTEST(000,010)"},
        {"long list", "\"A (" + many + ")\";", kOk, "A(" + all + ")"},
        {"no blanks", "\"A(1),\" & \"B(2)\";", kOk, "A(1) B(2)"},
        {"brackets in a name", "\"BOUNDARY[12] (EXTEST)\";", kOk, "BOUNDARY[12](EXTEST)"},
        {"blank before the bracket", "\"BOUNDARY [12] (EXTEST)\";", kSyntax, ""},
        {"name twice", "\"A (1),\" &\n\"A (2)\";", kOk, "A(1) A(2)"},
        {"two entries in one piece", "\"A (1), B (2)\";", kSyntax, "A(1)"},
        {"only a comma between", "\"A (1),B (2)\";", kOk, "A(1) ,B(2)"},
        {"white space in an item", "\"A (1),\" &\n\"B (2, 3 4)\";", kSyntax, "A(1)"},
        {"white space in the only item", "\"A (3 4)\";", kSyntax, ""},
        {"empty item", "\"A (1,,2)\";", kSyntax, ""},
        {"empty first item", "\"A (,2)\";", kSyntax, ""},
        {"empty last item", "\"A (1,)\";", kSyntax, ""},
        {"blank last item", "\"A (1, )\";", kSyntax, ""},
        {"quoted away last item", "\"A (1,\" &\n\")\";", kSyntax, ""},
        {"empty list", "\"A ()\";", kSyntax, ""},
        {"blank list", "\"A ( )\";", kSyntax, ""},
        {"no name", "\"(1)\";", kBadValue, ""},
        {"no parenthesis", "\"A 1)\";", kBadValue, ""},
        {"nested parentheses", "\"A (1(2))\";", kBadValue, "A(1(2)"},
        {"carriage returns are no white space", "\"A (1\r2)\";", kOk, "A(1\r2)"},
        {"text behind", "\"A (1)\" & \"and no more\";", kOk, "A(1)"},
        {"no entries", "\"none\";", kOk, ""},
        {"nothing", ";", kOk, ""},
        {"no quotes", "A (1);", kSyntax, ""},
        {"no quotes and no entries", "A;", kOk, ""},
        {"cut", "\"A (1),\" &", kReadFailed, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        BScanParser parser;
        // Skipped attributes, which make the descriptions.
        parser.ReadAttribute(Stream(""), "attribute X of Y : entity is ;");
        parser.ReadAttribute(Stream(""), "attribute X_REGISTER_ACCESS of Y : entity is ;");
        EXPECT_EQ(
            parser.ReadInstructionOpcode(Stream(row.value + "\n"),
                                         Text("attribute INSTRUCTION_OPCODE of X : entity is ")),
            row.result == kSyntax ? kBadOpcode : row.result);
        EXPECT_EQ(Instructions(parser.GetInstructionRegisterDescription()), row.entries);
        EXPECT_EQ(parser.ReadRegisterAccess(Stream(row.value + "\n"),
                                            Text("attribute REGISTER_ACCESS of X : entity is ")),
                  row.result == kSyntax ? kBadRegisterAccess : row.result);
        EXPECT_EQ(Registers(parser.GetRegisterAccessDescription()), row.entries);
    }
}

TEST(NameList, NeedsItsDescription) {
    BScanParser parser;
    const struct {
        const char* value;
        int opcodes;
        int registers;
    } rows[] = {{"\"A (1)\";", kBadOpcode, kBadRegisterAccess},
                {"\"A (1 2)\";", kBadOpcode, kBadRegisterAccess},
                {"\"(1)\";", kBadValue, kBadValue},
                {";", kOk, kOk}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(parser.ReadInstructionOpcode(Stream(""), Text(row.value)), row.opcodes);
        EXPECT_EQ(parser.ReadRegisterAccess(Stream(""), Text(row.value)), row.registers);
    }
}

TEST(NameList, AppendsToWhatIsThere) {
    ReadDevice device(
        Entity("attribute INSTRUCTION_OPCODE of X : entity is \"A (1)\";\n"
               "attribute INSTRUCTION_OPCODE of X : entity is \"B (2)\";\n"
               "attribute REGISTER_ACCESS of X : entity is\n\"R (A,\" & -- comment\n"
               "\"B)\";\n"));
    EXPECT_EQ(device.result(), kOk);
    const CInstrRegisterDesc& instructions = *device.parser.GetInstructionRegisterDescription();
    const CRegisterAccessDesc& registers = *device.parser.GetRegisterAccessDescription();
    EXPECT_EQ(Instructions(&instructions), "A(1) B(2)");
    EXPECT_EQ(Registers(&registers), "R(A,B)");
    for (int index : {-1, 2}) {
        EXPECT_EQ(instructions.GetInstructionOpcode(index), nullptr);
        EXPECT_EQ(instructions.GetInstructionOpcode(0)->GetOpcode(index), nullptr);
        EXPECT_EQ(registers.GetRegister(index), nullptr);
        EXPECT_EQ(registers.GetRegister(0)->GetRegisterAssocName(index), nullptr);
    }
}

TEST(Opcode, OrdersNamesDownwards) {
    CInstrOpcode idcode;
    idcode.SetInstruction("IDCODE");
    CInstrOpcode bypass;
    bypass.SetInstruction("bypass");
    EXPECT_TRUE(idcode < bypass);
    EXPECT_FALSE(bypass < idcode);
    EXPECT_FALSE(idcode < idcode);
}

}  // namespace
}  // namespace bscan::test
