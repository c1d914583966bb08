/// @file
/// Makes BSDL files of devices of any size.
#pragma once

#include <string>
#include <vector>

namespace bscan::bench {

/// A port element of a generated device.
struct PortElement {
    std::string port;  ///< in upper case
    int index = 0;     ///< within a vector; 0 for a scalar port
    std::string pin;   ///< the designator of its package pin
    std::string cell;  ///< the name of its cell; empty for the ports of the test access port
};

/// A device as the pieces of its file, so that each reader can be given its own.
struct GeneratedDevice {
    std::string port_clause;            ///< from its "port" line to its end
    std::string pin_map;                ///< the value of the pin map, as quoted lines
    std::string grouping;               ///< the value of PORT_GROUPING
    std::string boundary_register;      ///< the value of BOUNDARY_REGISTER
    std::vector<PortElement> elements;  ///< in the order of their declaration
    int cells = 0;
    int pairs = 0;

    /// @return the whole file.
    std::string Text() const;
};

/// The package type of every generated device, as the file writes it.
inline constexpr const char* kPackage = "GRID";

/// Makes a device of @p ports port elements, 100 at the least, each on a pin of a square grid whose
/// rows have letters. The same number gives the same device.
///
/// A quarter of the elements are legs of differential pairs, whose negative cells the completion
/// fills in; half of the rest are elements of vectors, of widths from 2 to a sixteenth of the
/// device. Ports receive, drive, or do both, under control cells that eight of them share. There
/// are as many pins as elements and a few more cells: cell 0 and the last serve no port.
GeneratedDevice MakeDevice(int ports);

/// @return the device of that size, made at the first call.
const GeneratedDevice& DeviceOf(int ports);

}  // namespace bscan::bench
