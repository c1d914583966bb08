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

// What ends a statement.
class Terminator {
public:
    // The text holds this character, or text.
    static Terminator Text(std::string_view text) {
        return Terminator(text, text.size() == 1 ? Kind::kAnyOf : Kind::kText);
    }
    // The text holds any of these characters.
    static Terminator AnyOf(std::string_view set) { return Terminator(set, Kind::kAnyOf); }

    bool IsIn(std::string_view text) const {
        if (kind_ == Kind::kText) return Contains(text, text_);
        // Mostly it stands at the end of its line.
        return std::any_of(text_.begin(), text_.end(),
                           [&](char c) { return text.rfind(c) != std::string_view::npos; });
    }

private:
    enum class Kind { kText, kAnyOf };
    Terminator(std::string_view text, Kind kind) : text_(text), kind_(kind) {}

    std::string_view text_;
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
    // the next line. Each piece is followed by the comment of its line, when comments are kept, and
    // a blank; a value that ends on the first line is not.
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
