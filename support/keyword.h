// Finding a word in a table, whatever the case of its letters.
#pragma once

#include "support/text_view.h"

#include <cstddef>
#include <string_view>

namespace bscan::detail {

// A word and what it stands for.
template <class Value>
struct Keyword {
    std::string_view text;
    Value value;

    // Looks for the row whose word a text is, and copies its value into `value`. False when there
    // is no such row; `value` stays as it was.
    template <std::size_t kRows>
    static bool Find(const Keyword (&rows)[kRows], std::string_view text, Value& value) {
        for (const Keyword& row : rows) {
            if (!EqualIgnoringCase(row.text, text)) continue;
            value = row.value;
            return true;
        }
        return false;
    }
};

}  // namespace bscan::detail
