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

/// The same bytes as one text, as ParseCapture() takes it behind "hex:".
std::string HexText(BScanPinMap& map);

/// The scan vector by lines of 32 cells.
Table VectorTable(BScanPinMap& map);

/// How a user gives a capture; one of the two is empty.
struct CaptureOptions {
    std::string bits;
    std::string file;  ///< - for standard input

    bool IsGiven() const { return !bits.empty() || !file.empty(); }
};

/// Reads a capture: 0, 1 and x, cell 0 first; or in hexadecimal behind "hex:" or, unless it is of
/// 0, 1 and x alone, "0x": the first digit has cells 0 to 3, cell 0 as its 8, and a digit x is four
/// unknown cells. White space and '_' may stand in it; '#' begins a comment that ends with its
/// line.
/// @return nothing for any other character.
std::optional<Capture> ParseCapture(std::string_view text);

/// Reads the capture that a user gives for a device.
/// @return what is wrong, as a sentence without a full stop; empty when nothing is.
std::string ReadCapture(const CaptureOptions& options, const DeviceFile& device, Capture& capture);

/// Tells whether a capture is for a register of so many cells.
bool FitsRegister(const Capture& capture, int length);

/// The same, told for a device.
/// @return why not; empty when it is.
std::string CaptureProblem(const Capture& capture, const Device& device);

}  // namespace tool
