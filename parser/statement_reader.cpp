#include "parser/statement_reader.h"

#include <bscan/result.h>

#include "support/text_view.h"

namespace bscan::detail {
namespace {

const Terminator kPieceEnd = Terminator::AnyOf("&;");

// A ';' ends a value only where it is the last character, and the first of its kind.
bool EndsValue(std::string_view text) {
    return text.ends_with(';') && text.find(';') == text.size() - 1;
}

// What stands in front of the closing quote; nothing without one.
std::string_view UpToQuote(std::string_view text) { return TrimRight(CutAt(text, '"').before); }

}  // namespace

std::string_view ValueStart(std::string_view text) {
    const std::size_t quote = text.find('"');
    if (quote == 0 || quote == std::string_view::npos) return {};
    return TrimLeft(text.substr(quote + 1));
}

int StatementReader::Complete(std::string& statement, Terminator terminator, std::size_t limit) {
    if (terminator.IsIn(statement)) return kOk;
    statement.push_back(' ');
    for (;;) {
        std::string_view line;
        const int result = lines_.Next(line);
        if (result != kOk) return result;
        statement.append(line);
        if (statement.size() > limit) return kTextTooLong;
        if (terminator.IsIn(line)) return kOk;
    }
}

int StatementReader::NextStatement(Terminator terminator, std::string& storage,
                                   std::string_view& statement) {
    int result = lines_.Next(statement);
    if (result != kOk || terminator.IsIn(statement)) return result;
    storage.assign(statement);
    result = Complete(storage, terminator);
    statement = storage;
    return result;
}

int StatementReader::ReadStringValue(std::string_view start, Comments comments,
                                     std::string& value) {
    bool ended = false;
    int result = start.empty() ? static_cast<int>(kOk) : ReadFirstPiece(start, value, ended);
    while (result == kOk && !ended) {
        result = ReadPiece(comments, value, ended);
        if (value.size() > kMaxStatementLength) return kTextTooLong;
    }
    return result;
}

int StatementReader::ReadFirstPiece(std::string_view start, std::string& value, bool& ended) {
    std::string piece(start);
    const int result = Complete(piece, kPieceEnd);
    if (result != kOk) return result;
    value.append(UpToQuote(piece));
    ended = EndsValue(piece);
    if (!ended) value.push_back(' ');
    return kOk;
}

int StatementReader::ReadPiece(Comments comments, std::string& value, bool& ended) {
    Line line;
    int result = lines_.Next(line);
    if (result != kOk) return result;
    const std::string_view rest = TrimLeft(CutAt(line.text, '"').after);
    if (kPieceEnd.IsIn(rest)) {
        ended = EndsValue(line.text);
        AppendPiece(rest, comments == Comments::kKeep ? line.comment : "", value);
        return kOk;
    }
    // Further lines belong to the piece: the ';' may stand on one of its own. Reading them
    // overwrites the line, so its comment is copied.
    const std::string comment(comments == Comments::kKeep ? line.comment : "");
    std::string piece(rest);
    result = Complete(piece, kPieceEnd);
    if (result != kOk) return result;
    ended = EndsValue(piece);
    AppendPiece(piece, comment, value);
    return kOk;
}

void StatementReader::AppendPiece(std::string_view text, std::string_view comment,
                                  std::string& value) {
    value.append(UpToQuote(text));
    if (!comment.empty()) value.append(1, ' ').append(comment).push_back('*');
    value.push_back(' ');
}

}  // namespace bscan::detail
