// The parser object: its two entry points and the walk over the entity.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <regex>
#include <sstream>
#include <type_traits>

namespace bscan::test {
namespace {

constexpr const char* kGood = "entity GOOD is\ngeneric (A : string := \"X\");\nend GOOD;\n";

TEST(Entity, IsReadLineByLine) {
    const Rows<const char*, int, const char*> rows = {
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
    for (const auto& [text, result, component] : rows) {
        SCOPED_TRACE(text);
        ReadDevice device(text);
        EXPECT_EQ(device.result(), result);
        EXPECT_STREQ(device.parser.GetComponentName(), component);
    }
}

TEST(Entity, HasReadersThatGoOnInTheOpenFile) {
    BScanParser parser;
    std::string open = "5;\n";
    fptrBSDL = fmemopen(open.data(), open.size(), "r");  // the parser closes it
    const Stream stream("attribute INSTRUCTION_LENGTH of X : entity is\nend;\n");
    EXPECT_EQ(parser.ReadEntity(stream, "entity X is;"), kOk);
    EXPECT_EQ(parser.GetInstructionRegisterDescription()->GetInstructionLength(), 5);
    EXPECT_EQ(parser.ReadAttribute(Stream("7;\n"), "attribute INSTRUCTION_LENGTH of X is"), kOk);
    EXPECT_EQ(parser.GetInstructionRegisterDescription()->GetInstructionLength(), 7);
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
    const std::string other = directory.Write("other.bsd", "entity OTHER is;\nend;\n");
    BScanParser second;
    {
        BScanParser first;
        ASSERT_EQ(first.Initialize(file.c_str(), ""), kOk);
        ASSERT_EQ(second.Initialize(other.c_str(), ""), kOk);
        EXPECT_EQ(first.Read(), kOk) << "it reads the file that is open";
        EXPECT_STREQ(first.GetComponentName(), "OTHER");
        ASSERT_EQ(first.Initialize(file.c_str(), ""), kOk);
        EXPECT_EQ(first.Read(), kOk) << "a second reading adds to the first";
        EXPECT_STREQ(first.GetComponentName(), "GOOD");
    }
    EXPECT_EQ(second.Read(), kFailed);
    EXPECT_EQ(std::filesystem::current_path(), working);
}

TEST(Parser, MayBeLeftByACancelledThread) {
    const TempDir directory;
    const std::string file = directory.Write("good.bsd", kGood);
    pthread_t thread{};
    const auto read = [](void* path) -> void* {
        BScanParser parser;
        pthread_cancel(pthread_self());  // takes effect where the thread might wait for the file
        parser.Initialize(static_cast<const char*>(path), nullptr);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, read, const_cast<char*>(file.c_str())), 0);
    void* end = nullptr;
    ASSERT_EQ(pthread_join(thread, &end), 0);
    EXPECT_EQ(end, PTHREAD_CANCELED);
}

TEST(Parser, AsksTheErrorHandlerOfAHostsResetForItsDirectory) {
    struct Host final : BScanParser {
        int Reset() override {
            BScanParser::Reset();
            GetErrorHandler()->SetDefaultDir("elsewhere");
            return result;
        }
        int result = kOk;
    };
    const TempDir directory;
    directory.Write("ErrorList.txt", "1 2 3 found\n");
    Host parser;
    const std::string file = directory.Write("good.bsd", kGood);
    ASSERT_EQ(parser.Initialize(file.c_str(), directory.Path("").c_str()), kOk);
    EXPECT_NE(parser.GetErrorHandler()->GetErrorElement(1, 2), nullptr);
    parser.result = -99;
    EXPECT_EQ(parser.Initialize(file.c_str(), ""), -99) << "what Reset says";
}

TEST(ResultCodes, AreWordedAlikeEverywhere) {
    for (const int code : {1, -12, -99}) EXPECT_STREQ(bscan::Describe(code), "unknown result");
    const std::regex row(R"(\| (-?\d+) \| (`\w+` \| )?([^|]*) \|.*)");
    for (const auto& [page, expected] : {std::pair("README.md", 26), {"docs/bsdl.md", 12}}) {
        std::istringstream lines(Contents(SourceDir() / page));
        int count = 0;
        std::smatch match;
        for (std::string line; std::getline(lines, line);) {
            if (!std::regex_match(line, match, row)) continue;
            EXPECT_EQ(match.str(3), bscan::Describe(std::stoi(match.str(1)))) << page;
            ++count;
        }
        EXPECT_EQ(count, expected) << page;
    }
}

TEST(Version, IsThatOfTheHeaders) {
    EXPECT_EQ(bscan::Version(), std::to_string(BSCAN_VERSION_MAJOR) + '.' +
                                    std::to_string(BSCAN_VERSION_MINOR) + '.' +
                                    std::to_string(BSCAN_VERSION_PATCH));
}

}  // namespace
}  // namespace bscan::test
