// The parser object: its two entry points, the walk over the entity, and error reports.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace bscan::test {
namespace {

constexpr const char* kGood = "entity GOOD is\ngeneric (A : string := \"X\");\nend GOOD;\n";

TEST(Entity, IsReadLineByLine) {
    const struct {
        const char* text;
        int result;
        const char* component;
    } rows[] = {
        {kGood, kOk, "GOOD"},
        {"-- comment\n\n  entity\tX\tis\n generic (\n A);\nend;", kOk, "X"},
        {"entityX is;\nend;\n", kOk, "X"},
        {"entity X;\nendpoint", kOk, ""},
        {"entity X is\ngeneric (A : string);\nuse STD_1149_1_2001.all;\nend;\n", kOk, "X"},
        {"entity X is;\nuse A,\nB;\nend;\n", kUnexpectedLine, "X"},
        {"entity X is;\n\"left over\" &\n\"lines\";\nend;\n", kOk, "X"},
        {"entity X is;\nPort (\nA : in bit);\nend;\n", kUnexpectedLine, "X"},
        {"entity X is\nport (TDI : in bit;\nTDO : out bit);\nend;\n", kUnexpectedLine, "X"},
        {"entity X is;\nportable;\nend;", kEndOfFile, "X"},
        {"entity X is;\n", kReadFailed, "X"},
        {"entity X is\n", kReadFailed, nullptr},
        {"library IEEE;\nentity X is;\nend;\n", kUnexpectedLine, nullptr},
        {"Entity X is;\nend;\n", kUnexpectedLine, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ReadDevice device(row.text);
        EXPECT_EQ(device.result(), row.result);
        EXPECT_STREQ(device.parser.GetComponentName(), row.component);
    }
}

TEST(Parser, OpensAndClosesItsFile) {
    static_assert(!std::has_virtual_destructor_v<BScanParser>);
    const std::filesystem::path working = std::filesystem::current_path();
    const TempDir directory;
    const std::string file = directory.Write("good.bsd", kGood);
    const std::string absent = directory.Path("absent");
    {
        BScanParser parser;
        EXPECT_EQ(parser.Read(), kFailed) << "no file is open";
        EXPECT_EQ(parser.Initialize(file.c_str(), absent.c_str()), kBadDirectory);
        EXPECT_EQ(parser.Initialize(file.c_str(), file.c_str()), kBadDirectory);
        EXPECT_EQ(parser.GetBSDLFilename(), nullptr);
        EXPECT_EQ(parser.Initialize(absent.c_str(), ""), kCannotOpen);
        EXPECT_EQ(fptrBSDL, nullptr);
        EXPECT_EQ(parser.Initialize(file.c_str(), directory.Path("").c_str()), kOk);
        EXPECT_EQ(parser.GetLineNumber(), 0) << "the lines of the package pass do not count";
        EXPECT_EQ(parser.Initialize(absent.c_str(), ""), kCannotOpen);
        EXPECT_NE(fptrBSDL, nullptr) << "a failed start leaves the open file";
        EXPECT_EQ(parser.Read(), kOk);
        EXPECT_EQ(parser.GetLineNumber(), 3);
        EXPECT_EQ(parser.Read(), kReadFailed) << "what was read is not read again";
        parser.CloseFile();
        EXPECT_EQ(fptrBSDL, nullptr);
        parser.CloseFile();
        EXPECT_EQ(parser.Read(), kFailed);
        EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), kOk);
    }
    EXPECT_EQ(fptrBSDL, nullptr) << "the destructor closes the file";
    EXPECT_EQ(std::filesystem::current_path(), working);
}

TEST(Parser, WorksWithOthersInOneProcess) {
    const TempDir directory;
    const std::string good = directory.Write("good.bsd", kGood);
    const std::string other = directory.Write("other.bsd", "entity OTHER is;\nend;\n");
    BScanParser second;
    {
        BScanParser first;
        ASSERT_EQ(first.Initialize(good.c_str(), ""), kOk);
        ASSERT_EQ(second.Initialize(other.c_str(), ""), kOk);
        EXPECT_EQ(first.Read(), kOk) << "it reads the file that is open";
        EXPECT_STREQ(first.GetComponentName(), "OTHER");
    }
    EXPECT_EQ(second.Read(), kFailed);
    ASSERT_EQ(second.Initialize(good.c_str(), ""), kOk);
    EXPECT_EQ(second.Read(), kOk);
    EXPECT_STREQ(second.GetComponentName(), "GOOD");
}

TEST(Parser, ASecondReadingAddsToTheFirst) {
    const TempDir directory;
    BScanParser parser;
    for (const char* statements :
         {"port (\nA : in bit);\nattribute INSTRUCTION_LENGTH of X : entity is 4;",
          "port (\nB : in bit);\nattribute INSTRUCTION_CAPTURE of X : entity is \"01\" ;"}) {
        EXPECT_EQ(parser.Initialize(directory.Write("d", Entity(statements)).c_str(), ""), kOk);
        EXPECT_EQ(parser.Read(), kOk);
    }
    EXPECT_EQ(Ports(parser.GetPinMap()), "A:in:0 B:in:0");
    EXPECT_EQ(parser.GetInstructionRegisterDescription()->GetInstructionLength(), 4);
}

TEST(ErrorReport, ComposesAMessage) {
    const TempDir directory;
    directory.Write("ErrorList.txt",
                    "1 2 3 in line %d\n2 0 65535 %d:%d %d %s%%\n65535 65535 0 last\n4 4 7 \n");
    const std::string file = directory.Write("good.bsd", kGood);
    BScanParser parser;
    EXPECT_EQ(parser.ProcessException(1, 2, Text("x")), -1) << "no error handler";
    ASSERT_EQ(parser.Initialize(file.c_str(), directory.Path("").c_str()), kOk);
    ASSERT_EQ(parser.Read(), kOk);
    const struct {
        int group;
        unsigned number;
        const char* text;
        int result;
        const char* message;
    } rows[] = {
        {9, 9, "bad cell", -1, "\nbad cell\nXML Parser Error At Line 3, Column 0."},
        {9, 9, "%s%n %d", -1, "\n%s%n %d\nXML Parser Error At Line 3, Column 0."},
        {1, 2, "x", 3, "\nx\nin line 3"},
        {1 + 65536, 2 + 65536, "", 3, "\n\nin line 3"},
        {-1, 0xFFFFFFFFU, nullptr, 0, "\nlast"},
        {2, 0, nullptr, 65535, "\n3:0 %d %s%%"},
    };
    int count = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        EXPECT_EQ(parser.ProcessException(row.group, row.number, Text(row.text)), row.result);
        ASSERT_EQ(parser.GetErrorHandler()->GetErrorCount(), ++count);
        EXPECT_STREQ(parser.GetErrorHandler()->GetError(count - 1), row.message);
    }
    EXPECT_EQ(parser.Reset(), kOk);
    EXPECT_EQ(parser.GetErrorHandler()->GetErrorCount(), 0);
    EXPECT_EQ(parser.ProcessException(1, 2, nullptr), -1) << "a fresh handler has no table";
    EXPECT_STREQ(parser.GetErrorHandler()->GetError(0), "\nXML Parser Error At Line 0, Column 0.");
    parser.ClearBuffers();
    EXPECT_EQ(parser.GetErrorHandler(), nullptr);
}

TEST(ResultCodes, AllHaveAMeaning) {
    const std::string unknown = bscan::Describe(1);
    for (int code = -30; code <= 5; ++code) {
        const bool used = code <= 0 && code >= kOutOfMemory && code != -12;
        EXPECT_EQ(bscan::Describe(code) != unknown, used) << code;
    }
}

}  // namespace
}  // namespace bscan::test
