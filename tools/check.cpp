// bscan check: what is wrong with files.

#include <bscan/result.h>

#include "commands.h"
#include "file_list.h"
#include "finding_text.h"
#include "printable.h"
#include "process_pool.h"
#include "progress.h"
#include "terminal.h"

#include <fmt/format.h>

#include <map>
#include <thread>

namespace tool {
namespace {

Json CheckFile(const std::string& file) {
    return FindingsOf(file, bscan::Description::Read(file.c_str()));
}

// A file whose reading process ended early has no result.
Json Unread(const std::string& file) {
    return {{"file", file}, {"result", Json()}, {"component", Json()}, {"findings", Json::array()}};
}

// The result in words when no finding tells of it.
std::string ResultText(const Json& record, const Style& style) {
    const Json& result = record["result"];
    if (result == bscan::kOk || !record["findings"].empty()) return {};
    const std::string reason = result.is_null() ? "the process that read the file ended early"
                                                : bscan::Describe(result.get<int>());
    return fmt::format("{}: {}: {}\n", Printable(record["file"].get<std::string>()),
                       style(Emphasis::kBad, "error"), reason);
}

// What the summary counts.
struct Counts {
    std::size_t files = 0;
    std::size_t bad_files = 0;
    std::map<std::string, std::size_t> findings;  // by severity

    void Add(const Json& record) {
        bool bad = record["result"] != bscan::kOk;
        for (const Json& finding : record["findings"]) {
            ++findings[finding["severity"]];
            bad = bad || finding["severity"] == "error";
        }
        ++files;
        if (bad) ++bad_files;
    }
    std::string Text() {
        return fmt::format(
            "{} files: {} without errors, {} with; {} errors, {} warnings, {} notes\n", files,
            files - bad_files, bad_files, findings["error"], findings["warning"], findings["note"]);
    }
};

// Prints the records in the order of the files, each as soon as those before it are there.
class Printer {
public:
    Printer(std::vector<std::string> files, Format format)
        : files_(std::move(files)), format_(format), style_(stdout), progress_(files_.size()) {}

    void Add(std::size_t index, std::optional<std::string> bytes) {
        waiting_[index] = bytes ? Json::from_cbor(*bytes) : Unread(files_[index]);
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == printed_;
             first = waiting_.erase(first)) {
            Print(first->second);
            ++printed_;
        }
        progress_.Show(printed_ + waiting_.size());
    }

    int Finish() {
        progress_.Clear();
        if (format_ == Format::kTable) Write(stdout, counts_.Text());
        return counts_.bad_files == 0 ? kSuccess : kProblem;
    }

private:
    void Print(const Json& record) {
        counts_.Add(record);
        progress_.Clear();
        if (format_ == Format::kJson) return PrintJson(record);
        if (format_ == Format::kCsv) return PrintCsv(record);
        const std::string file = record["file"];
        std::string text = ResultText(record, style_);
        for (const Json& finding : record["findings"]) text += FindingText(file, finding, style_);
        if (text.empty()) text = Printable(file) + ": " + style_(Emphasis::kGood, "ok") + '\n';
        Write(stdout, text);
    }

    static void PrintJson(Json record) {
        for (Json& finding : record["findings"]) {
            finding.erase("source");
            finding.erase("length");
        }
        tool::Print(stdout, record, -1);
    }

    // A row for each finding; a file without findings has one too.
    void PrintCsv(const Json& record) const {
        Table table;
        for (const char* column : {"file", "result", "component", "line", "column", "severity",
                                   "rule", "message", "remedy"}) {
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
        PrintCsvRows(stdout, table, printed_ == 0 ? Headings::kWith : Headings::kWithout);
    }

    std::vector<std::string> files_;
    Format format_;
    Style style_;
    Progress progress_;
    std::map<std::size_t, Json> waiting_;
    std::size_t printed_ = 0;
    Counts counts_;
};

int Jobs(int asked) {
    return asked > 0 ? asked : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

}  // namespace

int Check(const CheckOptions& options) {
    const std::vector<std::string> files = FindFiles(options.files);
    if (files.empty()) {
        Write(stderr, "bscan check: no BSDL file (.bsd, .bsdl) found\n");
        return kProblem;
    }
    Printer printer(files, options.format);
    RunInProcesses(
        files.size(), Jobs(options.jobs),
        [&](std::size_t index) {
            const std::vector<std::uint8_t> bytes = Json::to_cbor(CheckFile(files[index]));
            return std::string(bytes.begin(), bytes.end());
        },
        [&](std::size_t index, std::optional<std::string> bytes) {
            printer.Add(index, std::move(bytes));
        });
    return printer.Finish();
}

}  // namespace tool
