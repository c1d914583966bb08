// What searches and compares many characters at a time, against loops over single ones.

#include <bscan/detail/name.h>

#include "support/keyword.h"
#include "support/name_table.h"
#include "support/search.h"
#include "support/text_view.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace bscan::detail;

// Texts from few characters, so that all of them meet. Each fills an allocation of its own, so that
// a sanitizer sees a look behind it.
class Texts {
public:
    // Valid until the next one.
    std::string_view Next(std::size_t length) {
        static constexpr std::string_view kCharacters = "aAzZ@[`{(),-\" \t09_\x80\xE1";
        text_ = std::make_unique<char[]>(length);
        for (std::size_t i = 0; i < length; ++i) {
            text_[i] = kCharacters[random_() % kCharacters.size()];
        }
        return {text_.get(), length};
    }

private:
    std::mt19937 random_{1149};
    std::unique_ptr<char[]> text_;
};

constexpr std::size_t kLengths = 200;

TEST(Search, FindsWhatALoopFinds) {
    Texts texts;
    for (std::size_t length = 0; length < kLengths; ++length) {
        const std::string_view text = texts.Next(length);
        EXPECT_EQ(Find(text, '('), text.find('(')) << text;
        EXPECT_EQ(Find(text, ' ', '\t'), text.find_first_of(" \t")) << text;
        EXPECT_EQ(Find(text, '#'), std::string::npos) << text;
    }
}

TEST(Search, WalksOverEveryPlaceFromAnyPosition) {
    Texts texts;
    for (std::size_t length = 0; length < kLengths; ++length) {
        const std::string_view text = texts.Next(length);
        for (std::size_t from = 0; from <= length; from += 7) {
            Marks<'(', ')'> marks(text);
            marks.SkipTo(from);
            std::size_t sought = from;
            while ((sought = text.find_first_of("()", sought)) != std::string::npos) {
                ASSERT_EQ(marks.Next(), sought++) << text << " from " << from;
            }
            ASSERT_EQ(marks.Next(), marks.kNone) << text << " from " << from;
        }
    }
}

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

TEST(LetterCase, IsIgnoredForLettersAlone) {
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            const char left = static_cast<char>(a);
            const char right = static_cast<char>(b);
            const bool equal = Upper(left) == Upper(right);
            for (const std::size_t length : {1U, 3U, 6U, 8U, 13U}) {
                std::string one(length, 'x');
                std::string other(length, 'X');
                one[length / 2] = left;
                other[length / 2] = right;
                ASSERT_EQ(EqualIgnoringCase(one, other), equal) << a << ' ' << b << ' ' << length;
            }
        }
        const std::string text = std::string(9, 'A') + static_cast<char>(a);
        EXPECT_EQ(IsUpperCase(text), a < 'a' || a > 'z') << a;
    }
    EXPECT_FALSE(EqualIgnoringCase("abc", "abcd"));
}

TEST(Keywords, AreFoundWholeInAnyCase) {
    static constexpr Keyword<int> kWords[] = {
        {"X", 1}, {"AA", 2}, {"AAA", 3}, {"OBSERVER", 4}, {"OBSERVE_ONLY", 5}, {"OBSERVE_NOT", 6}};
    const std::pair<const char*, int> rows[] = {
        {"x", 1},          {"aa", 2},          {"aaa", 3},          {"aaaa", 0},
        {"", 0},           {"Observer", 4},    {"observe_ONLY", 5}, {"observe_not", 6},
        {"observe_on", 0}, {"observe_onlx", 0}};
    for (const auto& [text, expected] : rows) {
        int value = 0;
        EXPECT_EQ(Keyword<int>::Find(kWords, text, value), expected != 0) << text;
        EXPECT_EQ(value, expected) << text;
    }
}

TEST(Numbers, SaturateAndIgnoreWhatFollows) {
    const std::pair<const char*, std::int32_t> rows[] = {
        {"", 0},
        {" \v\f+12x", 12},
        {"-7", -7},
        {"--7", 0},
        {"2147483648", std::numeric_limits<std::int32_t>::min()},
        {"000000000000000000000000000042", 42},
        {"9223372036854775806", -2},
        {"9223372036854775808", -1},
        {"99999999999999999999999999", -1},
        {"-9223372036854775807", 1},
        {"-99999999999999999999999999", 0}};
    for (const auto& [text, expected] : rows) EXPECT_EQ(DecimalValue(text), expected) << text;
}

TEST(Names, AreNumberedAsTheyCome) {
    Texts texts;
    NameTable table;
    std::map<std::string, int> numbers;
    for (std::size_t i = 0; i < 5000; ++i) {
        const std::string_view name = texts.Next(i % 13);
        const auto expected = static_cast<int>(numbers.size());
        const auto [entry, is_new] = numbers.emplace(name, expected);
        EXPECT_EQ(table.Find(name), is_new ? NameTable::kNone : entry->second) << name;
        EXPECT_EQ(table.Add(name), entry->second) << name;
        if (i == 1000) table.Reserve(3000);
    }
    for (const auto& [name, number] : numbers) EXPECT_EQ(table.Find(name), number) << name;
}

TEST(Names, AreKeptWhateverTheirLength) {
    Name name;
    EXPECT_FALSE(name.IsSet());
    EXPECT_EQ(name.Text(), nullptr);
    EXPECT_EQ(name.View(), "");
    for (const std::size_t length : {3U, 15U, 16U, 40U, 14U, 0U, 17U, 1U}) {
        const std::string text(length, 'n');
        name.Assign(text);
        EXPECT_EQ(name.View(), text);
        EXPECT_STREQ(name.Text(), text.c_str());
        if (length == 0) continue;
        name.Text()[length - 1] = '\0';  // as a host may
        EXPECT_EQ(name.View().size(), length - 1);
        name.Assign(name.View());
        EXPECT_EQ(name.View().size(), length - 1);
    }
    Name other;
    other.Assign("a name of more than fifteen characters");
    other.Swap(name);
    EXPECT_EQ(name.View(), "a name of more than fifteen characters");
    EXPECT_EQ(other.View(), "");
}

}  // namespace
