// Lines, statements and string values, as they come from the stream.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

namespace bscan::test {
namespace {

constexpr std::size_t kRoom = 1024;  // what the operations may write, terminator included

/// A buffer of the promised size with a guard behind it.
struct Buffer {
    explicit Buffer(std::string_view text = "") {
        std::memset(bytes, '~', sizeof bytes);
        text.copy(bytes, text.size());
        bytes[text.size()] = '\0';
    }
    bool GuardIntact() const {
        return std::all_of(bytes + kRoom, bytes + sizeof bytes, [](char c) { return c == '~'; });
    }
    char bytes[kRoom + 64];
};

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
        {"line end at the end", "a\n", {"a"}, kReadFailed, 1},
        {"no line end at the end", "a\nb", {"a", "b"}, kEndOfFile, 2},
        {"comments and blank lines", "-- x\n \t\r\n\n", {}, kReadFailed, 3},
        {"comment at the end", "-- x", {}, kEndOfFile, 1},
        {"trimmed",
         " \tport (TDI: in bit; -- test data in\r\n",
         {"port (TDI: in bit;"},
         kReadFailed,
         1},
        {"comment in a string", "x \"a--b\";\n", {"x \"a"}, kReadFailed, 1},
        {"one dash", "a - b\n", {"a - b"}, kReadFailed, 1},
        {"254 and a line end",
         Repeated(254, 'x') + "\ny\n",
         {Repeated(254, 'x'), "y"},
         kReadFailed,
         3},
        {"300 characters",
         Repeated(300, 'x') + "\n",
         {Repeated(254, 'x'), Repeated(46, 'x')},
         kReadFailed,
         2},
        {"comment over the cut",
         "a" + Repeated(251, ' ') + "-- tail\n",
         {"a", "tail"},
         kReadFailed,
         2},
        {"dashes on both sides of the cut",
         Repeated(253, 'x') + "--y\n",
         {Repeated(253, 'x') + "-", "-y"},
         kReadFailed,
         2},
        {"NUL ends a line's text", std::string("ab\0cd\n\0ef\ng", 11), {"ab", "g"}, kEndOfFile, 3},
        {"CR alone is no line end", "a\rb\n", {"a\rb"}, kReadFailed, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Stream stream(row.text);
        BScanParser parser;
        char line[kRoom] = "unchanged";
        int result = kOk;
        std::vector<std::string> lines;
        while ((result = parser.GetLine(stream, line, nullptr)) == kOk) lines.push_back(line);
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(result, row.end);
        EXPECT_EQ(parser.GetLineNumber(), row.reads);
        EXPECT_STREQ(line, lines.empty() ? "unchanged" : lines.back().c_str());
        EXPECT_EQ(parser.GetLine(stream, line, nullptr), kEndOfFile);
    }
}

TEST(Lines, CommentIsThatOfTheDeliveredLine) {
    const Stream stream("-- lost\nA -- kept -- twice \nB\nC --\n");
    const std::pair<const char*, const char*> expected[] = {
        {"A", "-- kept -- twice*"}, {"B", ""}, {"C", "--*"}};
    BScanParser parser;
    for (const auto& [line, comment] : expected) {
        char text[kRoom];
        char remark[kRoom] = "before";
        ASSERT_EQ(parser.GetLine(stream, text, remark), kOk);
        EXPECT_STREQ(text, line);
        EXPECT_STREQ(remark, comment);
    }
}

using Complete = std::function<int(BScanParser&, FILE*, char*)>;

int ToSemicolon(BScanParser& parser, FILE* file, char* statement) {
    return parser.CompleteStatement(file, statement);
}
int ToColon(BScanParser& parser, FILE* file, char* statement) {
    return parser.CompleteStatement(file, statement, ':');
}
int ToIs(BScanParser& parser, FILE* file, char* statement) {
    return parser.CompleteStatement(file, statement, Text(" is "));
}
int ToOneOf(BScanParser& parser, FILE* file, char* statement) {
    return parser.CompleteStatementWithOneOf(file, statement, Text("&;"));
}

TEST(Statements, AreCompletedByWholeLines) {
    const struct {
        const char* name;
        Complete complete;
        const char* statement;
        const char* stream;
        int result;
        const char* completed;
    } rows[] = {
        {"complete already", ToSemicolon, "attribute X of Y : entity is 5;", "no\n", kOk,
         "attribute X of Y : entity is 5;"},
        {"joined", ToSemicolon, "A,", "B :\nin bit;\nnext;\n", kOk, "A, B :in bit;"},
        {"behind the terminator", ToSemicolon, "A", "B; C\n", kOk, "A B; C"},
        {"empty statement", ToSemicolon, "", "A;\n", kOk, " A;"},
        {"comments skipped", ToSemicolon, "A", "-- ;\nB -- ;\nC;\n", kOk, "A BC;"},
        {"end", ToSemicolon, "A", "B\n", kReadFailed, nullptr},
        {"end without line end", ToSemicolon, "A", "B", kEndOfFile, nullptr},
        {"character", ToColon, "A;", "B:C\n", kOk, "A; B:C"},
        {"is by itself at a line's end", ToIs, "attribute X :", "entity is\n27;\nx is 8;\n", kOk,
         "attribute X : entity is27;x is 8;"},
        {"only the new line is looked at", ToIs, "a", "is b\nc is d\n", kOk, "a is bc is d"},
        {"one of", ToOneOf, "A", "B\nC & D;\nE;\n", kOk, "A BC & D;"},
        {"one of, complete", ToOneOf, "A;", "B&\n", kOk, "A;"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Stream stream(row.stream);
        BScanParser parser;
        Buffer statement(row.statement);
        EXPECT_EQ(row.complete(parser, stream, statement.bytes), row.result);
        if (row.completed) {
            EXPECT_STREQ(statement.bytes, row.completed);
        }
    }
}

TEST(Statements, NeverOutgrowTheCallersBuffer) {
    const std::string line = Repeated(100, 'x') + "\n";
    std::string lines;
    for (int i = 0; i < 30; ++i) lines += line;
    const struct {
        const char* name;
        std::string statement;
        std::string stream;
        int result;
        std::size_t length;
    } rows[] = {
        {"long", "A", lines + ";\n", kTextTooLong, 0},
        {"last that fits", Repeated(kRoom - 4, 'a'), "b;\n", kOk, kRoom - 1},
        {"first that does not", Repeated(kRoom - 3, 'a'), "b;\n", kTextTooLong, 0},
        {"no room for the blank", Repeated(kRoom - 1, 'a'), "b;\n", kTextTooLong, 0},
        {"full and complete", Repeated(kRoom - 2, 'a') + ";", "b;\n", kOk, kRoom - 1},
    };
    const Complete completions[] = {
        ToSemicolon, ToOneOf,
        [](BScanParser& p, FILE* f, char* s) { return p.CompleteStatement(f, s, ';'); },
        [](BScanParser& p, FILE* f, char* s) { return p.CompleteStatement(f, s, Text(";")); }};
    for (const auto& row : rows) {
        for (const Complete& complete : completions) {
            SCOPED_TRACE(row.name);
            const Stream stream(row.stream);
            BScanParser parser;
            Buffer statement(row.statement);
            EXPECT_EQ(complete(parser, stream, statement.bytes), row.result);
            EXPECT_TRUE(statement.GuardIntact());
            const std::string_view text(statement.bytes, strnlen(statement.bytes, kRoom));
            EXPECT_LT(text.size(), kRoom) << "not terminated";
            EXPECT_EQ(text.substr(0, row.statement.size()), row.statement);
            if (row.result == kOk) {
                EXPECT_EQ(text.size(), row.length);
            }
        }
    }
}

std::string Bytes(LByteBuffer& buffer) {
    std::string bytes;
    for (unsigned i = 0; i < buffer.GetTotalSize(); ++i)
        bytes += buffer.ReadData(static_cast<int>(i));
    return bytes;
}

TEST(StringValue, IsGatheredFromQuotedPieces) {
    const char* const three = "\"A:1, \" &\n\"B:2, \" &\n\"C:3\";\n";
    const struct {
        const char* name;
        const char* start;
        const char* stream;
        bool comments;
        int result;
        const char* value;
    } rows[] = {
        {"three lines", "", three, false, kOk, "A:1, B:2, C:3 "},
        {"first piece on the first line", "A:1, \" &", "\"B:2, \" &\n\"C:3\";\n", false, kOk,
         "A:1, B:2, C:3 "},
        {"one line", "A:1, B:2\";", "", false, kOk, "A:1, B:2"},
        {"one line, blank behind", "A:1\"; ", "\"B\";\n", false, kOk, "A:1 B "},
        {"ampersand on the next line", "A:1,\"", "&\n\"B\";\n", false, kOk, "A:1, B "},
        {"start ended by the next line", "A:1,\"", ";\n", false, kOk, "A:1,"},
        {"no second piece of a line", "", "\"A\" & \"B\" &\n\"C\";\n", false, kOk, "A C "},
        {"line without quotes", "", "foo &\n\"C\";\n", false, kOk, " C "},
        {"semicolon inside", "", "\"A;B\";\n\"C\";\n", false, kOk, "A;B C "},
        {"comments dropped", "", "\"A\" & -- one\n\"B\";-- two\n", false, kOk, "A B "},
        {"comments kept", "", "\"A, \" & -- one\n-- alone\n\"B\";-- two\n", true, kOk,
         "A, -- one* B -- two* "},
        {"piece ended by the next line", "", "\"A:1,\nB:2\";\n\"C\";\n", false, kOk, "A:1, B:2 "},
        {"ampersand missing", "", "\"A,\"\n\"B\";\n\"C\";\n", false, kOk, "A, "},
        {"end of file", "", "\"A\" &\n\"B\" &\n", false, kReadFailed, "A B "},
        {"end in a piece", "", "\"A\" &\n\"B\"", false, kEndOfFile, "A "},
        {"end in the start", "A", "B\n", false, kReadFailed, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Stream stream(row.stream);
        BScanParser parser;
        LByteBuffer value;
        EXPECT_EQ(parser.GetCompleteStringValue(stream, Text(row.start), &value, row.comments),
                  row.result);
        EXPECT_EQ(Bytes(value), row.value);
    }
}

TEST(StringValue, NeedsABufferAndGrowsBeyondAnyLine) {
    BScanParser parser;
    const Stream unread("\"A\";\n");
    EXPECT_EQ(parser.GetCompleteStringValue(unread, Text(""), nullptr, false), kNoOutputBuffer);
    EXPECT_EQ(parser.GetLineNumber(), 0);

    std::string text;
    for (int i = 0; i < 2000; ++i) text += "\"0123456789\" &\n";
    const Stream stream(text + "\"end\";\n");
    LByteBuffer value;
    EXPECT_EQ(parser.GetCompleteStringValue(stream, Text(""), &value, false), kOk);
    EXPECT_EQ(value.GetTotalSize(), 2000U * 11 + 4);
}

TEST(Characters, AreThoseOfAsciiText) {
    for (int code = 0; code < 256; ++code) {
        SCOPED_TRACE(code);
        const char c = static_cast<char>(code);
        const bool line_end = code == '\n' || code == '\r';
        const bool upper = code >= 'A' && code <= 'Z';
        const bool lower = code >= 'a' && code <= 'z';
        EXPECT_EQ(BScanParser::IsNewLine(c), line_end);
        EXPECT_EQ(BScanParser::IsWhiteSpace(c), line_end || code == ' ' || code == '\t');
        EXPECT_EQ(BScanParser::IsChar(c), line_end || code == '\t' || (code >= 32 && code <= 127));
        EXPECT_EQ(BScanParser::IsLetter(c), upper || lower);
        EXPECT_EQ(BScanParser::IsDigit(c), code >= '0' && code <= '9');
    }
}

}  // namespace
}  // namespace bscan::test
