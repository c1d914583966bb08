// Lines, statements and string values, as they come from the stream.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <random>

namespace bscan::test {
namespace {

constexpr std::size_t kRoom = 1024;  // what the operations may write, terminator included

std::string Repeated(std::size_t count, char c) { return std::string(count, c); }

TEST(Lines, AreCutTrimmedAndCounted) {
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> lines;
        int end;
        int reads;
    } rows[] = {
        {"empty", "", {}, kReadFailed, 0},
        {"no line end at the end", "a\nb", {"a", "b"}, kEndOfFile, 2},
        {"comments and blank lines", "-- x\n \t\r\n\n", {}, kReadFailed, 3},
        {"comment at the end", "-- x", {}, kEndOfFile, 1},
        {"trimmed", " \tport (A: in bit; -- test\r\n", {"port (A: in bit;"}, kReadFailed, 1},
        {"254 and an end", Repeated(254, 'x') + "\ny", {Repeated(254, 'x'), "y"}, kEndOfFile, 3},
        {"300", Repeated(300, 'x'), {Repeated(254, 'x'), Repeated(46, 'x')}, kEndOfFile, 2},
        {"cut comment", "a" + Repeated(251, ' ') + "-- tail\n", {"a", "tail"}, kReadFailed, 2},
        {"dashes", Repeated(253, 'x') + "--y", {Repeated(253, 'x') + "-", "-y"}, kEndOfFile, 2},
        {"NUL ends a line's text", {"ab\0cd\n\0ef\ng", 11}, {"ab", "g"}, kEndOfFile, 3},
        {"CR alone is no line end", "a\rb\n", {"a\rb"}, kReadFailed, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Stream stream(row.text);
        BScanParser parser;
        Text line("unchanged");
        int result = kOk;
        std::vector<std::string> lines;
        while ((result = parser.GetLine(stream, line, nullptr)) == kOk) lines.push_back(+line);
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(result, row.end);
        EXPECT_EQ(parser.GetLineNumber(), row.reads);
        EXPECT_STREQ(line, lines.empty() ? "unchanged" : lines.back().c_str());
        EXPECT_EQ(parser.GetLine(stream, line, nullptr), kEndOfFile);
    }
}

TEST(Lines, CommentIsThatOfTheDeliveredLine) {
    const Stream stream("-- lost\nA -- kept -- twice \nB\nC --\n -- last\n");
    BScanParser parser;
    Text line("");
    Text comment("before");
    for (const std::string expected : {"A|-- kept -- twice*", "B|", "C|--*"}) {
        ASSERT_EQ(parser.GetLine(stream, line, comment), kOk);
        EXPECT_EQ(+line + std::string("|") + +comment, expected);
    }
    EXPECT_EQ(parser.GetLine(stream, line, comment), kReadFailed);
    EXPECT_STREQ(comment, "-- last*") << "a line that is read sets it, even when it is empty";
    Text untouched("before");
    EXPECT_EQ(parser.GetLine(stream, line, untouched), kEndOfFile);
    EXPECT_STREQ(untouched, "before");
}

TEST(Lines, AreTheSameHowMuchTheStreamReadsAhead) {
    const TempDir directory;
    std::mt19937 random(1149);
    std::string text;
    while (text.size() < 200'000) {
        // Some lines are nearly as long as a read, and some are longer.
        const std::size_t length = random() % 4 == 0 ? 240 + random() % 30 : random() % 60;
        static constexpr std::string_view kCharacters{"ab \t-- \r\0;", 10};
        for (std::size_t i = 0; i < length; ++i) text += kCharacters[random() % kCharacters.size()];
        text += random() % 16 == 0 ? "--\n\n" : "\n";
    }
    text.pop_back();
    const std::string path = directory.Write("lines", text);
    std::vector<std::string> expected;
    for (const std::size_t ahead : {0U, 100U, 300U, 4096U, 1U << 18}) {
        std::vector<char> buffer(ahead);
        FILE* const file = std::fopen(path.c_str(), "r");
        ASSERT_NE(file, nullptr);
        std::setvbuf(file, ahead == 0 ? nullptr : buffer.data(), ahead == 0 ? _IONBF : _IOFBF,
                     ahead);
        BScanParser parser;
        std::vector<std::string> lines;
        Text line("");
        Text comment("");
        int result = kOk;
        while ((result = parser.GetLine(file, line, comment)) == kOk) {
            lines.push_back(+line + std::string("|") + +comment + "|" +
                            std::to_string(parser.GetLineNumber()) + "@" +
                            std::to_string(std::ftell(file)));
        }
        EXPECT_EQ(result, kEndOfFile);
        EXPECT_NE(std::feof(file), 0);
        std::fclose(file);
        if (expected.empty()) expected = lines;
        EXPECT_TRUE(lines == expected) << ahead;
    }
    EXPECT_GT(expected.size(), 1000U);
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
    const struct {
        Complete complete;
        const char* statement;
        const char* stream;
        int result;
        const char* completed;
    } rows[] = {{kToEnd, "is 5;", "no\n", kOk, "is 5;"},
                {kToEnd, "A,", "B :\nin bit;\nnext;\n", kOk, "A, B :in bit;"},
                {kToEnd, "", "A;\n", kOk, " A;"},
                {kToEnd, "A", "-- ;\nB -- ;\nC;\n", kOk, "A BC;"},
                {kToEnd, "A", "B\n", kReadFailed, nullptr},
                {kToEnd, "A", "B", kEndOfFile, nullptr},
                {kToColon, "A;", "B:C\n", kOk, "A; B:C"},
                // "is" counts by itself at a line's end, and only in the new line.
                {kToIs, "A :", "entity is\n27;\nx is 8;\n", kOk, "A : entity is27;x is 8;"},
                {kToIs, "a", "is b\nc is d\n", kOk, "a is bc is d"},
                {kToOneOf, "A", "B\nC & D;\nE;\n", kOk, "A BC & D;"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stream);
        BScanParser parser;
        Text statement(row.statement);
        EXPECT_EQ(row.complete(parser, Stream(row.stream), statement), row.result);
        if (row.completed) {
            EXPECT_STREQ(statement, row.completed);
        }
    }
}

TEST(Statements, NeverOutgrowTheCallersBuffer) {
    std::string lines;
    for (int i = 0; i < 30; ++i) lines += Repeated(100, 'x') + "\n";
    const struct {
        std::string statement;
        std::string stream;
        int result;
    } rows[] = {{"A", lines + ";\n", kTextTooLong},
                {Repeated(kRoom - 4, 'a'), "b;\n", kOk},
                {Repeated(kRoom - 3, 'a'), "b;\n", kTextTooLong},
                {Repeated(kRoom - 1, 'a'), "b;\n", kTextTooLong},  // no room for the blank
                {Repeated(kRoom - 2, 'a') + ";", "b;\n", kOk}};
    const Complete to_text = [](auto& p, FILE* f, char* s) {
        return p.CompleteStatement(f, s, Text(";"));
    };
    for (const auto& row : rows) {
        for (const Complete& complete : {kToEnd, kToOneOf, to_text}) {
            SCOPED_TRACE(row.statement.size());
            BScanParser parser;
            std::string room(kRoom + 64, '~');  // with a guard behind it
            row.statement.copy(room.data(), kRoom);
            room[row.statement.size()] = '\0';
            EXPECT_EQ(complete(parser, Stream(row.stream), room.data()), row.result);
            EXPECT_EQ(room.substr(kRoom), Repeated(64, '~'));
            EXPECT_TRUE(row.result != kOk || room.find('\0') == kRoom - 1);
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
        LByteBuffer value;
        EXPECT_EQ(parser.GetCompleteStringValue(Stream(row.stream), Text(row.start), &value,
                                                row.comments),
                  row.result);
        std::string bytes;
        for (unsigned i = 0; i < value.GetTotalSize(); ++i) {
            bytes += value.ReadData(static_cast<int>(i));
        }
        EXPECT_EQ(bytes, row.value);
    }
}

TEST(StringValue, MayBeginWithMoreThanAStreamHolds) {
    const std::string start = Repeated(200'000, 'x') + "\" &";
    for (FILE* const stream : {static_cast<FILE*>(nullptr), std::fopen("/dev/null", "r")}) {
        BScanParser parser;
        LByteBuffer value;
        EXPECT_EQ(parser.GetCompleteStringValue(stream, Text(start), &value, true), kReadFailed);
        EXPECT_EQ(value.GetTotalSize(), 200'001U);
        if (stream != nullptr) std::fclose(stream);
    }
}

TEST(StringValue, NeedsABuffer) {
    BScanParser parser;
    const Stream unread("\"A\";\n");
    EXPECT_EQ(parser.GetCompleteStringValue(unread, Text(""), nullptr, false), kNoOutputBuffer);
    EXPECT_EQ(parser.GetLineNumber(), 0);
}

TEST(Characters, AreThoseOfAsciiText) {
    for (int code = 0; code < 256; ++code) {
        SCOPED_TRACE(code);
        const char c = static_cast<char>(code);
        const bool line_end = code == '\n' || code == '\r';
        const bool lower = code >= 'a' && code <= 'z';
        EXPECT_EQ(BScanParser::IsNewLine(c), line_end);
        EXPECT_EQ(BScanParser::IsWhiteSpace(c), line_end || code == ' ' || code == '\t');
        EXPECT_EQ(BScanParser::IsChar(c), line_end || code == '\t' || (code >= 32 && code <= 127));
        EXPECT_EQ(BScanParser::IsLetter(c), lower || (code >= 'A' && code <= 'Z'));
        EXPECT_EQ(BScanParser::IsDigit(c), code >= '0' && code <= '9');
    }
}

}  // namespace
}  // namespace bscan::test
