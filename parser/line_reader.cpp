#include "parser/line_reader.h"

#include <bscan/result.h>

#include "support/read_ahead.h"
#include "support/search.h"
#include "support/text_view.h"

#include <algorithm>
#include <bit>

namespace bscan::detail {
namespace {

// Where the text of a line ends: at its line feed or zero byte, or at the dashes that begin a
// comment. Beyond the longest line when there is none of them.
std::size_t TextLength(const char* line) {
    std::size_t at = 0;
    for (; at <= kPhysicalRead; at += Block::kSize) {
        const Block block(line + at);
        // A dash may be followed by the first character of the next block.
        const Block::Matches dashes = block.Find('-') & Block(line + at + 1).Find('-');
        const std::uint32_t ends = (dashes | block.Find('\n', '\0')).Places();
        if (ends != 0) return at + static_cast<std::size_t>(std::countr_zero(ends));
    }
    return at;
}

// How many blanks a line begins with, of those that a look at one block shows.
std::size_t Indentation(const char* line) {
    const std::uint32_t blanks = Block(line).Places(' ', '\t', '\r');
    return static_cast<std::size_t>(std::countr_one(blanks));
}

std::string_view Text(const char* line, std::size_t length) {
    const std::size_t begin = std::min(Indentation(line), length);
    return Trim({line + begin, length - begin});
}

}  // namespace

// Takes a line in the place where the C library has read it. False when the rest of what is read
// ahead might not hold all of it; nothing is taken then.
bool LineReader::TakeReadAheadLine(Line& line) {
    const std::string_view ahead = ReadAhead(file_);
    if (ahead.size() < kLookedAt) return false;
    const std::string_view longest = ahead.substr(0, kPhysicalRead);
    const char* const begin = longest.data();
    const std::size_t length = TextLength(begin);
    if (length >= longest.size()) return false;
    std::size_t end = length;
    line.comment = {};
    if (begin[length] != '\n') {
        end = longest.find('\n', length);
        if (end == std::string_view::npos) return false;
        if (begin[length] != '\0') {
            const std::string_view comment = longest.substr(length, end - length);
            line.comment = TrimRight(comment.substr(0, Find(comment, '\0')));
        }
    }
    line.text = Text(begin, length);
    TakeReadAhead(file_, end + 1);
    return true;
}

int LineReader::ReadPhysical(Line& line) {
    if (file_ == nullptr) return kReadFailed;
    if (feof_unlocked(file_) != 0) return kEndOfFile;
    if (!TakeReadAheadLine(line)) {
        if (fgets_unlocked(buffer_, kPhysicalRead + 1, file_) == nullptr) return kReadFailed;
        const std::size_t length = TextLength(buffer_);
        line.text = Text(buffer_, length);
        line.comment = buffer_[length] == '-' ? Trim(buffer_ + length) : std::string_view();
    }
    ++lines_;
    return kOk;
}

int LineReader::Next(Line& line) {
    do {
        const int result = ReadPhysical(line);
        if (result != kOk) return result;
    } while (line.text.empty());
    return kOk;
}

int LineReader::Next(std::string_view& text) {
    Line line;
    const int result = Next(line);
    text = line.text;
    return result;
}

int LineReader::NextWith(std::string_view keyword, std::string_view& text) {
    do {
        const int result = Next(text);
        if (result != kOk) return result;
    } while (!text.starts_with(keyword));
    return kOk;
}

}  // namespace bscan::detail
