#include "parser/line_reader.h"

#include <bscan/result.h>

#include "support/search.h"
#include "support/text_view.h"

#include <algorithm>
#include <bit>

namespace bscan::detail {
namespace {

// How many blanks a line begins with.
std::size_t Indentation(const char* line) {
    for (std::size_t at = 0;; at += Block::kSize) {
        const std::uint32_t blanks = Block(line + at).Places(' ', '\t', '\r', '\n');
        const auto count = static_cast<std::size_t>(std::countr_one(blanks));
        if (count < Block::kSize) return at + count;
    }
}

// Where the text of a line ends: at its zero byte, or at the dashes that begin a comment.
std::size_t TextLength(const char* line) {
    for (std::size_t at = 0;; at += Block::kSize) {
        const Block block(line + at);
        // A dash may be followed by the first character of the next block.
        const std::uint32_t dashes = block.Places('-') & Block(line + at + 1).Places('-');
        const std::uint32_t ends = dashes | block.Places('\0');
        if (ends != 0) return at + static_cast<std::size_t>(std::countr_zero(ends));
    }
}

}  // namespace

// Reads into the buffer, whose text then ends at the first zero byte.
int LineReader::ReadPhysical() {
    if (file_ == nullptr) return kReadFailed;
    if (feof_unlocked(file_) != 0) return kEndOfFile;
    if (fgets_unlocked(buffer_, kPhysicalRead + 1, file_) == nullptr) return kReadFailed;
    ++lines_;
    return kOk;
}

std::string_view LineReader::Clean(std::string* comment) const {
    const std::size_t length = TextLength(buffer_);
    if (comment != nullptr) {
        comment->clear();
        if (buffer_[length] != '\0') comment->append(Trim(buffer_ + length)).push_back('*');
    }
    const std::size_t begin = std::min(Indentation(buffer_), length);
    return TrimRight({buffer_ + begin, length - begin});
}

int LineReader::Next(std::string_view& line, std::string* comment) {
    do {
        const int result = ReadPhysical();
        if (result != kOk) return result;
        line = Clean(comment);
    } while (line.empty());
    return kOk;
}

int LineReader::NextWith(std::string_view keyword, std::string_view& line) {
    for (;;) {
        const int result = ReadPhysical();
        if (result != kOk) return result;
        // Most lines differ in their first character, and need not be cleaned to tell.
        if (buffer_[Indentation(buffer_)] != keyword.front()) continue;
        line = Clean(nullptr);
        if (line.starts_with(keyword)) return kOk;
    }
}

}  // namespace bscan::detail
