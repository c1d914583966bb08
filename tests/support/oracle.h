/// @file
/// What holds of a device after any reading and any drive, for tests and fuzz targets alike.
///
/// Each check says in words what does not hold, and nothing when all does.
#pragma once

#include "read_device.h"

namespace bscan::test {

/// The cells of a port that its drives and its bits are about.
struct RoleCells {
    LBScanCell* input = nullptr;
    LBScanCell* output = nullptr;
    LBScanCell* control = nullptr;
    LBScanCell* observe = nullptr;
};
RoleCells RolesOf(const LPinNode& node);

/// Whether a port of a mode takes cells of a function.
bool Suits(PortType mode, CellFunction function);

/// Looks through a device that a reading has left with `result`, and brings all its bits up to
/// date.
std::string FindFault(BScanParser& parser, int result);

/// Drives, releases and observes every pin in every way, numbers of no pin included.
std::string FindDriveFault(BScanParser& parser);

/// Whether the ports of one device are the first ports of another, letter case aside.
std::string FindPortFault(const BScanPinMap* part, const BScanPinMap* whole);

}  // namespace bscan::test
