// What a confused host may call: with null, with empty text, with any integer, too early, again.
// The answer is a code or nothing; that nothing worse happens is for the sanitizers to see.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>

namespace bscan::test {
namespace {

constexpr int kIntegers[] = {INT_MIN, -19, -1, 0, 1, 2, 7, 1 << 20, INT_MAX};
constexpr const char* kTexts[] = {nullptr, "", " ", "\"", ";", "(", ")", ":=", "A", "is \"A(\";"};

/// A text in a buffer of the size that the reading operations are promised; null for null.
class Room {
public:
    explicit Room(const char* text) : null_(!text) {
        std::snprintf(bytes_, sizeof bytes_, "%s", text ? text : "");
    }
    operator char*() { return null_ ? nullptr : bytes_; }

private:
    bool null_;
    char bytes_[1024];
};

template <typename Enumeration>
Enumeration As(int value) {
    return static_cast<Enumeration>(value);
}

void MisuseReaders(BScanParser& parser, const char* text) {
    for (const char* rest : {static_cast<const char*>(nullptr), "", "\"A(1)\" &\n;\nend;\n"}) {
        std::optional<Stream> open;
        if (rest) open.emplace(rest);
        FILE* const file = open ? static_cast<FILE*>(*open) : nullptr;
        const int results[] = {
            parser.GetLine(file, Room(text), nullptr),
            parser.GetLine(file, Room(text), Room("")),
            parser.CompleteStatement(file, Room(text)),
            parser.CompleteStatement(file, Room(text), ';'),
            parser.CompleteStatement(file, Room(text), '\0'),
            parser.CompleteStatement(file, Room(text), Text("")),
            parser.CompleteStatement(file, Room(text), static_cast<char*>(nullptr)),
            parser.CompleteStatementWithOneOf(file, Room(text), Text("")),
            parser.CompleteStatementWithOneOf(file, Room(text), nullptr),
            parser.GetCompleteStringValue(file, Room(text), nullptr, true),
            parser.ReadEntity(file, text),
            parser.ReadAttribute(file, text),
            parser.ReadConstant(file, text),
            parser.ReadGeneric(file, Room(text)),
            parser.ReadPort(file, Room(text)),
            parser.ReadBSCANPinMap(file, text),
            parser.ReadPortGroupingAttribute(file, text),
            parser.ReadBSCANBoundaryLength(file, Room(text)),
            parser.ReadBSCANBoundaryRegister(file, Room(text)),
            parser.ReadInstructionLength(file, Room(text)),
            parser.ReadInstructionCapture(file, Room(text)),
            parser.ReadInstructionOpcode(file, Room(text)),
            parser.ReadRegisterAccess(file, Room(text)),
        };
        for (const int result : results) EXPECT_LE(result, kOk);
        LByteBuffer value;
        EXPECT_LE(parser.GetCompleteStringValue(file, Room(text), &value, true), kOk);
    }
}

void MisuseParser(BScanParser& parser) {
    for (const char* text : kTexts) {
        SCOPED_TRACE(text ? text : "null");
        MisuseReaders(parser, text);
        parser.CreatePort(Room(text));
        parser.ReadPackageDB(Room(text));
        parser.MapPinNametoPinNumber(text);
        parser.SetBSDLFilename(text);
        parser.SetComponentName(Room(text));
        parser.SetPackageType(Room(text));
        parser.SetDefaultDir(text);
        for (const int number : kIntegers)
            EXPECT_GE(parser.ProcessException(number, static_cast<unsigned>(number), Room(text)),
                      -1);
    }
    for (const int number : kIntegers) {
        parser.GetDifferentialPair(number);
        parser.GetPackageMap(number);
        if (number <= 0) {
            unsigned char byte = 1;
            EXPECT_EQ(parser.SetBSCANBitArray(&byte, number, &byte), number < 0 ? -1 : 0);
        }
        EXPECT_EQ(parser.SetBSCANBitArray(nullptr, number, nullptr), number == 0 ? 0 : -1);
    }
    EXPECT_LE(parser.Read(), kOk);
    EXPECT_LE(parser.Read(), kOk);
    parser.ClearDifferentialPairList();
    parser.ClearDifferentialPairList();
    parser.ClearBuffers();
    parser.ClearBuffers();
    EXPECT_EQ(parser.ProcessException(1, 1, Text("x")), -1) << "no error handler";
    parser.CloseFile();
    parser.CloseFile();
    EXPECT_EQ(parser.Read(), kFailed);
}

void MisuseMap(BScanPinMap& map) {
    for (const char* text : kTexts) {
        SCOPED_TRACE(text ? text : "null");
        for (const int number : kIntegers) {
            map.AddNewPorts(Room(text), Room(text), number > 9 ? INT_MAX : number, number > 0);
            map.AddNewPorts(Room(text), nullptr, number, -1);
            map.SerialSetPinNumber(Room(text), number, number);
            map.SerialSetPinName(Room(text), number, Room(text));
            map.SetPinNumber(Room(text), number, number);
            EXPECT_LE(map.AddNewRegister(number, Room(text), Room(text), number, Room(text),
                                         As<eSignal>(number), number, As<eSignal>(number),
                                         As<eSignal>(number), As<eSignal>(number), text),
                      0);
            EXPECT_EQ(map.AddNewRegister(number, nullptr, nullptr, number, nullptr, SIG_0, -1,
                                         SIG_0, SIG_0, SIG_0, nullptr),
                      -1);
            map.GetPort(Room(text), number);
        }
        map.GetPort(text);
        map.GetPortwName(Room(text));
        map.GetPinNumber(text);
        map.GetPinNumberwPortName(Room(text));
        map.GetPinIndexwPortName(Room(text));
        map.GetBScanCell(text);
        map.GetBScanCellByOriginalName(text);
        map.SetDefaultDir(Room(text));
        map.SetIOName(text);
    }
    for (const int number : kIntegers) {
        map.SetBit(number, As<eSignal>(number));
        for (const int other : kIntegers) {
            map.setPort(number, As<PortType>(other), As<eSignal>(other));
            map.setPort(number, As<PortType>(other), As<eSignal>(other), true);
        }
        map.GetPortDirection(number);
        map.GetPortValue(number);
        map.HasBScanCell(number);
        map.GetPort(number);
        map.GetPortName(number);
        map.GetPinName(number);
        map.GetPortType(number);
        map.IsPositiveElement(number);
        map.IsNegativeElement(number);
        map.GetBScanCell(number);
        map.GetIOName(number);
    }
    EXPECT_EQ(map.UpdateBScanBitArray(nullptr), -1);
    map.InitBSCANBitArray();
    map.ResetAllPort();
}

TEST(Misuse, OfAParserThatHasNoFile) {
    BScanParser parser;
    MisuseParser(parser);
    MisuseParser(parser);
}

TEST(Misuse, OfAParserAfterAReading) {
    const char* const texts[] = {
        "", "entity X is\n", "entity X is;\nport (\nA : in bit",
        "entity X is;\nport (\nA, B : inout bit);\nattribute BOUNDARY_LENGTH of X : entity is 2;\n"
        "attribute BOUNDARY_REGISTER of X : entity is\n\"0 (BC_1, A, bidir, X, 1, 1, "
        "Z)\";\nend;\n"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        const TempDir directory;
        const std::string file = directory.Write("d.bsd", text);
        BScanParser parser;
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), kOk);
            parser.Read();
            MisuseParser(parser);
        }
        if (parser.GetPinMap()) MisuseMap(*parser.GetPinMap());
        EXPECT_EQ(parser.Initialize(nullptr, nullptr), kCannotOpen);
    }
}

TEST(Misuse, OfADevice) {
    BScanPinMap map;
    MisuseMap(map);
    map.AllocateBScanCellTable(3);
    MisuseMap(map);
    for (const int length : kIntegers) map.AllocateBScanCellTable(length);
    MisuseMap(map);
}

TEST(Misuse, OfPortsCellsAndRecords) {
    LPinNode node;
    LBScanCell cell;
    PackagePinMap pins;
    CInstrOpcode opcode;
    CInstrRegisterDesc instructions;
    CRegister data_register;
    CRegisterAccessDesc registers;
    CDifferentialPair pair;
    ErrorHandler handler;
    for (const char* text : kTexts) {
        node.SetPortName(Room(text));
        node.SetPortType(Room(text));
        cell.SetCellType(Room(text));
        cell.SetFunction(Room(text));
        cell.SetPinName(text);
        cell.SetOriginalPinName(text);
        pins.SetPackageName(text);
        pins.AddPin(text);
        opcode.SetInstruction(text);
        opcode.AddOpcode(text);
        instructions.SetInstructionCapture(text);
        data_register.SetRegisterName(text);
        data_register.AddRegisterAssociation(text);
        pair.SetPositiveElement(text);
        pair.SetNegativeElement(text);
        handler.SetDefaultDir(text);
        EXPECT_EQ(handler.Initialize(Room(text), INT_MIN), kOk);
        handler.SetErrorOccured(Room(text));
    }
    for (const int number : kIntegers) {
        cell.SetFunction(As<CellFunction>(number));
        cell.SetCellType(As<CellType>(number));
        node.AssociateBScanCell(&cell);
        for (const int other : kIntegers)
            node.SetBScanCell(As<PortType>(number), As<eSignal>(other));
        pins.SetPin(number, "x");
        pins.GetPin(number);
        handler.GetError(number);
    }
    // What an object holds may be handed to it again, as its storage grows.
    cell.SetPinName(cell.GetPinName());
    node.SetPortName(node.GetPortName());
    EXPECT_STREQ(PortName(node), kTexts[std::size(kTexts) - 1]);
    instructions.AddInstructionOpcode(nullptr);
    registers.AddRegister(nullptr);
    for (int i = 0; i < 3; ++i) {
        pins.AddPin(pins.GetPin(0));
        instructions.AddInstructionOpcode(i ? instructions.GetInstructionOpcode(0) : &opcode);
        registers.AddRegister(i ? registers.GetRegister(0) : &data_register);
    }
    EXPECT_EQ(Instructions(&instructions), Registers(&registers));
}

TEST(Misuse, OfNullTexts) {
    LString s;
    char text[] = "abc";
    s.Left(nullptr, text, 1);
    s.Right(nullptr, text, 1);
    s.TrimLeft(nullptr);
    s.TrimRight(nullptr);
    util_strncpy(nullptr, text, 0, 0);
    util_strncat(nullptr, text, 0, 0);
    util_strncat(text, static_cast<const char*>(nullptr), 0, 0);
    EXPECT_STREQ(text, "abc");
    s.Left(text, nullptr, 2);
    s.Right(text, nullptr, 2);
    EXPECT_EQ(strupr(nullptr), nullptr);
    EXPECT_EQ(strlwr(nullptr), nullptr);
    EXPECT_EQ(strcmpi(nullptr, nullptr), 0);
    const char* const none = nullptr;
    EXPECT_EQ(s.Find(none, "x"), -1);
    EXPECT_EQ(s.Find(none, 'x'), -1);
    EXPECT_EQ(s.FindOneOf("x", none), -1);
    EXPECT_EQ(s.ReverseFind(none, 'x'), -1);
    EXPECT_EQ(s.ReverseFindOneOf(none, none), -1);
}

}  // namespace
}  // namespace bscan::test
