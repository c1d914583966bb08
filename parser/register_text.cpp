#include "parser/register_text.h"

#include "support/text_view.h"

#include <bscan/result.h>

namespace bscan::detail {
namespace {

enum class Letters { kEither, kExact };

struct SignalText {
    std::string_view text;
    eSignal value;
    Letters letters;
};

constexpr SignalText kSafeValues[] = {
    {"X", SIG_X, Letters::kEither}, {"1", SIG_1, Letters::kExact}, {"0", SIG_0, Letters::kExact}};

constexpr SignalText kDisableValues[] = {{"1", SIG_1, Letters::kExact},
                                         {"0", SIG_0, Letters::kExact}};

constexpr SignalText kDisableResults[] = {{"Z", SIG_Z, Letters::kEither},
                                          {"PULL0", SIG_PULL0, Letters::kEither},
                                          {"PULL1", SIG_PULL1, Letters::kEither},
                                          {"WEAK0", SIG_WEAK0, Letters::kEither},
                                          {"WEAK1", SIG_WEAK1, Letters::kEither}};

template <std::size_t kRows>
bool ToSignal(std::string_view text, const SignalText (&rows)[kRows], eSignal& value) {
    for (const SignalText& row : rows) {
        const bool equal = row.letters == Letters::kExact ? text == row.text
                                                          : EqualIgnoringCase(text, row.text);
        if (!equal) continue;
        value = row.value;
        return true;
    }
    return false;
}

// Takes the next field off the body of an entry; a body without comma stays, and gives nothing.
std::string_view TakeField(std::string_view& body) {
    const Parts parts = CutTrimmed(body, ',');
    body = parts.after;
    return parts.before;
}

void CutPort(std::string_view field, RegisterFields& fields) {
    if (Contains(field, '*')) return;
    const std::size_t opening = field.find('(');
    fields.port = field;
    if (opening == std::string_view::npos) return;
    const Parts parts = CutTrimmed(field, '(');
    fields.port = parts.before;
    fields.port_index = DecimalValue(CutAt(parts.after, ')').before);
}

}  // namespace

int CutRegister(std::string_view value, std::vector<RegisterEntry>& entries) {
    enum class State { kBetween, kInEntry, kAfterEntry, kInRemark };
    State state = State::kBetween;
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        switch (state) {
            case State::kBetween:
                if (c == '"' || IsBlank(c)) break;
                state = c == '-' ? State::kInRemark : State::kInEntry;
                // The first character of an entry is never taken as a parenthesis.
                begin = c == '-' ? i + 1 : i;
                break;
            case State::kInEntry:
                if (c == '(') ++depth;
                if (c != ')' || --depth > 0) break;
                if (depth < 0) return kBadValue;
                entries.push_back({value.substr(begin, i + 1 - begin), {}});
                state = State::kAfterEntry;
                break;
            case State::kAfterEntry:
                if (c == ',') {
                    state = State::kBetween;
                } else if (!IsBlank(c)) {
                    return kBadValue;
                }
                break;
            case State::kInRemark:
                if (c != '*') break;
                // A remark in front of the first entry belongs to none.
                if (!entries.empty()) entries.back().remark = value.substr(begin, i - begin);
                state = State::kBetween;
                break;
        }
    }
    return entries.empty() ? kBadValue : kOk;
}

void AppendRemark(std::string_view remark, std::string& text) {
    for (const char c : remark) {
        if (c != '-' && !IsBlank(c)) text.push_back(c);
    }
}

bool CutRegisterEntry(std::string_view text, RegisterFields& fields) {
    const Parts parts = CutTrimmed(text, '(');
    fields.number = DecimalValue(parts.before);
    std::string_view body = TrimRight(parts.after.substr(0, parts.after.rfind(')')));
    fields.type = TakeField(body);
    CutPort(TakeField(body), fields);
    fields.function = TakeField(body);

    const std::size_t comma = body.find(',');
    std::string_view safe = body;
    if (comma != std::string_view::npos && comma > 0) {
        safe = TakeField(body);
    } else {
        body = {};
    }
    if (!ToSignal(safe, kSafeValues, fields.safe)) return false;
    if (body.empty()) return true;
    fields.control = DecimalValue(TakeField(body));
    return ToSignal(TakeField(body), kDisableValues, fields.disable_value) &&
           ToSignal(body, kDisableResults, fields.disable_result);
}

}  // namespace bscan::detail
