// A chain in the words of OpenOCD.
#pragma once

#include <bscan/chain.h>

#include <string>

namespace tool {

/// The name of a device's TAP, such as U1.tap.
std::string TapName(const bscan::ChainDevice& device);

/// Commands that declare the TAPs of a chain, the one next to TDO first, as OpenOCD wants them.
std::string OpenOcdConfiguration(const bscan::Chain& chain);

}  // namespace tool
