// bscan draw: a drawing of the package and what its pins are.

#include <bscan/description.h>

#include "commands.h"
#include "drawing/package_drawing.h"
#include "printable.h"

#include <fmt/format.h>

#include <fstream>

namespace tool {
namespace {

int Complain(const std::string& path, std::string_view message) {
    Write(stderr, fmt::format("bscan draw: {}: {}\n", Printable(path), message));
    return kProblem;
}

}  // namespace

int Draw(const DrawOptions& options) {
    const bscan::Description description = bscan::Description::Read(options.file.c_str());
    BScanParser parser;
    const int code = description.Fill(parser);
    if (code != bscan::kOk) return Complain(options.file, bscan::Describe(code));
    const std::string drawing = bscan::drawing::DrawPackage(description.GetFacts(), parser);
    if (options.output == "-") {
        Write(stdout, drawing);
        return kSuccess;
    }
    std::ofstream stream(options.output, std::ios::binary);
    stream << drawing << std::flush;
    return stream ? kSuccess : Complain(options.output, "cannot be written");
}

}  // namespace tool
