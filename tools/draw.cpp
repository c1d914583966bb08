// bscan draw: a drawing of the package and what its pins are.

#include "commands.h"
#include "drawing/package_drawing.h"
#include "failure.h"
#include "printable.h"

#include <fmt/format.h>

#include <fstream>

namespace tool {

int Draw(const DrawOptions& options) {
    Device device(options.file);
    if (!ReadOrReport(device, nullptr)) return kProblem;
    const std::string drawing =
        bscan::drawing::DrawPackage(device.facts(), &device.map(), device.PackageName());
    if (options.output == "-") {
        Write(stdout, drawing);
        return kSuccess;
    }
    std::ofstream stream(options.output, std::ios::binary);
    stream << drawing << std::flush;
    if (stream) return kSuccess;
    Write(stderr, fmt::format("bscan draw: cannot write {}\n", Printable(options.output)));
    return kProblem;
}

}  // namespace tool
