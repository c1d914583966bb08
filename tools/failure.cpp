#include "failure.h"

#include "output.h"
#include "printable.h"
#include "source_file.h"
#include "terminal.h"
#include "text_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <string_view>
#include <vector>

namespace tool {
namespace {

// The readers take a statement whole before they look at it, so the line at which they end says
// less than the statement's first line.
void FindStatement(const SourceFile& source, Failure& failure) {
    for (int number = failure.line; number > 0; --number) {
        const std::vector<std::string> words = Words(source.Line(number), 2);
        if (words.empty()) continue;
        const bool named = words[0] == "attribute" || words[0] == "constant";
        const bool port = words[0] == "port" || words[0].rfind("port(", 0) == 0;
        if (!named && !port && words[0] != "entity") continue;
        failure.statement = named && words.size() > 1 ? words[1] : port ? "port" : words[0];
        failure.statement_line = number;
        return;
    }
}

// -1 has several meanings, of which the statement leaves one.
std::string Reason(const Failure& failure) {
    if (failure.code == bscan::kFailed && failure.statement == "PORT_GROUPING") {
        return "the port grouping is malformed";
    }
    if (failure.code == bscan::kFailed && failure.statement == "BOUNDARY_REGISTER") {
        return "the device refuses a cell of the boundary register";
    }
    return bscan::Describe(failure.code);
}

std::string PackageReason(const Device& device) {
    std::vector<std::string_view> names;
    for (const bscan::PinMap& map : device.facts().pin_maps) names.push_back(map.name.text);
    return fmt::format(
        "the file has no pin map '{}'; {}", device.file().package,
        names.empty() ? "it has none at all" : fmt::format("it has {}", fmt::join(names, ", ")));
}

// What the result of a description means, as far as the path tells more than the code.
std::string DescriptionReason(const Device& device, int code) {
    std::error_code error;
    if (code == bscan::kNoSuchPackage) return PackageReason(device);
    if (code == bscan::kReadFailed && std::filesystem::is_directory(device.path(), error)) {
        return "this is a folder; name a file";
    }
    if (code == bscan::kReadFailed) return "the file cannot be read";
    if (code == bscan::kTextTooLong) {
        return fmt::format("the file is longer than {} MiB", bscan::kMaxDescriptionLength >> 20U);
    }
    return bscan::Describe(code);
}

std::string Counted(std::size_t count, const char* what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

}  // namespace

std::string Failure::Headline() const {
    const std::string where = NameOf(path) + (line > 0 ? fmt::format(":{}", line) : "");
    return fmt::format("{}: {} ({})", where, Printable(reason), code);
}

Failure Diagnose(const Device& device, int code) {
    Failure failure;
    failure.path = device.path();
    failure.code = code;
    if (!device.file().by_lines) {
        failure.reason = DescriptionReason(device, code);
        return failure;
    }
    // The text of standard input is gone.
    const SourceFile source(device.path() == "-" ? "" : device.path());
    failure.line = source.LineOfRead(device.parser().GetLineNumber());
    FindStatement(source, failure);
    failure.reason = Reason(failure);
    return failure;
}

void Report(const Failure& failure) {
    const Style style(stderr);
    std::string text = style(Emphasis::kBad, failure.Headline()) + '\n';
    if (failure.statement_line > 0) {
        text += fmt::format("  in the statement that begins at line {}: {}\n",
                            failure.statement_line, Printable(failure.statement));
    }
    if (failure.code != bscan::kCannotOpen && failure.code != bscan::kNoSuchPackage) {
        text += fmt::format("  'bscan check {}' tells what is wrong with the file\n",
                            Printable(failure.path));
    }
    Write(stderr, text);
}

FindingCounts CountFindings(const Device& device) {
    FindingCounts counts;
    if (device.description() == nullptr) return counts;
    for (const bscan::Finding& finding : device.description()->Findings()) {
        if (finding.severity == bscan::Severity::kError) ++counts.errors;
        if (finding.severity == bscan::Severity::kWarning) ++counts.warnings;
    }
    return counts;
}

namespace {

void SumUpFindings(const Device& device) {
    const FindingCounts counts = CountFindings(device);
    std::vector<std::string> parts;
    if (counts.errors > 0) parts.push_back(Counted(counts.errors, "error"));
    if (counts.warnings > 0) parts.push_back(Counted(counts.warnings, "warning"));
    if (parts.empty()) return;
    Write(stderr, fmt::format("{}: {}; 'bscan check {}' tells more\n", NameOf(device.path()),
                              fmt::join(parts, " and "), Printable(device.path())));
}

}  // namespace

bool ReadOrReport(Device& device, const Capture* capture) {
    const int code = device.Read(capture);
    if (code != bscan::kOk) {
        Report(Diagnose(device, code));
        return false;
    }
    SumUpFindings(device);
    return true;
}

}  // namespace tool
