#include "bsdl/value.h"

namespace bscan::detail {

void Value::Clear() {
    pieces.clear();
    begin = {};
    quoted = false;
    doubtful = false;
}

Word JoinedText(const Value& value, std::deque<std::string>& joined) {
    if (value.pieces.empty()) return {{}, value.begin.line, value.begin.column};
    const Word first = value.pieces.front().Start();
    if (value.pieces.size() == 1) return first;
    std::string& text = joined.emplace_back();
    for (const Piece& piece : value.pieces) {
        text += piece.text;
        if (!piece.joins_next && &piece != &value.pieces.back()) text += ' ';
    }
    return {text, first.line, first.column};
}

}  // namespace bscan::detail
