// The operations on text in caller's buffers, the lists and the error list.

#include "support/read_device.h"

#include <gtest/gtest.h>

namespace bscan::test {
namespace {

TEST(TextSearch, FindsPositionsOrMinusOne) {
    LString s;
    EXPECT_EQ(s.Find(" end", "end"), 1);
    EXPECT_EQ(s.Find("END", "end"), -1);
    EXPECT_EQ(s.Find("a(b(c", '('), 1);
    EXPECT_EQ(s.FindOneOf("ab\tc d", " \t"), 2);
    EXPECT_EQ(s.FindOneOf("ab", ""), -1);
    EXPECT_EQ(s.ReverseFind("a(b(c", '('), 3);
    EXPECT_EQ(s.ReverseFindOneOf("ab\tc d", " \t"), 4);
    const char* const none = nullptr;
    EXPECT_EQ(s.Find(none, "x"), -1);
    EXPECT_EQ(s.Find(none, 'x'), -1);
    EXPECT_EQ(s.FindOneOf("x", none), -1);
    EXPECT_EQ(s.ReverseFind(none, 'x'), -1);
    EXPECT_EQ(s.ReverseFindOneOf(none, none), -1);
}

TEST(Substring, CutsFromEitherEndAlsoInPlace) {
    const struct {
        int count;
        const char* left;
        const char* right;
    } rows[] = {{-1, "", ""},
                {2, "ab", "ef"},
                {6, "abcdef", "abcdef"},
                {INT32_MAX, "abcdef", "abcdef"},
                {INT32_MIN, "", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.count);
        LString s;
        char out[16] = "abcdef";
        s.Left(out, out, row.count);
        EXPECT_STREQ(out, row.left);
        char overlapping[16] = "abcdef";
        s.Right(overlapping + 1, overlapping, row.count);
        EXPECT_STREQ(overlapping + 1, row.right);
        s.Left(nullptr, out, row.count);
        s.Right(out, nullptr, row.count);
        EXPECT_STREQ(out, "");
    }
}

TEST(Copy, TrimsAndCopiesAllOrCountCharacters) {
    LString s;
    Text text(" \t\r\n\vx y\f \t\r\n");
    s.TrimLeft(text);
    s.TrimRight(text);
    s.TrimRight(nullptr);
    EXPECT_STREQ(text, "\vx y\f");
    char out[16] = "previous";
    util_strncpy(out, "abcdef", 2, 0);
    EXPECT_STREQ(out, "ab");
    util_strncpy(out, Text("uvw"), 3, 0);
    util_strncat(out, "-", 0, 0);
    util_strncat(out, Text("xyz"), 0, 0);
    util_strncat(nullptr, out, 0, 0);
    util_strncpy(nullptr, out, 0, 0);
    EXPECT_STREQ(out, "uvw-xyz");
}

TEST(LetterCase, IsThatOfAsciiAlone) {
    EXPECT_EQ(stricmp("inout", "INOUT"), 0);
    EXPECT_EQ(strcmpi(Text("Bc_1"), Text("bC_1")), 0);
    EXPECT_LT(stricmp("bypass", "IDCODE"), 0);
    EXPECT_LT(stricmp("IO", "io1"), 0);
    EXPECT_LT(stricmp("A_", "AB"), 0) << "letters count as lower case, which follow '_'";
    EXPECT_NE(stricmp("\xC4", "\xE4"), 0);
    EXPECT_EQ(stricmp(nullptr, ""), 0);
    EXPECT_EQ(strupr(nullptr), nullptr);
    char text[] = "aZ[09\xE4\xC4";
    EXPECT_STREQ(strupr(text), "AZ[09\xE4\xC4");
    EXPECT_STREQ(strlwr(text), "az[09\xE4\xC4");
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
    buffer.WriteData(Text("ab"))->WriteData(static_cast<char*>(nullptr));
    EXPECT_TRUE(buffer.WriteData('\xFF'));
    ASSERT_EQ(buffer.GetTotalSize(), 3U);
    EXPECT_EQ(buffer.ReadData(2), '\xFF');
    for (const int index : {3, -1}) EXPECT_EQ(buffer.ReadData(index), '\0');
}

TEST(ErrorList, IsReadLineByLine) {
    const TempDir directory;
    directory.Write("ErrorList.txt",
                    "# group number result message\n\n1 2 3 first of two\r\n1 2 4 second of two\n"
                    "65535\t0 65535 limits\n65536 0 1 group too large\n7 -1 1 negative\n"
                    "7 x 1 no number\n7 7\n8 8 9 100%% of %s: %d, %d, %d\n9 9 9 without line end");
    ErrorHandler handler;
    handler.SetDefaultDir(directory.Path("").c_str());
    EXPECT_EQ(handler.Initialize(Text("absent.txt"), 3), 0);
    EXPECT_EQ(handler.GetErrorElement(1, 2), nullptr);
    ASSERT_EQ(handler.Initialize(Text("ErrorList.txt"), 3), 0);
    const struct {
        unsigned short group;
        unsigned short number;
        int result;
        const char* message;  // null for no element
    } rows[] = {{1, 2, 3, "first of two"},
                {65535, 0, 65535, "limits"},
                {0, 0, 0, nullptr},
                {7, 65535, 0, nullptr},
                {7, 7, 0, nullptr},
                {7, 0, 0, nullptr},
                {8, 8, 9, "100%% of %s: %d, %d, %d"},
                {9, 9, 9, "without line end"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.group);
        ErrorElement* const element = handler.GetErrorElement(row.group, row.number);
        EXPECT_EQ(element ? element->GetResult() : 0, row.result);
        EXPECT_STREQ(element ? element->GetErrorMessage() : nullptr, row.message);
    }
}

}  // namespace
}  // namespace bscan::test
