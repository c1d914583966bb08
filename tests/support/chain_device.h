/// @file
/// A made-up device whose pins are driven in every way that boundary cells allow.
#pragma once

#include <bscan/bscan.h>

#include <memory>
#include <string>
#include <string_view>

namespace bscan::test {

/// IO(4) and IO(5) share control cell 2, whose safe value turns them on; TRI receives and drives
/// through cells of its own; PLAIN is always on; OD is its own control cell; cell 8 is merged: it
/// receives for IN2 and drives MON.
extern const std::string_view kDrivenDevice;

/// A text read as a description, and the model filled from it.
struct DescribedDevice {
    explicit DescribedDevice(std::string_view text = kDrivenDevice);
    DescribedDevice(std::string_view text, std::string_view replaced, std::string_view by);

    Description description;
    BScanParser parser;
};

}  // namespace bscan::test
