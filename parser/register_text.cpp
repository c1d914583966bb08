#include "parser/register_text.h"

#include "model/cell_roles.h"
#include "support/keyword.h"
#include "support/text_view.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace bscan::detail {
namespace {

using SignalText = Keyword<eSignal>;

constexpr SignalText kSafeValues[] = {{"X", SIG_X}, {"1", SIG_1}, {"0", SIG_0}};
constexpr SignalText kDisableValues[] = {{"1", SIG_1}, {"0", SIG_0}};
constexpr SignalText kDisableResults[] = {{"Z", SIG_Z},
                                          {"PULL0", SIG_PULL0},
                                          {"PULL1", SIG_PULL1},
                                          {"WEAK0", SIG_WEAK0},
                                          {"WEAK1", SIG_WEAK1}};

// The texts between the commas of an entry, trimmed.
class Columns {
public:
    // All that an entry may have; what stands behind that many commas is one text.
    static constexpr std::size_t kMost = 7;

    explicit Columns(std::string_view text) : text_(text.data()) {
        columns_[0] = {0, 0};
        // Where the commas and where other characters than blanks are: 64 characters at a time.
        for (std::size_t window = 0; window < text.size(); window += kWindow) {
            std::uint64_t commas = PlacesInWindow(text, window, ',');
            std::uint64_t words = ~PlacesInWindow(text, window, ' ', '\t', '\r', '\n');
            const std::size_t left = text.size() - window;
            if (left < kWindow) words &= (std::uint64_t{1} << left) - 1;
            for (; commas != 0 && last_ < kMost - 1; commas &= commas - 1) {
                const std::uint64_t before = (commas & (0 - commas)) - 1;
                Extend(window, words & before);
                words &= ~before << 1;
                columns_[++last_] = {0, 0};
            }
            Extend(window, words);
        }
    }

    std::size_t Last() const { return last_; }
    std::string_view operator[](std::size_t column) const {
        const auto [begin, end] = columns_[column];
        return {text_ + begin, end - begin};
    }

private:
    struct Bounds {
        std::size_t begin;
        std::size_t end;
    };

    // Takes further characters into the last column, up to the last of those that are no blanks.
    void Extend(std::size_t window, std::uint64_t words) {
        if (words == 0) return;
        Bounds& column = columns_[last_];
        if (column.end == 0) {
            column.begin = window + static_cast<std::size_t>(std::countr_zero(words));
        }
        column.end = window + static_cast<std::size_t>(std::bit_width(words));
    }

    const char* text_;
    Bounds columns_[kMost];  // those behind the last column are not set
    std::size_t last_ = 0;
};

void CutPort(std::string_view column, CellFields& fields) {
    std::size_t opening = column.size();
    // One walk for both characters.
    for (std::size_t at = column.size(); at > 0; --at) {
        if (column[at - 1] == '*') return;
        if (column[at - 1] == '(') opening = at - 1;
    }
    fields.port = TrimRight({column.data(), opening});
    if (opening == column.size()) return;
    fields.port_index = DecimalValue(CutAt(column.substr(opening + 1), ')').before);
}

// Takes a value apart, entry by entry.
class RegisterCutter {
public:
    explicit RegisterCutter(std::string_view value) : value_(value), parentheses_(value) {}

    // False when something is no entry.
    bool CutAll(std::vector<RegisterEntry>& entries) {
        // A remark in front of the first entry belongs to none.
        Span no_remark;
        CutRemarks(no_remark);
        while (at_ < value_.size()) {
            RegisterEntry entry;
            switch (CutEntry(entry)) {
                case Cut::kEntry:
                    CutRemarks(entry.remark);
                    entries.push_back(entry);
                    break;
                case Cut::kEnd:
                    return true;
                case Cut::kError:
                    return false;
            }
        }
        return true;
    }

private:
    enum class Cut { kEntry, kEnd, kError };

    static Span Between(std::size_t begin, std::size_t end) {
        return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
    }

    char Next() const { return at_ < value_.size() ? value_[at_] : '\0'; }

    // Skips remarks, each from the dash that begins it to its '*', and keeps the last. One without
    // '*' is dropped, with all that follows.
    void CutRemarks(Span& remark) {
        for (;;) {
            while (IsBlank(Next()) || Next() == '"') ++at_;
            if (Next() != '-') return;
            const std::size_t begin = at_ + 1;
            const std::size_t length = Find(value_.substr(begin), '*');
            if (length == std::string_view::npos) {
                at_ = value_.size();
                return;
            }
            remark = Between(begin, begin + length);
            at_ = remark.end + 1;
        }
    }

    // Cuts through the parenthesis that closes the entry's first one, and the comma behind it. The
    // first character may be anything: a '(' there begins the columns, but need not be closed. An
    // entry without end is dropped.
    Cut CutEntry(RegisterEntry& entry) {
        const std::size_t begin = at_;
        std::size_t opening = value_[begin] == '(' ? begin : parentheses_.kNone;
        int depth = 0;
        parentheses_.SkipTo(begin + 1);
        do {
            at_ = parentheses_.Next();
            if (at_ == parentheses_.kNone) return Cut::kEnd;
            if (opening == parentheses_.kNone) opening = at_;
            depth += value_[at_] == '(' ? 1 : -1;
            if (depth < 0) return Cut::kError;
        } while (depth > 0);
        entry.number = Between(begin, opening);
        entry.columns = Between(opening + 1, at_);
        ++at_;
        while (IsBlank(Next())) ++at_;
        if (at_ == value_.size()) return Cut::kEntry;
        return value_[at_++] == ',' ? Cut::kEntry : Cut::kError;
    }

    std::string_view value_;
    Marks<'(', ')'> parentheses_;
    std::size_t at_ = 0;
};

}  // namespace

bool CutRegister(std::string_view value, std::vector<RegisterEntry>& entries) {
    return RegisterCutter(value).CutAll(entries) && !entries.empty();
}

void AppendRemark(std::string_view remark, std::string& text) {
    for (const char c : remark) {
        if (c != '-' && !IsBlank(c)) text.push_back(c);
    }
}

bool CutRegisterEntry(std::string_view value, const RegisterEntry& entry, CellFields& fields) {
    // The columns are: type, port, function, safe value, control cell, disable value, disable
    // result. The last three may be missing, as may be all in front of the safe value.
    constexpr std::size_t kSafe = 3;
    const Columns columns(entry.columns.In(value));
    const std::size_t last = columns.Last();
    fields.number = DecimalValue(entry.number.In(value));
    fields.type = CellTypeFromText(last > 0 ? columns[0] : std::string_view());
    if (last > 1) CutPort(columns[1], fields);
    fields.function = FunctionFromText(last > 2 ? columns[2] : std::string_view());
    if (!SignalText::Find(kSafeValues, columns[std::min(last, kSafe)], fields.safe)) return false;
    if (last <= kSafe) return true;
    if (last < Columns::kMost - 1) return last == kSafe + 1 && columns[last].empty();
    fields.control = DecimalValue(columns[4]);
    return SignalText::Find(kDisableValues, columns[5], fields.disable_value) &&
           SignalText::Find(kDisableResults, columns[6], fields.disable_result);
}

}  // namespace bscan::detail
