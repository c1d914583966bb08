#include "parser/line_reader.h"

#include <bscan/result.h>

#include "support/text_view.h"

namespace bscan::detail {

int LineReader::ReadOnce(Line& line) {
    if (file_ == nullptr) return kReadFailed;
    if (feof_unlocked(file_) != 0) return kEndOfFile;
    if (fgets_unlocked(buffer_, sizeof buffer_, file_) == nullptr) return kReadFailed;
    ++lines_;
    // A zero byte ends the line, as it ends every text.
    const std::string_view read = buffer_;
    const std::size_t dashes = read.find("--");
    line.text = Trim(read.substr(0, dashes));
    line.comment = dashes == read.npos ? std::string_view() : Trim(read.substr(dashes));
    return kOk;
}

int LineReader::Next(Line& line) {
    do {
        const int result = ReadOnce(line);
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
