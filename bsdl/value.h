// What an attribute or a constant is set to: a string in pieces, or words without quotes.
#pragma once

#include <bscan/facts.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// A part of a value that stands within one line.
struct Piece {
    std::string_view text;  // without quotes
    int line = 0;
    int column = 0;
    bool quoted = false;
    // Whether a word at its end may go on in the next piece.
    bool joins_next = false;
    std::string_view remark;  // the comment behind it in its line

    Word Start() const { return {text, line, column}; }
};

struct Value {
    std::vector<Piece> pieces;
    Word begin;             // its first word or quote
    bool quoted = false;    // a string
    bool doubtful = false;  // a fault may have hidden a part of it

    void Clear();
};

// The whole text of a value: in place when it is one piece, else put together.
Word JoinedText(const Value& value, std::deque<std::string>& joined);

}  // namespace bscan::detail
