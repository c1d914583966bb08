// bscan format: a description written again as clean BSDL.

#include <bscan/description.h>
#include <bscan/result.h>

#include "bsdl_text.h"
#include "commands.h"
#include "printable.h"
#include "text_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>

namespace tool {
namespace {

using bscan::Description;

int Report(const FormatOptions& options, const std::string& reason) {
    Write(stderr, fmt::format("bscan format: {}: {}\n", Printable(options.file), reason));
    return kProblem;
}

std::map<std::string, int> CountErrors(const Description& description) {
    std::map<std::string, int> counts;
    for (const bscan::Finding& finding : description.Findings()) {
        if (finding.severity == bscan::Severity::kError) ++counts[finding.rule];
    }
    return counts;
}

// An error that the text has and the description has not: what a fault of the original hides, such
// as a port in a declaration that cannot be read, would be missing for good.
std::string NewError(const Description& original, const Description& written) {
    const std::map<std::string, int> known = CountErrors(original);
    std::map<std::string, int> counts;
    for (const bscan::Finding& finding : written.Findings()) {
        if (finding.severity != bscan::Severity::kError) continue;
        const auto before = known.find(finding.rule);
        if (++counts[finding.rule] > (before == known.end() ? 0 : before->second)) {
            return fmt::format("{} [{}]", finding.message, finding.rule);
        }
    }
    return {};
}

// Words behind the last field that an entry of the register can have.
bool HasSurplusFields(const bscan::Facts& facts) {
    constexpr int kMostFields = 7;
    return std::any_of(facts.cells.begin(), facts.cells.end(),
                       [](const bscan::Cell& cell) { return cell.field_count > kMostFields; });
}

std::string PackageNames(const bscan::Facts& facts) {
    std::vector<std::string> names;
    for (const bscan::PinMap& map : facts.pin_maps) names.push_back(Printable(map.name.text));
    return names.empty() ? "it has none" : fmt::format("it has {}", fmt::join(names, ", "));
}

void TellErrors(const FormatOptions& options, const Description& description) {
    const auto errors = std::count_if(
        description.Findings().begin(), description.Findings().end(),
        [](const bscan::Finding& f) { return f.severity == bscan::Severity::kError; });
    if (errors == 0) return;
    Report(options, fmt::format("{} {} in the file; 'bscan check {}' tells more", errors,
                                errors == 1 ? "error" : "errors", Printable(options.file)));
}

int Finish(const FormatOptions& options, const std::string& original, const std::string& text) {
    if (!options.check) return SaveText("format", options.output, text) ? kSuccess : kProblem;
    if (original == text) return kSuccess;
    Write(stdout, fmt::format("{}: would change\n", Printable(options.file)));
    return kProblem;
}

}  // namespace

int FormatFile(const FormatOptions& options) {
    const LoadedText loaded = LoadText(options.file);
    if (loaded.code != bscan::kOk) return Report(options, DescribeLoad(loaded.code));
    const Description original = Description::Parse(loaded.text, options.file.c_str());
    if (original.Result() != bscan::kOk) return Report(options, bscan::Describe(original.Result()));
    const bscan::Facts& facts = original.GetFacts();
    if (!options.package.empty() && facts.FindPinMap(options.package) == nullptr) {
        return Report(options, fmt::format("no package {}; {}", Printable(options.package),
                                           PackageNames(facts)));
    }
    TellErrors(options, original);
    const std::string text = BsdlText(facts, options.package);
    const Description written = Description::Parse(text, options.file.c_str());
    const std::string error = NewError(original, written);
    if (!error.empty()) {
        return Report(options, "an error hides facts, which would be lost: " + Printable(error));
    }
    if (BsdlText(written.GetFacts(), options.package) != text || HasSurplusFields(facts)) {
        return Report(options, "the facts cannot be written so that they are read again");
    }
    return Finish(options, loaded.text, text);
}

}  // namespace tool
