// Hosts that do anything: random sequences of operations, and misuse of records and texts. That
// nothing worse happens is for the sanitizers to see.

#include "support/host.h"

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <utility>

namespace bscan::test {
namespace {

TEST(Host, GetsTheAnswersOfPlainWalks) {
    for (unsigned seed = 0; seed < 4000; ++seed) {
        std::mt19937 random(seed);
        std::string input(300, '\0');
        // Most decisions are among the first few, where names and numbers meet.
        for (char& c : input) {
            const unsigned kind = random() % 16;
            c = static_cast<char>(kind == 0 ? 255 : random() % (kind < 11 ? 24 : 256));
        }
        ASSERT_EQ(FindFaultInWork(input), "") << "seed " << seed;
    }
}

TEST(Misuse, OfReaders) {
    using P = BScanParser;
    BScanParser parser;
    const auto expect = [&](int result) {
        EXPECT_TRUE(result == kFailed || result == kReadFailed);
    };
    for (const auto reader : {&P::ReadEntity, &P::ReadAttribute, &P::ReadConstant,
                              &P::ReadBSCANPinMap, &P::ReadPortGroupingAttribute}) {
        expect((parser.*reader)(nullptr, nullptr));
        expect((parser.*reader)(nullptr, ""));
    }
    for (const auto reader :
         {&P::ReadGeneric, &P::ReadPort, &P::ReadBSCANBoundaryLength, &P::ReadInstructionLength,
          &P::ReadBSCANBoundaryRegister, &P::ReadRegisterAccess, &P::ReadInstructionCapture,
          &P::ReadInstructionOpcode}) {
        expect((parser.*reader)(nullptr, nullptr));
        expect((parser.*reader)(nullptr, Text("")));
    }
    EXPECT_EQ(parser.GetLine(nullptr, nullptr, nullptr), kFailed);
    EXPECT_EQ(parser.CompleteStatement(nullptr, nullptr), kFailed);
    EXPECT_EQ(parser.CompleteStatement(nullptr, nullptr, nullptr), kFailed);
    EXPECT_EQ(parser.CompleteStatementWithOneOf(nullptr, nullptr, nullptr), kFailed);
    EXPECT_EQ(parser.CreatePort(nullptr), kFailed);
    EXPECT_EQ(parser.ReadPackageDB(nullptr), kCannotOpen);
}

TEST(Records, AreSortedByNameFromTheLastOne) {
    const auto expect_descending = [](auto b, auto c) {
        for (const bool is_less : {std::as_const(c) < b, c < b}) EXPECT_TRUE(is_less);
        for (const bool is_less : {std::as_const(b) < c, b < c, b < b}) EXPECT_FALSE(is_less);
    };
    CInstrOpcode opcodes[2];
    CRegister registers[2];
    for (int i = 0; i < 2; ++i) {
        opcodes[i].SetInstruction(i == 0 ? "b" : "C");
        registers[i].SetRegisterName(i == 0 ? "b" : "C");
    }
    expect_descending(opcodes[0], opcodes[1]);
    expect_descending(registers[0], registers[1]);
}

TEST(Misuse, OfRecords) {
    PackagePinMap pins;
    CInstrOpcode opcode;
    CInstrRegisterDesc instructions;
    CRegister data_register;
    CRegisterAccessDesc registers;
    for (const char* text : {static_cast<const char*>(nullptr), "", "A"}) {
        opcode.SetInstruction(text);
        opcode.AddOpcode(text);
        data_register.SetRegisterName(text);
        data_register.AddRegisterAssociation(text);
        pins.AddPin(text);
    }
    instructions.AddInstructionOpcode(nullptr);
    registers.AddRegister(nullptr);
    // What an object holds may be handed to it again, as its storage grows.
    for (int i = 0; i < 3; ++i) {
        pins.AddPin(pins.GetPin(0));
        instructions.AddInstructionOpcode(i ? instructions.GetInstructionOpcode(0) : &opcode);
        registers.AddRegister(i ? registers.GetRegister(0) : &data_register);
    }
    EXPECT_EQ(Instructions(&instructions), "A(,A) A(,A) A(,A)");
    EXPECT_EQ(Registers(&registers), "A(,A) A(,A) A(,A)");
    pins.SetPin(1, "C1");
    EXPECT_EQ(pins.GetPinNumber("C1"), 1);
    for (const int index : {INT_MIN, -1, 100, INT_MAX}) {
        pins.SetPin(index, "x");
        EXPECT_EQ(pins.GetPin(index), nullptr);
        EXPECT_EQ(instructions.GetInstructionOpcode(index), nullptr);
        EXPECT_EQ(opcode.GetOpcode(index), nullptr);
        EXPECT_EQ(registers.GetRegister(index), nullptr);
        EXPECT_EQ(data_register.GetRegisterAssocName(index), nullptr);
    }
}

}  // namespace
}  // namespace bscan::test
