// The drawing of a device's package.
#pragma once

#include "device.h"

#include <string>

namespace tool {

/// An SVG drawing of the package from above: a place for each pin, in the colour and with the mark
/// of its port's mode, the pin's cells as a tooltip, and a legend.
std::string DrawPackage(const Device& device);

}  // namespace tool
