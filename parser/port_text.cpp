#include "parser/port_text.h"

#include "support/text_view.h"

namespace bscan::detail {

PortDeclaration CutPortDeclaration(std::string_view text) {
    PortDeclaration declaration;
    const Parts at_colon = CutTrimmed(text, ':');
    declaration.names = at_colon.before;
    const Parts mode_and_type = CutWord(at_colon.after);
    declaration.mode = mode_and_type.before;
    declaration.is_vector = Contains(mode_and_type.after, "bit_vector");
    if (!declaration.is_vector) return declaration;
    const Parts left_bound = CutWord(TrimLeft(CutAt(mode_and_type.after, '(').after));
    // The bounds alone tell the direction.
    const Parts direction = CutWord(left_bound.after);
    declaration.left = DecimalValue(left_bound.before);
    declaration.right = DecimalValue(CutAt(direction.after, ')').before);
    return declaration;
}

bool TakePortName(std::string_view& names, std::string_view& name) {
    if (names.empty()) return false;
    if (Contains(names, ',')) {
        const Parts parts = CutTrimmed(names, ',');
        name = parts.before;
        names = parts.after;
    } else {
        name = names;
        names = {};
    }
    return true;
}

void PortClauseEnd::LookForEndIn(std::string_view rest) {
    reached_ = Contains(rest, ");") || Contains(rest, ") ;");
}

void PortClauseEnd::BeginWith(std::string_view text) { LookForEndIn(CutAt(text, ')').after); }

void PortClauseEnd::GoOnWith(std::string_view line) {
    const auto is_behind_start = [](std::size_t position) {
        return position != std::string_view::npos && position > 0;
    };
    if (const std::size_t opening = line.find('('); is_behind_start(opening)) {
        const std::string_view range = TrimLeft(line.substr(opening + 1));
        const std::size_t closing = range.find(')');
        if (is_behind_start(closing)) LookForEndIn(range.substr(closing + 1));
    } else if (const std::size_t closing = line.find(')'); is_behind_start(closing)) {
        LookForEndIn(line.substr(closing));  // this one may close the clause
    }
}

bool PortClauseEnd::IsEndLine(std::string_view line) {
    return line.starts_with(");") || line.starts_with(") ;");
}

}  // namespace bscan::detail
