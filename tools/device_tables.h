// The tables of a device's model.
#pragma once

#include "device.h"
#include "table.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tool {

/// A text, or null for an empty one.
Json TextOrNull(const std::string& text);

/// The port of a cell: the label of its element, the name that the file gives to a port which it
/// does not declare, or null for no port.
Json PortOf(const Device& device, const LBScanCell& cell);

/// The modes of ports as the file writes them, in lower case, by the port's name as declared. The
/// edition of 2013 has more of them than the model.
using DeclaredModes = std::unordered_map<std::string_view, std::string>;
DeclaredModes ModesOf(const Device& device);
/// The mode of an element's port: the declared one, or else that of the model.
std::string ModeOf(const Element& element, const DeclaredModes& modes);
/// The types of the cells, from cell 0; one that the model does not know as the file calls it.
std::vector<std::string> CellTypes(const Device& device);

Table PinTable(const Device& device);
Table CellTable(const Device& device);
Table InstructionTable(const Device& device);
Table RegisterTable(const Device& device);
Table PairTable(const Device& device);

/// The pattern that the instruction register captures, without its quotes; null without one.
Json InstructionCapture(const Device& device);
/// The length of the instruction register; null when the file has none.
Json InstructionLength(const Device& device);
/// The number of differently named ports.
std::size_t PortCount(const Device& device);

/// What the file says about the device in short: one row for each field.
Table SummaryTable(const Device& device);

/// The whole model.
Json DeviceJson(const Device& device);

}  // namespace tool
