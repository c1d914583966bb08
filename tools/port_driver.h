// Drives and releases the ports of a device, and tells what that does to their neighbours.
#pragma once

#include "device.h"

#include <string>
#include <unordered_map>

namespace tool {

/// What a request did to one port element.
struct DriveResult {
    bool done = false;
    std::string text;  ///< for people
};

/// The cells that drive a port element.
struct Driver {
    LBScanCell* output = nullptr;
    LBScanCell* control = nullptr;

    bool Exists() const { return output != nullptr; }
    /// A driver without a control cell is always on.
    bool IsOn() const;
};

Driver DriverOf(const Element& element);

/// Requests on one device, one after the other.
///
/// What BScanPinMap::setPort leaves to the host is done here: driving outputs without a control
/// cell and bidirectional ports without an input cell, and turning off outputs.
class PortDriver {
public:
    explicit PortDriver(const Device& device);

    /// Drives an element to SIG_0 or SIG_1, or releases it for SIG_Z.
    DriveResult Request(const Element& element, eSignal level);

    /// Elements that nobody asked to drive and whose driver is on because they share a control
    /// cell with one that was.
    std::vector<const Element*> AlsoDriven() const;

    /// Elements that were asked to drive and whose driver a later request turned off.
    std::vector<const Element*> NoLongerDriven() const;

private:
    DriveResult DriveTo(const Element& element, eSignal level);
    DriveResult Release(const Element& element);
    bool IsRequested(const Element& element, bool driven) const;

    const Device& device_;
    std::unordered_map<const Element*, eSignal> requests_;  // the last one for each element
};

}  // namespace tool
