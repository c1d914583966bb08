// The operations on text in caller's buffers, the lists and the error handler.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

TEST(TextSearch, FindsPositionsOrMinusOne) {
    LString s;
    EXPECT_EQ(s.Find("endpoint", "end"), 0);
    EXPECT_EQ(s.Find(" end", "end"), 1);
    EXPECT_EQ(s.Find("END", "end"), -1);
    EXPECT_EQ(s.Find("", "x"), -1);
    EXPECT_EQ(s.Find("a(b(c", '('), 1);
    EXPECT_EQ(s.Find("abc", '('), -1);
    EXPECT_EQ(s.FindOneOf("ab\tc d", " \t"), 2);
    EXPECT_EQ(s.FindOneOf("ab", ""), -1);
    EXPECT_EQ(s.ReverseFind("a(b(c", '('), 3);
    EXPECT_EQ(s.ReverseFind("abc", '('), -1);
    EXPECT_EQ(s.ReverseFindOneOf("ab\tc d", " \t"), 4);
    EXPECT_EQ(s.ReverseFindOneOf("abc", " \t"), -1);
}

TEST(Substring, CutsFromEitherEndAlsoInPlace) {
    const struct {
        int count;
        const char* left;
        const char* right;
    } rows[] = {{-1, "", ""},
                {0, "", ""},
                {2, "ab", "ef"},
                {6, "abcdef", "abcdef"},
                {7, "abcdef", "abcdef"},
                {INT32_MAX, "abcdef", "abcdef"},
                {INT32_MIN, "", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.count);
        LString s;
        char out[16] = "previous";
        s.Left(out, "abcdef", row.count);
        EXPECT_STREQ(out, row.left);
        s.Right(out, "abcdef", row.count);
        EXPECT_STREQ(out, row.right);
        char left[] = "abcdef";
        s.Left(left, left, row.count);
        EXPECT_STREQ(left, row.left);
        char right[] = "abcdef";
        s.Right(right, right, row.count);
        EXPECT_STREQ(right, row.right);
        char overlapping[16] = "abcdef";
        s.Right(overlapping + 1, overlapping, row.count);
        EXPECT_STREQ(overlapping + 1, row.right);
    }
}

TEST(Trim, RemovesBlanksTabsAndLineEnds) {
    const struct {
        const char* text;
        const char* left;
        const char* right;
    } rows[] = {{"abc;\r\n", "abc;\r\n", "abc;"},
                {" \t\r\n x y", "x y", " \t\r\n x y"},
                {" \t\r\n", "", ""},
                {"", "", ""},
                {"\v\fx\v", "\v\fx\v", "\v\fx\v"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        LString s;
        Text left(row.text);
        s.TrimLeft(left);
        EXPECT_STREQ(left, row.left);
        Text right(row.text);
        s.TrimRight(right);
        EXPECT_STREQ(right, row.right);
    }
}

TEST(Copy, CopiesAllOrCountCharacters) {
    char out[16] = "previous";
    util_strncpy(out, "abcdef", 2, 0);
    EXPECT_STREQ(out, "ab");
    util_strncpy(out, Text("uvw"), 3, 0);
    util_strncat(out, "-", 0, 0);
    util_strncat(out, Text("xyz"), 0, 0);
    EXPECT_STREQ(out, "uvw-xyz");
    util_strncpy(out, "abc", 0, 0);
    EXPECT_STREQ(out, "abc");
}

TEST(LetterCase, IsThatOfAsciiAlone) {
    EXPECT_EQ(stricmp("inout", "INOUT"), 0);
    EXPECT_EQ(strcmpi(Text("Bc_1"), Text("bC_1")), 0);
    EXPECT_LT(stricmp("bypass", "IDCODE"), 0);
    EXPECT_GT(stricmp("IDCODE", "bypass"), 0);
    EXPECT_LT(stricmp("IO", "io1"), 0);
    EXPECT_LT(stricmp("A_", "AB"), 0) << "letters count as lower case, which follow '_'";
    EXPECT_NE(stricmp("\xC4", "\xE4"), 0);
    EXPECT_EQ(stricmp(nullptr, ""), 0);
    char text[] = "aZ[09\xE4\xC4";
    EXPECT_EQ(strupr(text), text);
    EXPECT_STREQ(text, "AZ[09\xE4\xC4");
    EXPECT_EQ(strlwr(text), text);
    EXPECT_STREQ(text, "az[09\xE4\xC4");
}

TEST(Lists, GiveNothingOutsideTheirBounds) {
    LObject first;
    LObjList list;
    EXPECT_EQ(list.RemoveTail(), nullptr);
    list.AddTail(&first);
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetAt(0), &first);
    EXPECT_EQ(list.GetAt(2), nullptr);
    EXPECT_EQ(list.GetAt(-1), nullptr);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_EQ(list.RemoveTail(), &first);
    EXPECT_TRUE(list.IsEmpty());
    LByteBuffer buffer;
    EXPECT_EQ(buffer.WriteData(Text("ab")), &buffer);
    EXPECT_EQ(buffer.WriteData(static_cast<char*>(nullptr)), &buffer);
    EXPECT_TRUE(buffer.WriteData('\xFF'));
    ASSERT_EQ(buffer.GetTotalSize(), 3U);
    EXPECT_EQ(buffer.ReadData(2), '\xFF');
    EXPECT_EQ(buffer.ReadData(3), '\0');
    EXPECT_EQ(buffer.ReadData(-1), '\0');
}

TEST(ErrorList, IsReadLineByLine) {
    const TempDir directory;
    directory.Write("ErrorList.txt",
                    "# group number result message\n"
                    "\n"
                    "1 2 3 first of two\r\n"
                    "1 2 4 second of two\n"
                    "65535\t0 65535 limits\n"
                    "65536 0 1 group too large\n"
                    "7 -1 1 negative\n"
                    "7 x 1 no number\n"
                    "7 7\n"
                    "8 8 9 100%% of %s: %d, %d, %d\n"
                    "9 9 9 without line end");
    ErrorHandler handler;
    handler.SetDefaultDir(directory.Path("").c_str());
    EXPECT_EQ(handler.Initialize(Text("absent.txt"), 3), 0);
    EXPECT_EQ(handler.GetErrorElement(1, 2), nullptr);
    ASSERT_EQ(handler.Initialize(Text("ErrorList.txt"), 3), 0);
    const struct {
        unsigned short group;
        unsigned short number;
        int result;  // negative for no element
        const char* message;
    } rows[] = {{1, 2, 3, "first of two"},
                {65535, 0, 65535, "limits"},
                {0, 0, -1, nullptr},
                {7, 65535, -1, nullptr},
                {7, 7, -1, nullptr},
                {7, 0, -1, nullptr},
                {8, 8, 9, "100%% of %s: %d, %d, %d"},
                {9, 9, 9, "without line end"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.group << ' ' << row.number);
        ErrorElement* element = handler.GetErrorElement(row.group, row.number);
        ASSERT_EQ(element != nullptr, row.result >= 0);
        if (!element) continue;
        EXPECT_EQ(element->GetResult(), row.result);
        EXPECT_STREQ(element->GetErrorMessage(), row.message);
    }
}

}  // namespace
}  // namespace bscan::test
