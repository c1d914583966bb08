// Scan vectors and captures as text.
#pragma once

#include "device.h"
#include "table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// The scan vector of a device, cell 0 first: a character 0 or 1 for each cell.
std::string BitText(BScanPinMap& map);

/// The bytes of the scan vector in hexadecimal; the bit of cell 0 is the 0x80 of the first byte.
std::vector<std::string> ByteTexts(BScanPinMap& map);

/// The scan vector by lines of 32 cells.
Table VectorTable(BScanPinMap& map);

/// Reads a capture: 0, 1 and x, cell 0 first. White space and '_' may stand between them; '#'
/// begins a comment that ends with its line. @return nothing for any other character.
std::optional<Capture> ParseCapture(std::string_view text);

}  // namespace tool
