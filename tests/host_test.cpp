// Hosts that do anything: random sequences of operations, and misuse of records and texts. That
// nothing worse happens is for the sanitizers to see.

#include "support/host.h"

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

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

TEST(Host, MayUseARemovedNodeWhenItsMapIsGone) {
    LPinNode* node = nullptr;
    {
        BScanPinMap map;
        map.AddNewPorts(Text("A"), Text("in"), 2, true);
        EXPECT_NE(map.GetPort(Text("A"), 1), nullptr);
        node = static_cast<LPinNode*>(map.GetPinListArray()->RemoveTail());
        EXPECT_EQ(map.GetPort(Text("A"), 1), nullptr);
    }
    BScanPinMap other;
    other.GetPinListArray()->AddTail(node);
    node->SetPortName(Text("C"));
    node->SetPinNumber(1);
    EXPECT_EQ(other.GetPortwName(Text("c")), node);
    EXPECT_EQ(other.GetPort(1), node);
}

TEST(Misuse, OfRecords) {
    PackagePinMap pins;
    CInstrOpcode opcode;
    CInstrRegisterDesc instructions;
    CRegister data_register;
    CRegisterAccessDesc registers;
    ErrorHandler handler;
    for (const char* text : {static_cast<const char*>(nullptr), "", "A"}) {
        pins.SetPackageName(text);
        pins.AddPin(text);
        opcode.SetInstruction(text);
        opcode.AddOpcode(text);
        instructions.SetInstructionCapture(text);
        data_register.SetRegisterName(text);
        data_register.AddRegisterAssociation(text);
        handler.SetDefaultDir(text);
        EXPECT_EQ(handler.Initialize(Text(text), INT_MIN), kOk);
        handler.SetErrorOccured(Text(text));
    }
    instructions.AddInstructionOpcode(nullptr);
    registers.AddRegister(nullptr);
    // What an object holds may be handed to it again, as its storage grows.
    for (int i = 0; i < 3; ++i) {
        pins.AddPin(pins.GetPin(0));
        instructions.AddInstructionOpcode(i ? instructions.GetInstructionOpcode(0) : &opcode);
        registers.AddRegister(i ? registers.GetRegister(0) : &data_register);
    }
    EXPECT_EQ(Instructions(&instructions), Registers(&registers));
    EXPECT_FALSE(opcode < opcode);
    pins.SetPin(1, "C1");
    EXPECT_EQ(pins.GetPinNumber("C1"), 1);
    for (const int index : {INT_MIN, -1, 100, INT_MAX}) {
        pins.SetPin(index, "x");
        EXPECT_EQ(pins.GetPin(index), nullptr);
        EXPECT_EQ(handler.GetError(index), nullptr);
        EXPECT_EQ(instructions.GetInstructionOpcode(index), nullptr);
        EXPECT_EQ(opcode.GetOpcode(index), nullptr);
        EXPECT_EQ(registers.GetRegister(index), nullptr);
        EXPECT_EQ(data_register.GetRegisterAssocName(index), nullptr);
    }
}

}  // namespace
}  // namespace bscan::test
