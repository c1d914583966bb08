// Findings in the Static Analysis Results Interchange Format (SARIF 2.1.0), for code scanning.
#pragma once

#include "table.h"

#include <map>
#include <string>
#include <vector>

namespace tool {

/// Collects the records of files (see finding_text.h) in one log with one run.
class SarifLog {
public:
    void Add(const Json& record);
    /// The log of what was added.
    Json Log() const;

private:
    std::size_t RuleIndex(const std::string& rule);

    std::vector<std::string> rules_;
    std::map<std::string, std::size_t> rule_places_;
    Json results_ = Json::array();
    Json unread_ = Json::array();  // notifications about files that could not be read
};

}  // namespace tool
