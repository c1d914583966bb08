// The attributes of one value, and the choice of an attribute's reader.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <sstream>

namespace bscan::test {
namespace {

std::string Values(BScanParser& parser) {
    std::ostringstream out;
    if (parser.GetPinMap()) out << "cells " << parser.GetPinMap()->GetBScanLength();
    if (const CInstrRegisterDesc* instructions = parser.GetInstructionRegisterDescription())
        out << " length " << instructions->GetInstructionLength() << " capture "
            << instructions->GetInstructionCapture();
    if (const CRegisterAccessDesc* registers = parser.GetRegisterAccessDescription())
        out << " registers " << registers->GetRegisterCount();
    return out.str();
}

TEST(Attributes, GiveTheirValueOrACode) {
    const struct {
        const char* statements;
        int result;
        const char* values;
    } rows[] = {
        {"", kOk, "cells 0"},
        {"attribute BOUNDARY_LENGTH of X : entity is 27;", kOk, "cells 27 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is\n27;", kOk, "cells 27 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 27 ; ", kOk, "cells 27 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 5 +6x;", kOk, "cells 6 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 4294967301;", kOk,
         "cells 5 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 1048576;", kOk,
         "cells 1048576 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 1048577;", kBadValue,
         "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 99999999999999999999;", kBadValue,
         "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 0x1B;", kBadValue,
         "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is -4;", kBadValue, "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is ;", kBadValue, "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X : entity is 8", kBadValue, "cells 0 length 0 capture "},
        {"attribute INSTRUCTION_LENGTH of X : entity is 8;\n"
         "attribute INSTRUCTION_LENGTH of X : entity is 10;",
         kOk, "cells 0 length 10 capture "},
        {"attribute INSTRUCTION_LENGTH of X : entity is -3;", kOk, "cells 0 length -3 capture "},
        {"attribute INSTRUCTION_LENGTH of X : entity is none;", kBadValue,
         "cells 0 length 0 capture "},
        {"attribute INSTRUCTION_CAPTURE of X : entity is \"0101\";", kOk,
         "cells 0 length 0 capture \"0101\""},
        {"attribute INSTRUCTION_CAPTURE of X : entity is\n\"01\" &\n\"XX\";", kOk,
         "cells 0 length 0 capture &\"XX\""},
        {"attribute INSTRUCTION_CAPTURE of X : entity is \"01\" & \"XX\";", kOk,
         "cells 0 length 0 capture \"XX\""},

        // Whatever no reader wants is skipped to its semicolon.
        {"attribute PIN_MAP of X : entity is PHYSICAL_PIN_MAP;", kOk, "cells 0 length 0 capture "},
        {"attribute INSTRUCTION_PRIVATE of X : entity is\n\"A,\" &\n\"B\";", kOk,
         "cells 0 length 0 capture "},
        {"attribute boundary_length of X : entity is 5;", kOk, "cells 0 length 0 capture "},

        // A keyword anywhere in the statement selects; another name leaves the statement unread.
        {"attribute MY_BOUNDARY_LENGTH of X : entity is 5;", kOk, "cells 0 length 0 capture "},
        {"attribute NOTE of X : entity is \"BOUNDARY_REGISTER\" &\n\"more\" &\n\"still\";", kOk,
         "cells 0 length 0 capture "},
        {"attribute NOTE of BOUNDARY_REGISTER : entity is\nbare;", kUnexpectedLine,
         "cells 0 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of INSTRUCTION_LENGTH : entity is 5;", kOk,
         "cells 5 length 0 capture "},
        {"attribute INSTRUCTION_LENGTH of BOUNDARY_LENGTH : entity is 5;", kOk,
         "cells 0 length 0 capture "},
        {"attribute MY_REGISTER_ACCESS of X : entity is \"z\";", kOk,
         "cells 0 length 0 capture  registers 0"},
        {"attribute BOUNDARY_REGISTER_ACCESS of X : entity is \"z\";", kOk,
         "cells 0 length 0 capture "},

        // " is " must stand in one line with what follows it.
        {"attribute BOUNDARY_LENGTH of X :\nentity is 5;", kOk, "cells 5 length 0 capture "},
        {"attribute BOUNDARY_LENGTH of X :\nentity is\n5;\n"
         "attribute INSTRUCTION_LENGTH of X : entity is 8;",
         kBadValue, "cells 0 length 0 capture "},

        // A pin map that cannot be read does not end the reading.
        {"attribute PIN_MAP_STRING of X : entity is \"TDI : 1\";", kReadFailed,
         "cells 0 length 0 capture "},
        {"attribute PIN_MAP_STRING of X : entity is\n\"TDI : 1\";", kOk,
         "cells 0 length 0 capture "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.statements);
        ReadDevice device(Entity(row.statements));
        EXPECT_EQ(device.result(), row.result);
        EXPECT_EQ(Values(device.parser), row.values);
    }
}

TEST(Attributes, ReportAMissingObjectBeforeABadValue) {
    EXPECT_EQ(ReadDevice("entity X is;\nattribute BOUNDARY_LENGTH of X : entity is 5;").result(),
              kLengthWithoutPorts);
    EXPECT_EQ(ReadDevice("entity X is;\nattribute BOUNDARY_LENGTH of X : entity is 0;").result(),
              kLengthWithoutPorts);
    BScanParser parser;
    const Stream stream("");
    EXPECT_EQ(parser.ReadInstructionLength(stream, Text("x is 8;")), kLengthWithoutRegister);
    EXPECT_EQ(parser.ReadInstructionLength(stream, Text(";")), kLengthWithoutRegister);
    EXPECT_EQ(parser.ReadInstructionCapture(stream, Text("x is 8;")), kCaptureWithoutRegister);
    EXPECT_EQ(parser.ReadAttribute(stream, "attribute X of Y : entity is 1;"), kOk);
    EXPECT_EQ(parser.ReadInstructionCapture(stream, Text(" ; 8;")), kBadValue);
    EXPECT_EQ(parser.ReadInstructionCapture(stream, Text("10;")), kOk);
    EXPECT_STREQ(parser.GetInstructionRegisterDescription()->GetInstructionCapture(), "10");
}

}  // namespace
}  // namespace bscan::test
