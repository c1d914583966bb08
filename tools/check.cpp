// bscan check: what is wrong with files.

#include <bscan/description.h>
#include <bscan/result.h>

#include "commands.h"
#include "file_list.h"
#include "finding_text.h"
#include "line_reading.h"
#include "printable.h"
#include "process_pool.h"
#include "progress.h"
#include "rule_text.h"
#include "sarif.h"
#include "terminal.h"
#include "text_file.h"
#include "thread_pool.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace tool {
namespace {

// The record of a file that was not read.
Json RecordWithout(const std::string& file, const Json& result) {
    return {{"file", file}, {"result", result}, {"component", Json()}, {"findings", Json::array()}};
}

bool IsWanted(const CheckOptions& options, const Json& finding) {
    const auto has = [&](const std::vector<std::string>& rules) {
        return std::find(rules.begin(), rules.end(), finding["rule"]) != rules.end();
    };
    return (options.rules.empty() || has(options.rules)) && !has(options.no_rules);
}

Json CheckFile(const CheckOptions& options, const std::string& file) {
    const LoadedText loaded = LoadText(file);
    if (loaded.code != bscan::kOk) return RecordWithout(file, loaded.code);
    const bscan::Description description = bscan::Description::Parse(loaded.text, file.c_str());
    Json record = FindingsOf(file, loaded.text, description);
    Json findings = Json::array();
    for (Json& finding : record["findings"]) {
        if (IsWanted(options, finding)) findings.push_back(std::move(finding));
    }
    record["findings"] = std::move(findings);
    if (options.lines) record["lines"] = ReadByLines(loaded.text, description);
    return record;
}

// The result in words when no finding tells of it.
std::string ResultText(const Json& record, const Style& style) {
    const Json& result = record["result"];
    if (result == bscan::kOk || !record["findings"].empty()) return {};
    const std::string reason = result.is_null() ? "the process that read the file ended early"
                                                : DescribeLoad(result.get<int>());
    return fmt::format("{}: {}: {}\n", Printable(record["file"].get<std::string>()),
                       style(Emphasis::kBad, "error"), reason);
}

std::string RecordText(const Json& record, const Style& style) {
    const std::string file = record["file"];
    std::string text = ResultText(record, style);
    for (const Json& finding : record["findings"]) text += FindingText(file, finding, style);
    if (text.empty()) text = Printable(file) + ": " + style(Emphasis::kGood, "ok") + '\n';
    if (record.contains("lines")) text += LineReadingText(file, record["lines"]);
    return text;
}

// What the summary counts.
class Counts {
public:
    explicit Counts(bool strict) : strict_(strict) {}

    void Add(const Json& record) {
        bool bad = record["result"] != bscan::kOk;
        for (const Json& finding : record["findings"]) {
            const std::string severity = finding["severity"];
            ++severities_[severity];
            ++rules_[{severity, finding["rule"]}];
            bad = bad || severity == "error" || (strict_ && severity == "warning");
        }
        ++files_;
        if (bad) ++bad_files_;
    }

    bool AllGood() const { return bad_files_ == 0; }

    // The rules, those with errors first and then the most frequent ones, and the sums.
    std::string Text() {
        std::vector<std::pair<std::size_t, Rule>> rows;
        for (const auto& [rule, count] : rules_) rows.emplace_back(count, rule);
        std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
            return std::pair(Rank(a.second), b.first) < std::pair(Rank(b.second), a.first);
        });
        std::string text;
        for (const auto& [count, rule] : rows) {
            text += fmt::format("{:>7} {:<8} {}\n", count, rule.first, rule.second);
        }
        return text +
               fmt::format("{} files: {} without {}, {} with; {} errors, {} warnings, {} notes\n",
                           files_, files_ - bad_files_, strict_ ? "errors and warnings" : "errors",
                           bad_files_, severities_["error"], severities_["warning"],
                           severities_["note"]);
    }

private:
    using Rule = std::pair<std::string, std::string>;  // severity and name

    static int Rank(const Rule& rule) {
        return rule.first == "error" ? 0 : rule.first == "warning" ? 1 : 2;
    }

    bool strict_;
    std::size_t files_ = 0;
    std::size_t bad_files_ = 0;
    std::map<std::string, std::size_t> severities_;
    std::map<Rule, std::size_t> rules_;
};

// A row for each finding; a file without findings has one too.
void PrintCsv(const Json& record, Headings headings) {
    Table table;
    for (const char* column : {"file", "result", "component", "line", "column", "severity", "rule",
                               "message", "remedy"}) {
        table.columns.push_back({column, column});
    }
    const std::vector<Json> front = {record["file"], record["result"], record["component"]};
    for (const Json& finding : record["findings"]) {
        table.rows.push_back(front);
        for (const char* key : {"line", "column", "severity", "rule", "message", "remedy"}) {
            table.rows.back().push_back(finding[key]);
        }
    }
    if (table.rows.empty()) table.rows.push_back(front);
    table.rows.back().resize(table.columns.size());
    PrintCsvRows(stdout, table, headings);
}

// One object on a line, without what only people need.
void PrintJson(Json record) {
    for (Json& finding : record["findings"]) {
        finding.erase("source");
        finding.erase("length");
    }
    Print(stdout, record, -1);
}

// Prints the records in the order of the files, each as soon as those before it are there.
class Printer {
public:
    Printer(std::vector<std::string> files, const CheckOptions& options)
        : files_(std::move(files)),
          format_(options.format),
          style_(stdout),
          progress_(files_.size()),
          counts_(options.strict) {}

    void Add(std::size_t index, std::optional<std::string> bytes) {
        waiting_[index] = bytes ? Json::from_cbor(*bytes) : RecordWithout(files_[index], Json());
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == printed_;
             first = waiting_.erase(first)) {
            PrintRecord(first->second);
            ++printed_;
        }
        progress_.Show(printed_ + waiting_.size());
    }

    int Finish() {
        progress_.Clear();
        if (format_ == CheckFormat::kTable) Write(stdout, counts_.Text());
        if (format_ == CheckFormat::kSarif) Print(stdout, sarif_.Log(), 2);
        return counts_.AllGood() ? kSuccess : kProblem;
    }

private:
    void PrintRecord(const Json& record) {
        counts_.Add(record);
        if (format_ == CheckFormat::kSarif) return sarif_.Add(record);
        progress_.Clear();
        if (format_ == CheckFormat::kJson) return PrintJson(record);
        if (format_ == CheckFormat::kTable) return Write(stdout, RecordText(record, style_));
        PrintCsv(record, printed_ == 0 ? Headings::kWith : Headings::kWithout);
    }

    std::vector<std::string> files_;
    CheckFormat format_;
    Style style_;
    Progress progress_;
    Counts counts_;
    SarifLog sarif_;
    std::map<std::size_t, Json> waiting_;
    std::size_t printed_ = 0;
};

int Misused(const std::string& reason) {
    Write(stderr, fmt::format("bscan check: {}\n", reason));
    return kUsage;
}

// A name that no rule has; empty when all are known.
std::string UnknownRule(const CheckOptions& options) {
    for (const auto* rules : {&options.rules, &options.no_rules}) {
        for (const std::string& rule : *rules) {
            if (bscan::DescribeRule(rule) == nullptr) return rule;
        }
    }
    return {};
}

int Explain(const std::string& rule) {
    const std::string section = RuleSection(rule);
    if (section.empty()) return Misused("no rule has the name " + Printable(rule));
    Write(stdout, section);
    return kSuccess;
}

}  // namespace

int Check(const CheckOptions& options) {
    if (!options.explain.empty()) return Explain(options.explain);
    if (options.files.empty()) return Misused("name files or folders");
    const std::string unknown = UnknownRule(options);
    if (!unknown.empty()) return Misused("no rule has the name " + Printable(unknown));
    const std::vector<std::string> files = FindFiles(options.files);
    if (files.empty()) {
        Write(stderr, "bscan check: no BSDL file (.bsd, .bsdl) found\n");
        return kProblem;
    }
    Printer printer(files, options);
    RunInProcesses(
        files.size(), JobCount(options.jobs),
        [&](std::size_t index) {
            const std::vector<std::uint8_t> bytes = Json::to_cbor(CheckFile(options, files[index]));
            return std::string(bytes.begin(), bytes.end());
        },
        [&](std::size_t index, std::optional<std::string> bytes) {
            printer.Add(index, std::move(bytes));
        });
    return printer.Finish();
}

}  // namespace tool
