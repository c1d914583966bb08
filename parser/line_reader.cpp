#include "parser/line_reader.h"

#include "support/text_view.h"

#include <bscan/result.h>

namespace bscan::detail {

int LineReader::Next(std::string_view& line, std::string* comment) {
    for (;;) {
        if (file_ == nullptr) return kReadFailed;
        if (feof_unlocked(file_) != 0) return kEndOfFile;
        if (fgets_unlocked(buffer_, sizeof buffer_, file_) == nullptr) return kReadFailed;
        ++lines_;
        std::string_view text(buffer_);
        const std::size_t dashes = text.find("--");
        if (comment != nullptr) comment->clear();
        if (dashes != std::string_view::npos) {
            if (comment != nullptr) comment->append(Trim(text.substr(dashes))).push_back('*');
            text = text.substr(0, dashes);
        }
        line = Trim(text);
        if (!line.empty()) return kOk;
    }
}

}  // namespace bscan::detail
