// bscan openocd: the configuration by which OpenOCD knows a chain.

#include "commands.h"
#include "openocd_text.h"
#include "printable.h"

#include <fmt/format.h>

#include <fstream>

namespace tool {

int OpenOcd(const OpenOcdOptions& options) {
    LoadedChain loaded;
    if (!LoadChain("openocd", options.chain, loaded)) return kProblem;
    const std::string text = OpenOcdConfiguration(loaded.chain);
    if (options.output.empty() || options.output == "-") {
        Write(stdout, text);
        return kSuccess;
    }
    std::ofstream stream(options.output, std::ios::binary);
    stream << text;
    stream.close();
    if (stream) return kSuccess;
    Write(stderr, fmt::format("bscan openocd: cannot write {}\n", Printable(options.output)));
    return kProblem;
}

}  // namespace tool
