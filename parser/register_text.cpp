#include "parser/register_text.h"

#include <bscan/result.h>

#include "support/text_view.h"

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
        const bool equal =
            row.letters == Letters::kExact ? text == row.text : EqualIgnoringCase(text, row.text);
        if (!equal) continue;
        value = row.value;
        return true;
    }
    return false;
}

// Takes the next field off the body of an entry; a body without comma stays, and gives nothing.
std::string_view TakeField(std::string_view& body) {
    // Fields are shorter than what Find is made for.
    std::size_t comma = 0;
    while (comma < body.size() && body[comma] != ',') ++comma;
    if (comma == body.size()) return {};
    const std::string_view field = TrimRight({body.data(), comma});
    body = TrimLeft({body.data() + comma + 1, body.size() - comma - 1});
    return field;
}

void CutPort(std::string_view field, RegisterFields& fields) {
    if (Contains(field, '*')) return;
    const std::size_t opening = Find(field, '(');
    fields.port = TrimRight(field.substr(0, opening));
    if (opening == std::string_view::npos) return;
    fields.port_index = DecimalValue(CutAt(field.substr(opening + 1), ')').before);
}

}  // namespace

// False at the end of the value.
bool RegisterCutter::SkipBlanksAndQuotes() {
    while (at_ < value_.size() && (IsBlank(value_[at_]) || value_[at_] == '"')) ++at_;
    return at_ < value_.size();
}

bool RegisterCutter::Stop(bool malformed) {
    malformed_ = malformed;
    at_ = value_.size();
    return false;
}

// Skips remarks, each from the dash that begins it to its '*', and keeps the last. One without '*'
// is dropped.
void RegisterCutter::CutRemarks(std::string_view& remark) {
    while (SkipBlanksAndQuotes() && value_[at_] == '-') {
        const std::string_view text = value_.substr(at_ + 1);
        const std::size_t end = Find(text, '*');
        if (end == std::string_view::npos) {
            at_ = value_.size();
            return;
        }
        remark = text.substr(0, end);
        at_ += end + 2;
    }
}

// From any character, which is never taken as a parenthesis, through the parenthesis that closes
// the entry's first one, and the comma behind it. An entry without end is dropped.
bool RegisterCutter::CutEntry(std::string_view& text) {
    const std::size_t begin = at_;
    int depth = 0;
    do {
        const std::size_t next = Find(value_.substr(at_ + 1), '(', ')');
        if (next == std::string_view::npos) return Stop(false);
        at_ += next + 1;
        depth += value_[at_] == '(' ? 1 : -1;
        if (depth < 0) return Stop(true);
    } while (depth > 0);
    ++at_;
    text = value_.substr(begin, at_ - begin);
    while (at_ < value_.size() && IsBlank(value_[at_])) ++at_;
    if (at_ < value_.size() && value_[at_++] != ',') malformed_ = true;
    return true;
}

bool RegisterCutter::Next(RegisterEntry& entry) {
    // A remark in front of the first entry belongs to none.
    std::string_view no_remark;
    CutRemarks(no_remark);
    if (malformed_ || at_ >= value_.size() || !CutEntry(entry.text)) return false;
    entry.remark = {};
    CutRemarks(entry.remark);
    return true;
}

bool IsRegister(std::string_view value) {
    RegisterCutter cutter(value);
    RegisterEntry entry;
    bool any = false;
    while (cutter.Next(entry)) any = true;
    return any && !cutter.IsMalformed();
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

    // Without columns behind it, the safe value is all that is left.
    const std::string_view rest = body;
    std::string_view safe = TakeField(body);
    if (safe.empty()) {
        safe = rest;
        body = {};
    }
    if (!ToSignal(safe, kSafeValues, fields.safe)) return false;
    if (body.empty()) return true;
    fields.control = DecimalValue(TakeField(body));
    return ToSignal(TakeField(body), kDisableValues, fields.disable_value) &&
           ToSignal(body, kDisableResults, fields.disable_result);
}

}  // namespace bscan::detail
