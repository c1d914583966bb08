// The operations on text in caller's buffers, the lists and the error list.

#include <bscan/text.h>

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <climits>

namespace bscan::test {
namespace {

TEST(Texts, AreSearchedAndCut) {
    LString s;
    EXPECT_EQ(s.Find(" end", "end"), 1);
    EXPECT_EQ(s.Find("END", "end"), -1);
    EXPECT_EQ(s.Find("a(b(c", '('), 1);
    EXPECT_EQ(s.FindOneOf("ab\tc d", " \t"), 2);
    EXPECT_EQ(s.ReverseFind("a(b(c", '('), 3);
    EXPECT_EQ(s.ReverseFindOneOf("ab\tc d", " \t"), 4);
    EXPECT_EQ(s.ReverseFindOneOf(nullptr, nullptr), -1);
    Text text(" \t\r\n\vx y\f \t\r\n");
    s.TrimLeft(text);
    s.TrimRight(text);
    EXPECT_STREQ(text, "\vx y\f");
    for (const auto& [count, left, right] :
         {std::tuple(-1, "", ""), {2, "ab", "ef"}, {INT_MAX, "abcdef", "abcdef"}}) {
        char out[16] = "abcdef";
        s.Left(out, out, count);
        EXPECT_STREQ(out, left);
        char overlapping[16] = "abcdef";
        s.Right(overlapping + 1, overlapping, count);
        s.Left(overlapping, nullptr, count);
        s.Right(overlapping + 1, nullptr, count);
        EXPECT_STREQ(overlapping + 1, right);
    }
}

TEST(Texts, AreCopiedAsFarAsTheCountGoes) {
    char out[16] = "previous";
    util_strncpy(out, "abcdef", 2, 0);
    EXPECT_STREQ(out, "ab");
    util_strncpy(out, Text("uvw"), 3, 0);
    util_strncat(out, "-", 0, 0);
    util_strncat(out, Text("xyz"), 0, 0);
    util_strncpy(out, static_cast<const char*>(nullptr), 0, 0);
    util_strncat(out, static_cast<const char*>(nullptr), 0, 0);
    EXPECT_STREQ(out, "uvw-xyz");
}

TEST(Texts, IgnoreTheCaseOfAsciiLettersAlone) {
    EXPECT_EQ(strcmpi(Text("Bc_1"), Text("bC_1")), 0);
    EXPECT_LT(stricmp("bypass", "IDCODE"), 0);
    EXPECT_LT(stricmp("IO", "io1"), 0);
    EXPECT_LT(stricmp("A_", "AB"), 0) << "letters count as lower case, which follow '_'";
    EXPECT_EQ(stricmp(nullptr, ""), 0);
    for (const char* other : {"@[", "`{", "\xC4\xE4"}) EXPECT_NE(stricmp("\xE4{", other), 0);
    EXPECT_EQ(strupr(nullptr), nullptr);
    char text[] = "aZz[`{09\xE4\xC4";
    EXPECT_STREQ(strupr(text), "AZZ[`{09\xE4\xC4");
    EXPECT_STREQ(strlwr(text), "azz[`{09\xE4\xC4");
}

TEST(Lists, GiveNothingOutsideTheirBounds) {
    LObject first;
    LObjList list;
    list.AddTail(&first);
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetAt(0), &first);
    for (const int index : {2, -1}) EXPECT_EQ(list.GetAt(index), nullptr);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_EQ(list.RemoveTail(), &first);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_TRUE(list.IsEmpty());
    LByteBuffer buffer;
    EXPECT_TRUE(buffer.WriteData(Text("ab"))->WriteData('\xFF'));
    EXPECT_EQ(buffer.GetTotalSize(), 3U);
    for (const int index : {3, -1}) EXPECT_EQ(buffer.ReadData(index), '\0');
}

TEST(ErrorList, IsReadLineByLineForMessages) {
    const TempDir directory;
    directory.Write(
        "ErrorList.txt",
        "\xEF\xBB\xBF# group number result message\n\n1 2 3 in line %d\r\n1 2 4 second of two\n"
        "65535\t0 65535 %d:%d %d %s%%\n65536 0 1 group too large\n7 -1 1 negative\n"
        "7 x 1 no number\n7 7\n9 9 9 without line end");
    const std::string file = directory.Write("good.bsd", "entity X is;\n\nend;\n");
    BScanParser parser;
    EXPECT_EQ(parser.ProcessException(1, 2, Text("x")), -1) << "no error handler";
    ASSERT_EQ(parser.Initialize(file.c_str(), directory.Path("").c_str()), kOk);
    ASSERT_EQ(parser.Read(), kOk);
    const Rows<int, unsigned, const char*, int, const char*> rows = {
        {7, 65535, "%s%n %d", -1, "\n%s%n %d\nXML Parser Error At Line 3, Column 0."},
        {7, 7, nullptr, -1, "\nXML Parser Error At Line 3, Column 0."},
        {7, 0, nullptr, -1, "\nXML Parser Error At Line 3, Column 0."},
        {0, 0, nullptr, -1, "\nXML Parser Error At Line 3, Column 0."},
        {1 + 65536, 2 + 65536, "x", 3, "\nx\nin line 3"},
        {-1, 0, nullptr, 65535, "\n3:0 %d %s%%"},
        {9, 9, "", 9, "\n\nwithout line end"}};
    ErrorHandler& errors = *parser.GetErrorHandler();
    for (const auto& [group, number, text, result, message] : rows) {
        SCOPED_TRACE(message);
        EXPECT_EQ(parser.ProcessException(group, number, Text(text)), result);
        EXPECT_STREQ(errors.GetError(errors.GetErrorCount() - 1), message);
    }
    EXPECT_EQ(errors.Initialize(Text("absent.txt"), 3), 0);
    EXPECT_EQ(parser.Reset(), kOk);
    EXPECT_EQ(parser.GetErrorHandler()->GetErrorCount(), 0);
    EXPECT_EQ(parser.ProcessException(1, 2, nullptr), -1) << "a fresh handler has no table";
    EXPECT_STREQ(parser.GetErrorHandler()->GetError(0), "\nXML Parser Error At Line 0, Column 0.");
    parser.ClearBuffers();
    EXPECT_EQ(parser.GetErrorHandler(), nullptr);
}

}  // namespace
}  // namespace bscan::test
