#include "parser/statement_reader.h"

#include <bscan/result.h>

#include "support/huge_pages.h"
#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

// The room that a value has from the beginning, which is enough for most, and how little may be
// left of it before there is more.
constexpr std::size_t kFirstRoom = std::size_t{1} << 16;
constexpr std::size_t kLeastRoom = 2 * kPhysicalRead;

const Terminator kPieceEnd = Terminator::AnyOf("&;");

// A ';' ends a value only where it is the last character, and the first of its kind.
bool EndsValue(std::string_view text) {
    return !text.empty() && text.back() == ';' && Find(text, ';') == text.size() - 1;
}

// Whether a text joins its piece to the next or ends it: mostly its last character does.
bool EndsPiece(std::string_view text) {
    if (text.empty()) return false;
    return text.back() == '&' || text.back() == ';' || Find(text, '&', ';') != text.npos;
}

// The quoted text at the front; nothing without a closing quote.
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
    value.reserve(kFirstRoom);
    bool ended = false;
    int result = start.empty() ? static_cast<int>(kOk) : ReadFirstPiece(start, value, ended);
    while (result == kOk && !ended) {
        if (value.capacity() - value.size() < kLeastRoom) MakeRoom(value);
        result = ReadPiece(comments, value, ended);
        if (value.size() > kMaxStatementLength) return kTextTooLong;
    }
    return result;
}

// Grows a large value once, to what the file can hold of it, instead of again and again.
void StatementReader::MakeRoom(std::string& value) const {
    const std::size_t most = value.size() + lines_.BytesLeft();
    if (most <= value.capacity()) return;
    value.reserve(std::min(most, kMaxStatementLength));
    PreferHugePages(value.data() + value.size(), value.capacity() - value.size());
}

int StatementReader::ReadFirstPiece(std::string_view start, std::string& value, bool& ended) {
    extended_.assign(start);
    const int result = Complete(extended_, kPieceEnd);
    if (result != kOk) return result;
    value.append(UpToQuote(extended_));
    ended = EndsValue(extended_);
    if (!ended) value.push_back(' ');
    return kOk;
}

int StatementReader::ReadPiece(Comments comments, std::string& value, bool& ended) {
    Line line;
    int result = lines_.Next(line);
    if (result != kOk) return result;
    // Mostly a piece begins its line.
    std::string_view rest =
        TrimLeft(line.text.front() == '"' ? line.text.substr(1) : CutAt(line.text, '"').after);
    if (!EndsPiece(rest)) {
        result = ReadLongPiece(line.comment, rest);
        if (result != kOk) return result;
    }
    // The ';' may stand on a line of its own behind the last piece.
    ended = EndsValue(rest);
    value.append(UpToQuote(rest));
    if (comments == Comments::kKeep && !line.comment.empty()) {
        value.append(1, ' ').append(line.comment).push_back('*');
    }
    value.push_back(' ');
    return kOk;
}

// Takes in further lines, up to what joins or ends a piece that one line does not hold.
int StatementReader::ReadLongPiece(std::string_view& comment, std::string_view& rest) {
    comment_.assign(comment);
    comment = comment_;
    extended_.assign(rest);
    const int result = Complete(extended_, kPieceEnd);
    rest = extended_;
    return result;
}

}  // namespace bscan::detail
