// Shows what is wrong with a file as a compiler would: place, message, and a mark under the words.
//
//     show_findings FILE
//
// The status is 1 when the file has an error.
#include <bscan/bscan.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

const char* SeverityText(bscan::Severity severity) {
    return severity == bscan::Severity::kError     ? "error"
           : severity == bscan::Severity::kWarning ? "warning"
                                                   : "note";
}

void Print(const bscan::Description& description, const bscan::Finding& finding) {
    std::printf("%s:%d:%d: %s: %s [%s]\n", description.Name().c_str(), finding.line, finding.column,
                SeverityText(finding.severity), finding.message.c_str(), finding.rule.c_str());
    if (finding.column > 0) {
        const std::string_view line = description.Line(finding.line);
        std::string mark(line.substr(0, static_cast<std::size_t>(finding.column) - 1));
        for (char& character : mark) {
            character = character == '\t' ? '\t' : ' ';
        }
        std::printf("%.*s\n%s^\n", static_cast<int>(line.size()), line.data(), mark.c_str());
    }
    if (!finding.remedy.empty()) {
        std::printf("%s\n", finding.remedy.c_str());
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "show_findings: no BSDL file given\n"
            "usage: show_findings FILE\n",
            stderr);
        return 2;
    }
    const bscan::Description description = bscan::Description::Read(argv[1]);
    int status = description.Result() == bscan::kOk ? 0 : 1;
    for (const bscan::Finding& finding : description.Findings()) {
        Print(description, finding);
        status = finding.severity == bscan::Severity::kError ? 1 : status;
    }
    std::printf("%s: %s, %zu findings\n", argv[1], bscan::Describe(description.Result()),
                description.Findings().size());
    return status;
}
