// The lines of a BSDL file: without comments, trimmed, and never empty.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace bscan::detail {

// A read takes this many characters at the most; a longer line comes in pieces, each of which is
// treated as a line of its own.
inline constexpr std::size_t kPhysicalRead = 254;

// A line taken apart. A comment runs from "--" to the end of the line, even inside quotes.
struct Line {
    std::string_view text;
    std::string_view comment;  // with its dashes, trimmed; empty without one
};

class LineReader {
public:
    // Counts every physical read in `lines`.
    LineReader(FILE* file, std::int64_t& lines) : file_(file), lines_(lines) {}

    // Makes one physical read, whose text may be empty. A failed read leaves the line as it was.
    int ReadOnce(Line& line);

    // Delivers the next line with a text. Lines are valid until the next read.
    int Next(Line& line);
    int Next(std::string_view& text);

    // Delivers the next line that begins with a keyword, and passes over all others.
    int NextWith(std::string_view keyword, std::string_view& text);

private:
    FILE* file_;
    std::int64_t& lines_;
    char buffer_[kPhysicalRead + 1] = {};
};

}  // namespace bscan::detail
