// What the documentation says about the rules of findings.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The section of docs/findings.md about a rule, its heading first; empty for an unknown rule.
std::string RuleSection(std::string_view rule);

}  // namespace tool
