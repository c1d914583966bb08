#include "parser/name_list_text.h"

#include <bscan/result.h>

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

// In a list of items, what joins two pieces of the value counts as white space.
bool IsFiller(char c) { return IsBlank(c) || c == '"' || c == '&'; }

std::string_view TrimFiller(std::string_view text) {
    while (!text.empty() && IsFiller(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsFiller(text.back())) text.remove_suffix(1);
    return text;
}

bool HoldsSpace(std::string_view text) { return FindSpace(text) != std::string_view::npos; }

// A carriage return inside an item is no space.
bool HoldsFiller(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return IsFiller(c) && c != '\r'; });
}

}  // namespace

NameListCutter::NameListCutter(std::string_view statement, int syntax_code)
    : syntax_code_(syntax_code) {
    const std::string_view text = statement.substr(0, statement.find(';'));
    const std::size_t quote = text.find('"');
    rest_ = Trim(quote == std::string_view::npos ? text : text.substr(quote));
}

int NameListCutter::Next(NameListEntry& entry) {
    const std::size_t closing = rest_.find(')');
    const std::string_view text = rest_.substr(0, closing);
    rest_.remove_prefix(closing + 1);

    const Parts parts = CutAt(text, '(');
    // Everything between two entries ends at the last quote before the name.
    const std::size_t quote = parts.before.rfind('"');
    const std::string_view name =
        Trim(quote == std::string_view::npos ? parts.before : parts.before.substr(quote + 1));
    if (HoldsSpace(name)) return syntax_code_;
    if (name.empty()) return kBadValue;
    entry.name.assign(name);
    entry.items.clear();
    return TakeItems(parts.after, entry.items);
}

int NameListCutter::TakeItems(std::string_view list, std::vector<std::string>& items) const {
    for (bool more = true; more;) {
        const std::size_t comma = list.find(',');
        more = comma != std::string_view::npos;
        const std::string_view item = TrimFiller(list.substr(0, comma));
        if (item.empty() || HoldsFiller(item)) return syntax_code_;
        items.emplace_back(item);
        if (more) list.remove_prefix(comma + 1);
    }
    return kOk;
}

}  // namespace bscan::detail
