// The walk over the lines of an entity.

#include <bscan/result.h>

#include "parser/main_pass.h"
#include "support/text_view.h"

#include <algorithm>
#include <iterator>

namespace bscan::detail {
namespace {

constexpr std::string_view kEntity = "entity";

}  // namespace

// What a line that begins with a keyword leads to. A longer word may begin with it, too.
struct MainPass::LineRule {
    enum class Action { kRead, kSkip, kEnd };

    std::string_view keyword;
    Action action;
    Reader reader;
};

const MainPass::LineRule MainPass::kLineRules[] = {
    {"port", LineRule::Action::kRead, &MainPass::ReadPort},
    {"use", LineRule::Action::kSkip, nullptr},
    {"attribute", LineRule::Action::kRead, &MainPass::ReadAttribute},
    {"constant", LineRule::Action::kRead, &MainPass::ReadConstant},
    {"end", LineRule::Action::kEnd, nullptr},
    // What is left of an attribute that was not read.
    {"\"", LineRule::Action::kSkip, nullptr},
};

int MainPass::ReadFile() {
    std::string_view line;
    const int result = reader_.NextLine(line);
    if (result != kOk) return result;
    if (!line.starts_with(kEntity)) return kUnexpectedLine;
    std::string statement(line);
    return ReadEntity(statement);
}

int MainPass::ReadEntity(std::string& statement) {
    int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    const std::string_view text = statement;
    // A host's text may be shorter than the word "entity".
    const Parts parts = CutWord(TrimLeft(text.substr(std::min(kEntity.size(), text.size()))));
    parser_.component_name_ = std::string(parts.before);
    // The lines come from the stream of this pass, which may be a host's own; what a statement has
    // beyond its line is read from the file of the main pass all the same.
    MainPass readers(parser_, fptrBSDL);
    if (Contains(text, "generic")) {
        std::string rest(parts.after);
        result = readers.ReadGeneric(rest);
        if (result != kOk) return result;
    }
    for (;;) {
        std::string_view line;
        result = reader_.NextLine(line);
        if (result != kOk) return result;
        const auto* const rule =
            std::find_if(std::begin(kLineRules), std::end(kLineRules),
                         [&](const LineRule& row) { return line.starts_with(row.keyword); });
        if (rule == std::end(kLineRules)) return kUnexpectedLine;
        if (rule->action == LineRule::Action::kEnd) return kOk;
        if (rule->action == LineRule::Action::kSkip) continue;
        statement.assign(line);
        result = (readers.*rule->reader)(statement);
        if (result != kOk) return result;
    }
}

}  // namespace bscan::detail
