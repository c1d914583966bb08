/// @file
/// What holds of a device after any reading and any drive, for tests and fuzz targets alike.
///
/// Each check says in words what does not hold, and nothing when all does.
#pragma once

#include "read_device.h"

#include <array>

namespace bscan::test {

/// The cells of a port that its drives and its bits are about.
struct RoleCells {
    LBScanCell* input = nullptr;
    LBScanCell* output = nullptr;
    LBScanCell* control = nullptr;
    LBScanCell* observe = nullptr;
    std::array<LBScanCell*, 4> All() const { return {input, output, control, observe}; }
};
RoleCells RolesOf(const LPinNode& node);

/// The first cell of a device that bears a name, letter case aside; null without one.
LBScanCell* WalkToCell(const BScanPinMap& map, const char* (LBScanCell::*name)() const,
                       const char* sought);

/// Looks through a device, and brings all its bits up to date.
std::string FindFault(BScanParser& parser);

/// Drives, releases and observes every pin in every way, numbers of no pin included.
std::string FindDriveFault(BScanParser& parser);

/// Whether the ports of one device are the first ports of another, letter case aside.
std::string FindPortFault(const BScanPinMap* part, const BScanPinMap* whole);

}  // namespace bscan::test
