#include "parser/port_group_text.h"

#include "support/text_view.h"

#include <algorithm>
#include <iterator>

namespace bscan::detail {
namespace {

constexpr std::string_view kKinds[] = {"Differential_Voltage", "Differential_Current"};

// A text up to where as many parentheses are closed as opened, at least one.
struct Balanced {
    std::size_t end = std::string_view::npos;  // behind the last parenthesis; npos without balance
    int opened = 0;
    int closed = 0;
};

Balanced FindBalance(std::string_view text) {
    Balanced found;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') ++found.opened;
        if (text[i] == ')') ++found.closed;
        if (found.closed > 0 && found.opened == found.closed) {
            found.end = i + 1;
            break;
        }
    }
    return found;
}

// Takes an item that ends at a position and the comma behind it off a text; false when something
// else follows.
bool TakeThrough(std::size_t end, std::string_view& text, std::string_view& item) {
    const std::string_view behind = TrimLeft(text.substr(end));
    if (!behind.empty() && behind.front() != ',') return false;
    item = Trim(text.substr(0, end));
    text = behind.empty() ? std::string_view() : behind.substr(1);
    return true;
}

// What stands between the first opening and the last closing parenthesis behind it; false when one
// of them is missing.
bool Inside(std::string_view text, std::string_view& inside) {
    if (!Contains(text, '(')) return false;
    const std::string_view behind = CutAt(text, '(').after;
    const std::size_t closing = behind.rfind(')');
    if (closing == std::string_view::npos) return false;
    inside = Trim(behind.substr(0, closing));
    return true;
}

}  // namespace

bool CutPortGroups(std::string_view value, std::vector<std::string_view>& groups) {
    while (!value.empty()) {
        const Balanced group = FindBalance(value);
        if (group.end == std::string_view::npos) {
            // Text without parentheses behind the last group does not matter.
            return group.opened == group.closed && !groups.empty();
        }
        std::string_view text;
        if (!TakeThrough(group.end, value, text)) return false;
        groups.push_back(text);
    }
    return !groups.empty();
}

bool PairsOfGroup(std::string_view group, std::string_view& pairs) {
    const std::string_view kind = Trim(CutAt(group, '(').before);
    const bool known = std::any_of(std::begin(kKinds), std::end(kKinds), [&](std::string_view row) {
        return EqualIgnoringCase(row, kind);
    });
    return known && Inside(group, pairs);
}

TakenPair TakePair(std::string_view& pairs, PairNames& names) {
    if (pairs.empty()) return TakenPair::kEnd;
    const Balanced pair = FindBalance(pairs);
    if (pair.end == std::string_view::npos || pair.opened != 1) return TakenPair::kEnd;
    std::string_view text;
    std::string_view inside;
    if (!TakeThrough(pair.end, pairs, text) || !Inside(text, inside)) return TakenPair::kError;
    const std::size_t comma = inside.find(',');
    if (comma == std::string_view::npos) return TakenPair::kError;
    names.positive = Trim(inside.substr(0, comma));
    names.negative = Trim(inside.substr(comma + 1));
    return names.positive.empty() || names.negative.empty() ? TakenPair::kError : TakenPair::kPair;
}

}  // namespace bscan::detail
