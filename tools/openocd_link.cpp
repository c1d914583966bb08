#include "openocd_link.h"

#include <bscan/result.h>

#include <charconv>

namespace tool {
namespace {

bool ParsePort(const std::string& text, int& port) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && stop == end;
}

}  // namespace

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
        if (colon != std::string::npos && !ParsePort(options.openocd.substr(colon + 1), port)) {
            return options.openocd + " is not of the form HOST:PORT";
        }
        if (host.empty()) host = "127.0.0.1";
    }
    return link.Connect(host, port) == bscan::kOk ? std::string() : link.Problem();
}

}  // namespace tool
