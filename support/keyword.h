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

    // Puts the value of the row whose word a text is into `value`; false when it is none of them.
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
