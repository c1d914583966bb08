#include "parser/register_text.h"

#include "model/cell_roles.h"
#include "support/keyword.h"
#include "support/text_view.h"

#include <algorithm>
#include <array>

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

// The columns of an entry are: type, port, function, safe value, control cell, disable value,
// disable result.
constexpr std::size_t kSafe = 3;
constexpr std::size_t kMostColumns = 7;
using Columns = std::array<std::string_view, kMostColumns>;

// Cuts an entry at its commas and tells which column is the last. What stands behind as many commas
// as an entry may have is one text.
std::size_t CutColumns(std::string_view text, Columns& columns) {
    std::size_t last = 0;
    while (last < kMostColumns - 1) {
        const std::size_t comma = text.find(',');
        if (comma == std::string_view::npos) break;
        columns[last++] = Trim(text.substr(0, comma));
        text.remove_prefix(comma + 1);
    }
    columns[last] = Trim(text);
    return last;
}

// A '*' anywhere stands for no port. The walk from the back ends with the first '('.
void CutPort(std::string_view column, CellFields& fields) {
    std::size_t opening = column.size();
    for (std::size_t at = column.size(); at > 0; --at) {
        if (column[at - 1] == '*') return;
        if (column[at - 1] == '(') opening = at - 1;
    }
    fields.port = TrimRight(column.substr(0, opening));
    if (opening == column.size()) return;
    fields.port_index = DecimalValue(CutAt(column.substr(opening + 1), ')').before);
}

// Whether there was another entry, none was left, or what stands there is none.
enum class TakenEntry { kEntry, kEnd, kError };

// Takes the remarks at the front off a text, each from the dash that begins it to its '*', and
// keeps the last. One without '*' is dropped, with all that follows.
void TakeRemarks(std::string_view& text, std::string_view& remark) {
    for (;;) {
        while (!text.empty() && (IsBlank(text.front()) || text.front() == '"')) {
            text.remove_prefix(1);
        }
        if (text.empty() || text.front() != '-') return;
        const std::size_t end = text.find('*');
        if (end == std::string_view::npos) {
            text = {};
            return;
        }
        remark = text.substr(1, end - 1);
        text.remove_prefix(end + 1);
    }
}

// Finds the parenthesis that closes the first one of a text; the text's end when there is none. The
// first character is passed over, since an entry begins with its number: where it is a parenthesis
// all the same, it does not count as opened. The depth is how many are open behind the place found:
// 0, or less when more are closed than counted.
std::size_t FindClosing(std::string_view text, std::ptrdiff_t& depth) {
    depth = 0;
    std::size_t from = 1;
    for (;;) {
        const std::size_t closing = text.find(')', from);
        if (closing == std::string_view::npos) return text.size();
        const std::string_view before = text.substr(from, closing - from);
        depth += std::count(before.begin(), before.end(), '(') - 1;
        if (depth <= 0) return closing;
        from = closing + 1;
    }
}

// Takes an entry and the comma behind it off a text that is not empty. An entry without end is
// dropped.
TakenEntry TakeEntry(std::string_view& text, RegisterEntry& entry) {
    std::ptrdiff_t depth = 0;
    const std::size_t closing = FindClosing(text, depth);
    if (closing >= text.size()) return TakenEntry::kEnd;
    if (depth < 0) return TakenEntry::kError;
    const std::size_t opening = text.find('(');
    entry.number = text.substr(0, opening);
    entry.columns = text.substr(opening + 1, closing - opening - 1);
    text = TrimLeft(text.substr(closing + 1));
    if (text.empty()) return TakenEntry::kEntry;
    if (text.front() != ',') return TakenEntry::kError;
    text.remove_prefix(1);
    return TakenEntry::kEntry;
}

}  // namespace

bool CutRegister(std::string_view value, std::vector<RegisterEntry>& entries) {
    // A remark in front of the first entry belongs to none.
    std::string_view no_remark;
    TakeRemarks(value, no_remark);
    while (!value.empty()) {
        RegisterEntry entry;
        const TakenEntry taken = TakeEntry(value, entry);
        if (taken == TakenEntry::kError) return false;
        if (taken == TakenEntry::kEnd) break;
        TakeRemarks(value, entry.remark);
        entries.push_back(entry);
    }
    return !entries.empty();
}

void AppendRemark(std::string_view remark, std::string& text) {
    std::copy_if(remark.begin(), remark.end(), std::back_inserter(text),
                 [](char c) { return c != '-' && !IsBlank(c); });
}

bool CutRegisterEntry(const RegisterEntry& entry, CellFields& fields) {
    Columns columns;
    const std::size_t last = CutColumns(entry.columns, columns);
    fields.number = DecimalValue(entry.number);
    // With fewer columns, the last is the safe value, and those that are missing are empty.
    const std::size_t safe = std::min(last, kSafe);
    fields.type = CellTypeFromText(safe > 0 ? columns[0] : std::string_view());
    if (safe > 1) CutPort(columns[1], fields);
    fields.function = FunctionFromText(safe > 2 ? columns[2] : std::string_view());
    if (!SignalText::Find(kSafeValues, columns[safe], fields.safe)) return false;
    if (last <= kSafe) return true;
    // A comma with nothing behind it may follow the safe value.
    if (last < kMostColumns - 1) return last == kSafe + 1 && columns[last].empty();
    fields.control = DecimalValue(columns[4]);
    return SignalText::Find(kDisableValues, columns[5], fields.disable_value) &&
           SignalText::Find(kDisableResults, columns[6], fields.disable_result);
}

}  // namespace bscan::detail
