// The drawing of a device's package.
#pragma once

#include <bscan/device_pin_map.h>
#include <bscan/facts.h>

#include <string>
#include <string_view>

namespace bscan::drawing {

/// An SVG drawing of the package from above: a place for each pin, in the colour and with the mark
/// of what it is for, the pin's cells as a tooltip, and a legend. Where neither the designators nor
/// the package's name tell its shape, the drawing says so.
///
/// @param facts  those of the description that filled the device.
/// @param device  null for a device without ports.
/// @param package  the name of its package, in lower case.
std::string DrawPackage(const Facts& facts, const BScanPinMap* device, std::string_view package);

}  // namespace bscan::drawing
