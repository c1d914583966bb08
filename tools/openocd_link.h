// The way to a board: an OpenOCD that the user runs, or one of our own.
#pragma once

#include <bscan/openocd.h>

#include "openocd_process.h"

#include <string>

namespace tool {

/// Where a user wants OpenOCD to be; both are empty for its usual port.
struct LinkOptions {
    std::string openocd;  ///< HOST:PORT of one that runs
    std::string adapter;  ///< a configuration with which to start one
};

/// Connects.
/// @param chain_text  the TAPs, for an OpenOCD that is started.
/// @return what is wrong in words; empty when there is a connection.
std::string Connect(const LinkOptions& options, const std::string& chain_text,
                    OpenOcdProcess& process, bscan::OpenOcd& link);

}  // namespace tool
