// The lines of a BSDL file: without comments, trimmed, and never empty.
#pragma once

#include "support/search.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace bscan::detail {

// A read takes this many characters at the most; a longer line comes in pieces, each of which is
// treated as a line of its own.
inline constexpr std::size_t kPhysicalRead = 254;

class LineReader {
public:
    // Counts every physical read in `lines`.
    LineReader(FILE* file, std::int64_t& lines) : file_(file), lines_(lines) {}

    // Delivers the next line that is not empty; its text is valid until the next call. A comment
    // runs from "--" to the end of the line, even inside quotes. It is wanted when `comment` is not
    // null: that receives the comment of the delivered line with its dashes, trimmed and followed
    // by '*', or nothing.
    int Next(std::string_view& line, std::string* comment = nullptr);

    // Delivers the next line that begins with a keyword, and passes over all others.
    int NextWith(std::string_view keyword, std::string_view& line);

private:
    int ReadPhysical();
    std::string_view Clean(std::string* comment) const;

    FILE* file_;
    std::int64_t& lines_;
    // Whole blocks are looked at, which may reach behind the longest line.
    char buffer_[kPhysicalRead + 1 + Block::kSize + 1] = {};
};

}  // namespace bscan::detail
