#include "sarif.h"

#include <bscan/description.h>
#include <bscan/result.h>
#include <bscan/version.h>

#include "printable.h"
#include "rule_text.h"
#include "text_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tool {
namespace {

// A path as a relative or absolute reference: what a URI cannot hold becomes %XX.
std::string Uri(const std::string& path) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = path.rfind('/', 0) == 0 ? "file://" : "";
    for (const char c : path) {
        if (kPlain.find(c) != std::string_view::npos) {
            uri += c;
        } else {
            fmt::format_to(std::back_inserter(uri), "%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return uri;
}

Json PhysicalLocation(const std::string& file) {
    return {{"artifactLocation", {{"uri", Uri(file)}}}};
}

// Columns count characters here.
Json Region(const Json& finding) {
    Json region = {{"startLine", finding["line"]}};
    const int column = finding["column"];
    if (column < 1) return region;
    const std::string source = finding["source"];
    const std::string_view line = source;
    const std::size_t begin = std::min(static_cast<std::size_t>(column) - 1, line.size());
    const std::size_t length = finding["length"];
    region["startColumn"] = Width(line.substr(0, begin)) + 1;
    region["endColumn"] = Width(line.substr(0, begin + length)) + 1;
    return region;
}

std::string MessageText(const Json& finding) {
    const std::string message = JsonText(finding["message"].get<std::string>());
    const std::string remedy = JsonText(finding["remedy"].get<std::string>());
    return remedy.empty() ? message : message + "; " + remedy;
}

Json RuleJson(const std::string& rule) {
    const char* sentence = bscan::DescribeRule(rule);
    Json json = {{"id", rule}};
    if (sentence != nullptr) json["shortDescription"] = {{"text", sentence}};
    const std::string section = RuleSection(rule);
    if (!section.empty()) json["help"] = {{"text", section}, {"markdown", section}};
    return json;
}

}  // namespace

std::size_t SarifLog::RuleIndex(const std::string& rule) {
    const auto [place, is_new] = rule_places_.try_emplace(rule, rules_.size());
    if (is_new) rules_.push_back(rule);
    return place->second;
}

void SarifLog::Add(const Json& record) {
    const std::string file = record["file"];
    const Json& result = record["result"];
    if (result != bscan::kOk && record["findings"].empty()) {
        const std::string reason = result.is_null() ? "the process that read the file ended early"
                                                    : DescribeLoad(result.get<int>());
        unread_.push_back(
            {{"level", "error"},
             {"message", {{"text", reason}}},
             {"locations", Json::array({{{"physicalLocation", PhysicalLocation(file)}}})}});
    }
    for (const Json& finding : record["findings"]) {
        const std::string rule = finding["rule"];
        Json location = PhysicalLocation(file);
        if (finding["line"].get<int>() > 0) location["region"] = Region(finding);
        results_.push_back({{"ruleId", rule},
                            {"ruleIndex", RuleIndex(rule)},
                            {"level", finding["severity"]},
                            {"message", {{"text", MessageText(finding)}}},
                            {"locations", Json::array({{{"physicalLocation", location}}})}});
    }
}

Json SarifLog::Log() const {
    Json rules = Json::array();
    for (const std::string& rule : rules_) rules.push_back(RuleJson(rule));
    const Json driver = {{"name", "bscan"}, {"version", bscan::Version()}, {"rules", rules}};
    const Json invocation = {{"executionSuccessful", unread_.empty()},
                             {"toolExecutionNotifications", unread_}};
    const Json run = {{"tool", {{"driver", driver}}},
                      {"invocations", Json::array({invocation})},
                      {"columnKind", "unicodeCodePoints"},
                      {"results", results_}};
    return {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({run})}};
}

}  // namespace tool
