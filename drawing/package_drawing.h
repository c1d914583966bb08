// The drawing of a device's package.
#pragma once

#include <bscan/facts.h>
#include <bscan/parser.h>

#include <string>

namespace bscan::drawing {

/// An SVG drawing of the package from above: a place for each pin, in the colour and with the mark
/// of what it is for, the pin's cells as a tooltip, and a legend. Where neither the designators nor
/// the package's name tell its shape, the drawing says so.
///
/// @param facts  those of the description that filled the parser.
/// @param parser  holds the model, and which of the packages it is in.
std::string DrawPackage(const Facts& facts, BScanParser& parser);

}  // namespace bscan::drawing
