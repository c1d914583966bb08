// The lines of a BSDL file: without comments, trimmed, and never empty.
#pragma once

#include "support/file.h"
#include "support/search.h"

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

    // Delivers the next line with a text, which is valid until the stream is read again.
    int Next(Line& line);
    int Next(std::string_view& text);

    // How much text may follow; 0 when the stream does not tell.
    std::size_t BytesLeft() const { return detail::BytesLeft(file_); }

    // Delivers the next line that begins with a keyword, and passes over all others.
    int NextWith(std::string_view keyword, std::string_view& text);

private:
    // Whole blocks are looked at, which may reach behind the longest line.
    static constexpr std::size_t kLookedAt = kPhysicalRead + 2 + Block::kSize;

    int ReadPhysical(Line& line);
    bool TakeReadAheadLine(Line& line);

    FILE* file_;
    std::int64_t& lines_;
    char buffer_[kLookedAt] = {};  // a line that the stream did not hold as a whole
};

}  // namespace bscan::detail
