#include "finding_text.h"

#include "device_tables.h"
#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace tool {
namespace {

// A longer source line is shown in part.
constexpr std::size_t kMostShown = 100;
constexpr std::size_t kShownBefore = 60;

const char* Word(bscan::Severity severity) {
    switch (severity) {
        case bscan::Severity::kError:
            return "error";
        case bscan::Severity::kWarning:
            return "warning";
        case bscan::Severity::kNote:
            break;
    }
    return "note";
}

// One blank for each tab, so that the caret stands below its word.
std::string Shown(std::string_view text) {
    std::string shown(text);
    std::replace(shown.begin(), shown.end(), '\t', ' ');
    return Printable(shown);
}

std::string WithCaret(std::string_view line, std::size_t column, std::size_t length) {
    std::size_t place = std::min(column - 1, line.size());
    if (place > kShownBefore && line.size() > kMostShown) {
        line.remove_prefix(place - kShownBefore);
        place = kShownBefore;
    }
    line = line.substr(0, kMostShown);
    const std::size_t under = std::max<std::size_t>(Width(Shown(line.substr(place, length))), 1);
    return fmt::format("  {}\n  {}{}\n", Shown(line),
                       std::string(Width(Shown(line.substr(0, place))), ' '),
                       '^' + std::string(under - 1, '~'));
}

// Gives out lines of a text in their order, in one walk over it.
class LineWalk {
public:
    explicit LineWalk(std::string_view text) : rest_(text) {}

    // @param number  not below that of the line before; 0 for no line.
    std::string_view Line(int number) {
        for (; at_ < number && !rest_.empty(); ++at_) rest_.remove_prefix(SizeWithEnd());
        return at_ == number ? rest_.substr(0, Size()) : std::string_view();
    }

private:
    std::size_t Size() const { return std::min(rest_.find_first_of("\r\n"), rest_.size()); }
    std::size_t SizeWithEnd() const {
        const std::size_t size = Size();
        const bool pair = rest_.substr(size, 2) == "\r\n";
        return std::min(size + (pair ? 2 : 1), rest_.size());
    }

    std::string_view rest_;
    int at_ = 1;
};

}  // namespace

Json FindingsOf(const std::string& file, std::string_view text,
                const bscan::Description& description) {
    Json findings = Json::array();
    LineWalk lines(text);
    for (const bscan::Finding& finding : description.Findings()) {
        findings.push_back({{"line", finding.line},
                            {"column", finding.column},
                            {"severity", Word(finding.severity)},
                            {"rule", finding.rule},
                            {"message", finding.message},
                            {"remedy", finding.remedy},
                            {"source", std::string(lines.Line(finding.line))},
                            {"length", finding.length}});
    }
    return {{"file", file},
            {"result", description.Result()},
            {"component", TextOrNull(std::string(description.GetFacts().entity.text))},
            {"findings", findings}};
}

std::string FindingText(const std::string& file, const Json& finding, const Style& style) {
    const int line = finding["line"];
    const int column = finding["column"];
    std::string where = Printable(file);
    if (line > 0) where += fmt::format(":{}", line);
    if (column > 0) where += fmt::format(":{}", column);
    const std::string severity = finding["severity"];
    const Emphasis emphasis = severity == "error" ? Emphasis::kBad : Emphasis::kBold;
    std::string text = fmt::format("{}: {}: {} [{}]\n", where, style(emphasis, severity),
                                   Printable(finding["message"].get<std::string>()),
                                   finding["rule"].get<std::string>());
    if (line > 0 && column > 0) {
        text += WithCaret(finding["source"].get<std::string>(), static_cast<std::size_t>(column),
                          finding["length"].get<std::size_t>());
    }
    const std::string remedy = finding["remedy"];
    if (!remedy.empty()) text += fmt::format("  {}\n", Printable(remedy));
    return text;
}

}  // namespace tool
