// Finding a word in a table, whatever the case of its letters.
#pragma once

#include "support/word.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace bscan::detail {

// A word and what it stands for.
template <class Value>
class Keyword {
public:
    constexpr Keyword(std::string_view text, Value value)
        : text_(text), key_(Key(text)), value_(value) {}

    // Puts the value of the row whose word a text is into `value`; false when it is none of them.
    template <std::size_t kRows>
    static bool Find(const Keyword (&rows)[kRows], std::string_view text, Value& value) {
        const std::uint64_t key = Key(text);
        for (const Keyword& row : rows) {
            if (row.key_ != key || row.text_.size() != text.size()) continue;
            if (text.size() > kInKey && !EqualWords(text, row.text_, UpperCaseWord)) continue;
            value = row.value_;
            return true;
        }
        return false;
    }

private:
    static constexpr std::size_t kInKey = sizeof(std::uint64_t);

    // What tells most words apart.
    static constexpr std::uint64_t Key(std::string_view text) {
        return UpperCaseWord(ShortWord({text.data(), text.size() < kInKey ? text.size() : kInKey}));
    }

    std::string_view text_;
    std::uint64_t key_;
    Value value_;
};

}  // namespace bscan::detail
