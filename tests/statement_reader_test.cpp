// Lines, statements and string values, as they come from the stream.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <functional>

namespace bscan::test {
namespace {

constexpr std::size_t kRoom = 1024;  // what the operations may write, terminator included

std::string Repeated(std::size_t count, char c) { return std::string(count, c); }

TEST(Lines, AreCutTrimmedAndCounted) {
    const Rows<std::string, std::string, int, int> rows = {
        {"", "", kReadFailed, 0},
        {"a\nb", "a|/b|/", kEndOfFile, 2},
        {"-- x\n \t\r\n\n", "", kReadFailed, 3},
        {"-- x", "", kEndOfFile, 1},
        {"-- lost\nA -- kept -- twice \nB\nC --\n", "A|-- kept -- twice*/B|/C|--*/", kReadFailed,
         4},
        {" \tport (A: in bit; -- test\r\n", "port (A: in bit;|-- test*/", kReadFailed, 1},
        {Repeated(254, 'x') + "\ny", Repeated(254, 'x') + "|/y|/", kEndOfFile, 3},
        {"a" + Repeated(251, ' ') + "-- tail\n", "a|--*/tail|/", kReadFailed, 2},
        {Repeated(253, 'x') + "--y", Repeated(253, 'x') + "-|/-y|/", kEndOfFile, 2},
        {{"ab\0cd\n\0ef\ng", 11}, "ab|/g|/", kEndOfFile, 3},  // NUL ends a line's text
        {"a\rb\n", "a\rb|/", kReadFailed, 1}};
    for (const auto& [text, expected, end, reads] : rows) {
        SCOPED_TRACE(text);
        const Stream stream(text);
        BScanParser parser;
        Text line("unchanged");
        Text comment("");
        int result = kOk;
        std::string lines;
        while ((result = parser.GetLine(stream, line, comment)) == kOk) {
            lines += +line + std::string("|") + +comment + "/";
        }
        EXPECT_EQ(lines, expected);
        EXPECT_EQ(result, end);
        EXPECT_EQ(parser.GetLineNumber(), reads);
        EXPECT_TRUE(!lines.empty() || +line == std::string("unchanged"));
        EXPECT_EQ(parser.GetLine(stream, line, nullptr), kEndOfFile);
    }
}

using Complete = std::function<int(BScanParser&, FILE*, char*)>;
const Complete kToEnd = [](auto& p, FILE* f, char* s) { return p.CompleteStatement(f, s); };
const Complete kToColon = [](auto& p, FILE* f, char* s) { return p.CompleteStatement(f, s, ':'); };
const Complete kToIs = [](auto& p, FILE* f, char* s) {
    return p.CompleteStatement(f, s, Text(" is "));
};
const Complete kToOneOf = [](auto& p, FILE* f, char* s) {
    return p.CompleteStatementWithOneOf(f, s, Text("&;"));
};

TEST(Statements, AreCompletedByWholeLines) {
    std::string endless;
    for (int i = 0; i < 30; ++i) endless += Repeated(100, 'x') + "\n";
    const std::string full = Repeated(kRoom - 4, 'a');
    const struct {
        Complete complete;
        std::string statement;
        std::string stream;
        int result;
        std::string completed = "";  // empty for any
    } rows[] = {{kToEnd, "is 5;", "no\n", kOk, "is 5;"},
                {kToEnd, "A,", "B :\nin bit;\nnext;\n", kOk, "A, B :in bit;"},
                {kToEnd, "", "A;\n", kOk, " A;"},
                {kToEnd, "A", "-- ;\nB -- ;\nC;\n", kOk, "A BC;"},
                {kToEnd, "A", "B\n", kReadFailed},
                {kToEnd, "A", "B", kEndOfFile},
                {kToColon, "A;", "B:C\n", kOk, "A; B:C"},
                // "is" counts by itself at a line's end, and only in the new line.
                {kToIs, "A :", "entity is\n27;\nx is 8;\n", kOk, "A : entity is27;x is 8;"},
                {kToIs, "a", "is b\nc is d\n", kOk, "a is bc is d"},
                {kToOneOf, "A", "B\nC & D;\nE;\n", kOk, "A BC & D;"},
                // They never outgrow the caller's buffer.
                {kToEnd, "A", endless + ";\n", kTextTooLong},
                {kToOneOf, "A", endless + ";\n", kTextTooLong},
                {kToIs, "A", endless + " is 5\n", kTextTooLong},
                {kToEnd, full, "b;\n", kOk, full + " b;"},
                {kToEnd, full + "a", "b;\n", kTextTooLong},
                {kToOneOf, full + "aaa", "b;\n", kTextTooLong},  // no room for the blank
                {kToEnd, full + "aa;", "b;\n", kOk, full + "aa;"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stream);
        BScanParser parser;
        std::string room(kRoom + 64, '~');  // with a guard behind it
        room.replace(0, row.statement.size() + 1, row.statement.c_str(), row.statement.size() + 1);
        EXPECT_EQ(row.complete(parser, Stream(row.stream), room.data()), row.result);
        EXPECT_EQ(room.substr(kRoom), Repeated(64, '~'));
        EXPECT_LT(room.find('\0'), kRoom);
        if (!row.completed.empty()) {
            EXPECT_EQ(room.c_str(), row.completed);
        }
    }
}

TEST(StringValue, IsGatheredFromQuotedPieces) {
    const struct {
        const char* start;
        const char* stream;
        int result;
        const char* value;
        bool comments = false;
    } rows[] = {{"", "\"A:1, \" &\n\"B:2, \" &\n\"C:3\";\n", kOk, "A:1, B:2, C:3 "},
                {"A:1, B:2\";", "", kOk, "A:1, B:2"},
                {"A:1,\"", "&\n\"B\";\n", kOk, "A:1, B "},
                {"A:1,\"", ";\n", kOk, "A:1,"},
                {"", "\"A\" & \"B\" &\n\"C\";\n", kOk, "A C "},
                {"", "\"A;B\";\n\"C\";\n", kOk, "A;B C "},
                {"", "; \"A\";\n\"B\";\n", kOk, "A B "},  // its line has another ';' before
                {"", "; \"A\"\n&\n\"B\";\n", kOk, "A B "},
                {"", "\"A\" & -- one\n\"B\";-- two\n", kOk, "A B "},
                {"", "\"A\" & -- 1\n-- x\n\"B\";-- 2\n", kOk, "A -- 1* B -- 2* ", true},
                {"", "\"A:1,\nB:2\";\n\"C\";\n", kOk, "A:1, B:2 "},
                {"", "\"A,\"\n\"B\";\n\"C\";\n", kOk, "A, "},  // without ampersand
                {"", "\"\nA\" &\n\"B\";\n", kOk, " A B "},     // the blank that joins lines stays
                {"", "\"A\" &\n\"B\" &\n", kReadFailed, "A B "},
                {"", "\"A\" &\n\"B\"", kEndOfFile, "A "},
                {"A", "B\n", kReadFailed, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.start) + '|' + row.stream);
        BScanParser parser;
        const Stream stream(row.stream);
        LByteBuffer value;
        EXPECT_EQ(parser.GetCompleteStringValue(stream, Text(row.start), nullptr, row.comments),
                  kNoOutputBuffer);
        EXPECT_EQ(parser.GetCompleteStringValue(stream, Text(row.start), &value, row.comments),
                  row.result);
        std::string bytes;
        for (int i = 0; value.ReadData(i) != '\0'; ++i) bytes += value.ReadData(i);
        EXPECT_EQ(bytes, row.value);
    }
}

TEST(Characters, AreThoseOfAsciiText) {
    const auto count = [](bool (*is_in)(char)) {
        int members = 0;
        for (int code = 0; code < 256; ++code) members += is_in(static_cast<char>(code));
        return members;
    };
    EXPECT_TRUE(BScanParser::IsNewLine('\r') && count(BScanParser::IsNewLine) == 2);
    EXPECT_TRUE(BScanParser::IsWhiteSpace('\t') && count(BScanParser::IsWhiteSpace) == 4);
    EXPECT_TRUE(BScanParser::IsDigit('9') && count(BScanParser::IsDigit) == 10);
    EXPECT_TRUE(BScanParser::IsLetter('Z') && count(BScanParser::IsLetter) == 52);
    EXPECT_TRUE(BScanParser::IsChar('\x7F') && count(BScanParser::IsChar) == 99);
}

}  // namespace
}  // namespace bscan::test
