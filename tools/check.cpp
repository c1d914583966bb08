// bscan check: which files can be read, and why the others cannot.

#include "commands.h"
#include "device_tables.h"
#include "failure.h"
#include "file_list.h"
#include "printable.h"
#include "process_pool.h"
#include "progress.h"
#include "terminal.h"

#include <fmt/format.h>

#include <map>
#include <thread>

namespace tool {
namespace {

// The outcome of one file; a code of null means that the reading process itself ended.
Json Record(const std::string& file, const Json& code, const std::string& reason) {
    return {{"file", file},     {"code", code},        {"line", Json()},
            {"reason", reason}, {"statement", Json()}, {"statement_line", Json()},
            {"advice", Json()}, {"component", Json()}, {"ports", Json()},
            {"cells", Json()}};
}

Json CheckFile(const std::string& file) {
    Device device(file);
    const int code = device.Read(nullptr);
    Json record = Record(file, code, bscan::Describe(code));
    record["component"] = TextOrNull(device.ComponentName());
    record["ports"] = PortCount(device);
    record["cells"] = device.map().GetBScanLength();
    if (code == bscan::kOk) return record;
    const Failure failure = Diagnose(device, code);
    record["reason"] = failure.reason;
    if (failure.line > 0) record["line"] = failure.line;
    if (failure.statement_line > 0) record["statement_line"] = failure.statement_line;
    record["statement"] = TextOrNull(failure.statement);
    record["advice"] = TextOrNull(failure.advice);
    return record;
}

std::string Headline(const Json& record, const Style& style) {
    const std::string file = Printable(record["file"].get<std::string>());
    const std::string reason = record["reason"].get<std::string>();
    if (record["code"] == bscan::kOk) {
        return fmt::format("{}: {}", file, style(Emphasis::kGood, "ok"));
    }
    const std::string line = record["line"].is_null() ? "" : ":" + record["line"].dump();
    const std::string code = record["code"].is_null() ? "no code" : record["code"].dump();
    return fmt::format("{}{}: {}", file, line,
                       style(Emphasis::kBad, fmt::format("{} ({})", reason, code)));
}

// Prints the records in the order of the files, each as soon as those before it are there.
class Printer {
public:
    Printer(std::vector<std::string> files, Format format)
        : files_(std::move(files)), format_(format), style_(stdout), progress_(files_.size()) {}

    void Add(std::size_t index, std::optional<std::string> bytes) {
        waiting_[index] =
            bytes ? Json::from_cbor(*bytes)
                  : Record(files_[index], Json(), "the process that read the file ended early");
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == printed_;
             first = waiting_.erase(first)) {
            Print(first->second);
            ++printed_;
        }
        progress_.Show(printed_ + waiting_.size());
    }

    int Finish() {
        progress_.Clear();
        if (format_ == Format::kTable) Write(stdout, Summary());
        return counts_.size() == counts_.count("0") ? kSuccess : kProblem;
    }

private:
    void Print(const Json& record) {
        ++counts_[record["code"].is_null() ? "no code" : record["code"].dump()];
        progress_.Clear();
        if (format_ == Format::kJson) return tool::Print(stdout, record, -1);
        if (format_ == Format::kCsv) return PrintCsv(record);
        Write(stdout, Headline(record, style_) + '\n');
    }

    void PrintCsv(const Json& record) {
        Table table;
        table.rows.emplace_back();
        for (const auto& [key, value] : record.items()) {
            table.columns.push_back({key, key});
            table.rows[0].push_back(value);
        }
        PrintCsvRows(stdout, table, printed_ == 0 ? Headings::kWith : Headings::kWithout);
    }

    std::string Summary() const {
        const std::size_t sound = counts_.count("0") == 0 ? 0 : counts_.at("0");
        std::string failing;
        for (const auto& [code, count] : counts_) {
            if (code != "0") {
                failing += fmt::format("{}{} with {}", failing.empty() ? "" : ", ", count, code);
            }
        }
        return fmt::format("{} files: {} sound, {} failing{}\n", printed_, sound, printed_ - sound,
                           failing.empty() ? "" : " (" + failing + ")");
    }

    std::vector<std::string> files_;
    Format format_;
    Style style_;
    Progress progress_;
    std::map<std::size_t, Json> waiting_;
    std::size_t printed_ = 0;
    std::map<std::string, std::size_t> counts_;  // by code
};

int Jobs(int asked) {
    return asked > 0 ? asked : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

}  // namespace

int Check(const CheckOptions& options) {
    const std::vector<std::string> files = FindFiles(options.files);
    if (files.empty()) {
        Write(stderr, "bscan check: no BSDL file (.bsd, .bsdl, .bsm) found\n");
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
