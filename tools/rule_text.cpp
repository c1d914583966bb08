#include "rule_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tool {
namespace {

// The build makes this of docs/findings.md.
constexpr std::string_view kFindings =
#include "findings_text.inc"
    ;

}  // namespace

std::string RuleSection(std::string_view rule) {
    const std::string heading = fmt::format("\n### {}\n", rule);
    const std::size_t begin = kFindings.find(heading);
    if (begin == std::string_view::npos || rule.empty()) return {};
    const std::string_view rest = kFindings.substr(begin + heading.size());
    // Sections of rules have three marks, those of subjects two.
    const std::size_t end = std::min(rest.find("\n## "), rest.find("\n### "));
    std::string_view section = rest.substr(0, end);
    section = section.substr(0, section.find_last_not_of('\n') + 1);
    return fmt::format("{}\n{}\n", rule, section);
}

}  // namespace tool
