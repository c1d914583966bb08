// Statements and string values, assembled from lines.
#pragma once

#include <bscan/limits.h>

#include "parser/line_reader.h"
#include "support/text_view.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace bscan::detail {

// What ends a statement: a text, or any character of a set.
class Terminator {
public:
    // A text of one character is sought as a set of one, from the back.
    static Terminator Text(std::string_view text) {
        return Terminator(text, text.size() == 1 ? Kind::kAnyOf : Kind::kText);
    }
    static Terminator AnyOf(std::string_view set) { return Terminator(set, Kind::kAnyOf); }

    bool IsIn(std::string_view text) const {
        if (kind_ == Kind::kText) return Contains(text, sought_);
        // From the back, since a terminator mostly stands at the end of its line.
        return std::any_of(sought_.begin(), sought_.end(),
                           [&](char c) { return text.rfind(c) != std::string_view::npos; });
    }

private:
    enum class Kind { kText, kAnyOf };
    Terminator(std::string_view sought, Kind kind) : sought_(sought), kind_(kind) {}

    std::string_view sought_;  // the text, or the characters of the set
    Kind kind_;
};

enum class Comments { kDrop, kKeep };

class StatementReader {
public:
    StatementReader(FILE* file, std::int64_t& lines) : lines_(file, lines) {}

    int NextLine(std::string_view& line) { return lines_.Next(line); }

    int NextLineWith(std::string_view keyword, std::string_view& line) {
        return lines_.NextWith(keyword, line);
    }

    // Appends lines to a statement until one holds the terminator; none when the statement holds it
    // already. Only the first line is set off by a blank; the others are joined directly. The
    // terminator is sought in each line by itself, so one that only joining would make is missed.
    int Complete(std::string& statement, Terminator terminator,
                 std::size_t limit = kMaxStatementLength);

    // Reads a line and completes it. The statement is in the line, or in `storage` when it had to
    // be put together; it is valid until the next call.
    int NextStatement(Terminator terminator, std::string& storage, std::string_view& statement);

    // Appends a string value to `value`: one quoted piece a line, the last line ending in ';'. The
    // start is the text behind the opening quote of the statement; empty when the value begins on
    // the next line.
    //
    // A blank follows each piece, but not a start that ends the value. When comments are kept, the
    // comment of its line and a '*' that ends it stand between a piece and that blank; the start
    // never has one.
    int ReadStringValue(std::string_view start, Comments comments, std::string& value);

private:
    int ReadFirstPiece(std::string_view start, std::string& value, bool& ended);
    int ReadPiece(Comments comments, std::string& value, bool& ended);
    static void AppendPiece(std::string_view text, std::string_view comment, std::string& value);

    LineReader lines_;
};

// The text behind the opening quote of a string value: what follows the first quote of a text, or
// nothing when there is none or it stands at the very start.
std::string_view ValueStart(std::string_view text);

}  // namespace bscan::detail
