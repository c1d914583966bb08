#include "parser/line_reader.h"

#include <bscan/result.h>

#include "support/text_view.h"

namespace bscan::detail {

namespace {

// Where the comment of a line begins.
std::size_t FindDashes(std::string_view text) {
    for (std::size_t from = 0;;) {
        const std::size_t dash = Find(text.substr(from), '-');
        if (dash == std::string_view::npos) return dash;
        from += dash + 1;
        if (from < text.size() && text[from] == '-') return from - 1;
    }
}

}  // namespace

// Reads into the buffer, whose text then ends at the first zero byte.
int LineReader::ReadPhysical() {
    if (file_ == nullptr) return kReadFailed;
    if (feof_unlocked(file_) != 0) return kEndOfFile;
    if (fgets_unlocked(buffer_, sizeof buffer_, file_) == nullptr) return kReadFailed;
    ++lines_;
    return kOk;
}

std::string_view LineReader::Clean(std::string* comment) const {
    const std::string_view text(buffer_);
    const std::size_t dashes = FindDashes(text);
    if (comment != nullptr) comment->clear();
    if (dashes == std::string_view::npos) return Trim(text);
    if (comment != nullptr) comment->append(Trim(text.substr(dashes))).push_back('*');
    return Trim(text.substr(0, dashes));
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
        const char* begin = buffer_;
        while (IsBlank(*begin)) ++begin;
        if (*begin != keyword.front()) continue;
        line = Clean(nullptr);
        if (line.starts_with(keyword)) return kOk;
    }
}

}  // namespace bscan::detail
