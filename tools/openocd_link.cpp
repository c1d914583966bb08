#include "openocd_link.h"

#include <bscan/result.h>

#include <cstdlib>

namespace tool {

std::string Connect(const LinkOptions& options, const std::string& chain_text,
                    OpenOcdProcess& process, bscan::OpenOcd& link) {
    std::string host = "127.0.0.1";
    int port = bscan::OpenOcd::kDefaultPort;
    if (!options.adapter.empty()) {
        std::string problem = process.Start(options.adapter, chain_text);
        if (!problem.empty()) return problem;
        port = process.port();
    } else if (!options.openocd.empty()) {
        const std::size_t colon = options.openocd.rfind(':');
        host = options.openocd.substr(0, colon);
        if (colon != std::string::npos) port = std::atoi(options.openocd.c_str() + colon + 1);
        if (host.empty()) host = "127.0.0.1";
    }
    return link.Connect(host, port) == bscan::kOk ? std::string() : link.Problem();
}

}  // namespace tool
