// The line and statement readers as a host calls them, on buffers of 1024 characters, and the kinds
// of characters.

#include <bscan/parser.h>

#include "parser/line_reader.h"
#include "parser/statement_reader.h"
#include "support/border.h"
#include "support/text_view.h"

#include <algorithm>
#include <cstring>

using namespace bscan::detail;

namespace {

// The characters of a host's buffer without the terminator.
constexpr std::size_t kRoom = 1023;

// Extends a text in a host's buffer to as much of a longer one as fits. What the buffer holds
// already is left alone, even beyond its room.
int Extend(char* buffer, std::size_t held, std::string_view text) {
    if (text.size() > held && held < kRoom) {
        const std::string_view added = text.substr(held, kRoom - held);
        std::memcpy(buffer + held, added.data(), added.size());
        buffer[held + added.size()] = '\0';
    }
    return text.size() > std::max(held, kRoom) ? bscan::kTextTooLong : bscan::kOk;
}

// Lines and their comments always fit.
void Put(char* buffer, std::string_view text) { buffer[text.copy(buffer, text.size())] = '\0'; }

int CompleteIn(std::int64_t& lines, FILE* file, char* statement, Terminator terminator) {
    if (statement == nullptr) return bscan::kFailed;
    return GuardedCode([&] {
        std::string text(statement);
        const std::size_t held = text.size();
        const int result =
            StatementReader(file, lines).Complete(text, terminator, std::max(held, kRoom));
        const int stored = Extend(statement, held, text);
        return result == bscan::kOk ? stored : result;
    });
}

}  // namespace

int BScanParser::GetLine(FILE* file, char* line, char* comment) {
    if (line == nullptr) return bscan::kFailed;
    return GuardedCode([&] {
        LineReader reader(file, line_number_);
        Line next;
        do {
            const int result = reader.ReadOnce(next);
            if (result != bscan::kOk) return result;
            // Each read sets the comment anew, whether or not its line is delivered.
            if (comment != nullptr) {
                Put(comment, next.comment);
                if (!next.comment.empty()) Put(comment + next.comment.size(), "*");
            }
        } while (next.text.empty());
        Put(line, next.text);
        return static_cast<int>(bscan::kOk);
    });
}

int BScanParser::CompleteStatement(FILE* file, char* statement) {
    return CompleteIn(line_number_, file, statement, Terminator::Text(";"));
}

int BScanParser::CompleteStatement(FILE* file, char* statement, char terminator) {
    return CompleteIn(line_number_, file, statement, Terminator::Text({&terminator, 1}));
}

int BScanParser::CompleteStatement(FILE* file, char* statement, char* terminator) {
    if (terminator == nullptr) return bscan::kFailed;
    return CompleteIn(line_number_, file, statement, Terminator::Text(terminator));
}

int BScanParser::CompleteStatementWithOneOf(FILE* file, char* statement, char* set) {
    if (set == nullptr) return bscan::kFailed;
    return CompleteIn(line_number_, file, statement, Terminator::AnyOf(set));
}

int BScanParser::GetCompleteStringValue(FILE* file, char* start, LByteBuffer* out,
                                        bool withComments) {
    if (out == nullptr) return bscan::kNoOutputBuffer;
    return GuardedCode([&] {
        std::string value;
        StatementReader reader(file, line_number_);
        const int result = reader.ReadStringValue(
            View(start), withComments ? Comments::kKeep : Comments::kDrop, value);
        const std::size_t before = out->GetTotalSize();
        out->WriteData(value.data());
        const bool stored = out->GetTotalSize() - before == value.size();
        return stored ? result : static_cast<int>(bscan::kOutOfMemory);
    });
}

bool BScanParser::IsWhiteSpace(char character) { return IsBlank(character); }
bool BScanParser::IsNewLine(char character) { return character == '\n' || character == '\r'; }

bool BScanParser::IsChar(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte == '\t' || IsNewLine(character) || (byte >= 32 && byte <= 127);
}

bool BScanParser::IsLetter(char character) { return bscan::detail::IsLetter(character); }
bool BScanParser::IsDigit(char character) { return bscan::detail::IsDigit(character); }
