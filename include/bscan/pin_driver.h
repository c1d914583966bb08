/// @file
/// Drives and releases the pins of a device through its boundary register.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/device_pin_map.h>
#include <bscan/export.h>
#include <bscan/pin_node.h>
#include <bscan/signal.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace bscan {

/// What came of a request on a pin. Those up to kReceives are done; the others changed nothing.
enum class DriveCode : int {
    kDrives,      ///< the driver is on and has the level
    kLetsGo,      ///< an output that is its own control cell has the level that turns it off
    kReleased,    ///< the driver is off
    kReceives,    ///< there was nothing to turn off
    kWrongMode,   ///< a port of this mode cannot be driven
    kNoDriver,    ///< no cell drives the port
    kNoTurnOn,    ///< no cell turns the driver of the bidirectional port on
    kNoTurnOff,   ///< no cell turns the driver off
    kNoElement,   ///< the device has no such port element
    kWrongLevel,  ///< the level is none of SIG_0, SIG_1 and SIG_Z
};

/// @return whether a request did what it asked.
inline bool IsDone(DriveCode code) { return code <= DriveCode::kReceives; }

/// The cells that serve a port element, by what they do for it; null where it has none.
struct PinCells {
    LBScanCell* receiver = nullptr;  ///< captures what the pin shows, also while its driver is on
    LBScanCell* output = nullptr;    ///< has the level that the driver gives
    LBScanCell* control = nullptr;   ///< turns the driver on and off; may be the output cell itself
};

/// Requests on the pins of one device, one after the other, as hardware needs them.
///
/// BScanPinMap::setPort leaves some things to its host that this class knows: outputs without a
/// control cell, which always drive; a control cell that several drivers share; output cells that
/// are their own control; merged cells, which serve two ports; and a release that turns the driver
/// off whatever the port receives through.
///
/// A *port element* is named by its position in BScanPinMap::GetPinListArray(), from 0. What a
/// request changes are the values of cells (LBScanCell::cellValue) and their bits in the scan
/// vector, which belong to the device; cells that only receive are left alone. The driver refers to
/// the device, which must live as long and keep its ports and its cell table. Nothing throws but
/// what hands out lists and texts.
class BSCAN_EXPORT PinDriver {
public:
    /// Looks up which cells serve which port element. Nothing in the device changes. When memory is
    /// exhausted there are no elements.
    explicit PinDriver(BScanPinMap& device);

    BScanPinMap& Device() const { return *device_; }
    int ElementCount() const { return static_cast<int>(elements_.size()); }

    /// @return the port element; null when there is none at that position.
    LPinNode* Node(int element) const;
    /// @return the position of a port element of this device; -1 for any other.
    int Find(const LPinNode* node) const;
    /// @return the cells of a port element; all null when there is none.
    PinCells Cells(int element) const;

    /// Turns off every driver that can be turned off, and forgets all requests: control cells get
    /// their disable value, whatever their safe value is; other cells their safe value, X as 0.
    void Preset();
    /// The same, but output and control cells keep what a capture under SAMPLE has for them, so
    /// that the pins go on as they were.
    ///
    /// @param sample  one level for each cell, cell 0 first; SIG_0 and SIG_1 are taken.
    void Preset(const std::vector<eSignal>& sample);

    /// Drives a port element to SIG_0 or SIG_1, or releases it for SIG_Z.
    DriveCode Request(int element, eSignal level);

    /// Tells in a sentence without a full stop what came of a request, with the cells as they are
    /// now.
    std::string Explain(int element, DriveCode code) const;

    /// @return whether the element has a driver and it is on now.
    bool IsDriving(int element) const;
    /// @return whether the element has a driver and no cell that turns it off.
    bool AlwaysDrives(int element) const;
    /// @return what the element gives to its pin now: SIG_0 or SIG_1 while its driver is on, what
    ///         the file says of the pin while it is off, SIG_Z without a driver.
    eSignal Shown(int element) const;
    /// @return the level of the last request that was done; SIG_X without one.
    eSignal Requested(int element) const;

    /// @return the elements that nobody asked to drive and whose driver is on because they share a
    ///         control cell with one that was asked for something.
    std::vector<int> AlsoDriven() const;
    /// @return the elements that were asked to drive and whose driver a later request turned off.
    std::vector<int> NoLongerDriven() const;
    /// @return the elements whose drivers one control cell turns on together, @p element included;
    ///         empty without a control cell. Owned by this object.
    const std::vector<int>& SharedWith(int element) const;
    /// @return the positions of control cells whose safe value would turn a driver on.
    std::vector<int> UnsafeControls() const;

private:
    struct Element {
        LPinNode* node = nullptr;
        PinCells cells;
        eSignal requested = SIG_X;
    };

    BSCAN_LOCAL const Element* At(int element) const;
    BSCAN_LOCAL void LookUp();
    BSCAN_LOCAL void Set(LBScanCell& cell, eSignal level);
    BSCAN_LOCAL DriveCode Drive(Element& element, eSignal level);
    BSCAN_LOCAL DriveCode Release(Element& element);

    BScanPinMap* device_;
    std::vector<Element> elements_;
    std::unordered_map<const LPinNode*, int> positions_;
    std::unordered_map<const LBScanCell*, std::vector<int>> by_control_;
};

}  // namespace bscan
