#include "failure.h"

#include "output.h"
#include "printable.h"
#include "source_file.h"
#include "terminal.h"

#include <fmt/format.h>

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

}  // namespace

std::string Failure::Headline() const {
    const std::string where = Printable(path) + (line > 0 ? fmt::format(":{}", line) : "");
    return fmt::format("{}: {} ({})", where, reason, code);
}

Failure Diagnose(const Device& device, int code) {
    Failure failure;
    failure.path = device.path();
    failure.code = code;
    const SourceFile source(device.path());
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
    text += fmt::format("  'bscan check {}' tells what is wrong with the file\n",
                        Printable(failure.path));
    Write(stderr, text);
}

bool ReadOrReport(Device& device, const Capture* capture) {
    const int code = device.Read(capture);
    if (code != bscan::kOk) Report(Diagnose(device, code));
    return code == bscan::kOk;
}

}  // namespace tool
