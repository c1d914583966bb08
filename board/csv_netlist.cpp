// Netlists as comma-separated values.

#include <bscan/board/netlist.h>

#include "board/netlist_builder.h"
#include "support/border.h"
#include "support/text_view.h"

#include <algorithm>
#include <array>
#include <optional>

namespace bscan {
namespace detail {
namespace {

constexpr std::array<std::string_view, 3> kColumns = {"net", "part", "pin"};

class CsvReader {
public:
    explicit CsvReader(std::string_view text) : text_(WithoutMark(text)) {}

    Netlist Read() {
        std::vector<std::string> fields;
        while (ReadRow(fields)) {
            if (fields.size() == 1 && fields.front().empty()) continue;
            if (columns_) {
                TakeRow(fields);
            } else {
                TakeHeadings(fields);
            }
        }
        if (!columns_) builder_.Fail(1, "The text names no columns: it is empty.");
        return builder_.Take();
    }

private:
    // Where each of kColumns stands in a row.
    using Columns = std::array<std::size_t, kColumns.size()>;

    bool ReadRow(std::vector<std::string>& fields) {
        fields.clear();
        if (at_ >= text_.size() || !builder_.Ok()) return false;
        row_line_ = line_;
        fields.push_back(ReadField());
        while (builder_.Ok() && at_ < text_.size() && text_[at_] == ',') {
            ++at_;
            fields.push_back(ReadField());
        }
        if (at_ < text_.size() && text_[at_] == '\r') ++at_;
        if (at_ < text_.size() && text_[at_] == '\n') ++at_;
        ++line_;
        return builder_.Ok();
    }

    std::string ReadField() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
        if (at_ < text_.size() && text_[at_] == '"') return ReadQuoted();
        const std::size_t end = std::min(text_.find_first_of(",\r\n", at_), text_.size());
        const std::string_view field = text_.substr(at_, end - at_);
        at_ = end;
        return std::string(Trim(field));
    }

    std::string ReadQuoted() {
        std::string field;
        const int begin = line_;
        for (++at_; at_ < text_.size(); ++at_) {
            const bool quote = text_[at_] == '"';
            const bool doubled = quote && at_ + 1 < text_.size() && text_[at_ + 1] == '"';
            if (quote && !doubled) {
                ++at_;
                FindFieldEnd();
                return field;
            }
            if (doubled) ++at_;
            if (text_[at_] == '\n') ++line_;
            field += text_[at_];
        }
        builder_.Fail(begin, "A quoted field does not end.");
        return field;
    }

    void FindFieldEnd() {
        const std::size_t end = std::min(text_.find_first_of(",\r\n", at_), text_.size());
        if (!Trim(text_.substr(at_, end - at_)).empty()) {
            builder_.Fail(line_, "Text stands behind a quoted field.");
        }
        at_ = end;
    }

    void TakeHeadings(const std::vector<std::string>& fields) {
        Columns columns{};
        for (std::size_t i = 0; i < kColumns.size(); ++i) {
            std::size_t found = fields.size();
            for (std::size_t f = fields.size(); f-- > 0;) {
                if (EqualIgnoringCase(fields[f], kColumns[i])) found = f;
            }
            if (found == fields.size()) {
                return builder_.Fail(row_line_,
                                     "The first line has to name the columns net, part and pin.");
            }
            columns[i] = found;
        }
        columns_ = columns;
    }

    void TakeRow(const std::vector<std::string>& fields) {
        if (fields.size() <= *std::max_element(columns_->begin(), columns_->end())) {
            return builder_.Fail(row_line_, "The line has fewer fields than the first one needs.");
        }
        const int net = builder_.Net(fields[(*columns_)[0]], row_line_);
        builder_.Add(net, fields[(*columns_)[1]], fields[(*columns_)[2]], row_line_);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
    int row_line_ = 1;
    std::optional<Columns> columns_;
    NetlistBuilder builder_;
};

}  // namespace
}  // namespace detail

Netlist ReadCsvNetlist(std::string_view text) {
    Netlist failed;
    failed.problem = "There is not enough memory.";
    if (text.size() > kMaxNetlistLength) {
        failed.problem = "The netlist is too long.";
        return failed;
    }
    return detail::Guarded([&] { return detail::CsvReader(text).Read(); }, failed);
}

}  // namespace bscan
