/// @file
/// One element of one port of the device.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/export.h>
#include <bscan/object.h>
#include <bscan/object_list.h>
#include <bscan/signal.h>

#include <optional>
#include <string>

namespace bscan::detail {
class DeviceBuilder;
class PortIndex;
}

/// A port element: a scalar port, or one element of a bit_vector port.
///
/// The cells in its list serve it in four *roles*, which driving and observing go by:
/// - the *input cell*: the first INPUT, BIDIR_IN or BIDIR cell;
/// - the *output cell*: the first OUTPUT2, OUTPUT3, BIDIR_OUT or BIDIR cell;
/// - the *control cell*: the control cell of the last such output cell, which need not be the
/// first;
/// - the *observe cell*: the first OBSERVE_ONLY cell.
///
/// It holds the port's name and mode, the package pin that it is bonded to, the level that the
/// host last asked for, and the boundary-scan cells that serve it. Nodes belong to the device pin
/// map; cells belong to its cell table. Texts handed in are copied; a null text changes nothing.
class BSCAN_EXPORT LPinNode : public LObject {
public:
    /// Makes an element without names, number, mode and cells.
    LPinNode();
    LPinNode(const LPinNode&) = delete;
    LPinNode& operator=(const LPinNode&) = delete;
    /// Releases the names and the list of cells, not the cells.
    ~LPinNode() override;

    void SetPortName(char* name);
    /// @return the port's name as declared, or in upper case once a lookup by port name has gone
    ///         past it; null when never set. The text belongs to the node and may be written up to
    ///         its length; it is valid until the name is set again. A host that only reads should
    ///         prefer bscan::PortName(): once this pointer is out, lookups by port name walk over
    ///         the device, since the name may change unseen. After SetPortName() they walk too.
    char* GetPortName() const;

    void SetPinName(char* name);
    /// @return the designator of the package pin; null when never set. Ownership and validity as
    ///         for GetPortName(); bscan::PinName() is its reading twin.
    char* GetPinName() const;

    /// Sets the mode from its text: "in", "out", "inout" or "buffer", in lower case. Any other text
    /// leaves the mode as it was.
    void SetPortType(char* mode);
    /// @return the mode; PORT_NONE for linkage and any other mode.
    PortType GetPortType() const;

    void SetPinNumber(int number);
    /// @return the package pin number, by which BScanPinMap addresses ports: from 1; -1 when no pin
    ///         map named the port; another negative code when the package lacks the pin.
    int GetPinNumber() const;

    /// @return the element's offset from the element with the lowest declared index, so 0 for a
    ///         scalar port; -1 for an element that no port clause made.
    int GetVectorIndex() const;

    void SetPortValue(eSignal value);
    /// @return the level that the host last asked for; SIG_X when it never did.
    eSignal GetPortValue() const;

    /// @return the cells that serve the element, as LBScanCell pointers in the order of their
    ///         association; the list belongs to the node. Null before the first association.
    LObjList* GetBScanCells() const;

    /// Appends a cell to the element's list when the cell's function suits the mode.
    ///
    /// An "in" port takes INPUT, CLOCK and OBSERVE_ONLY; "out" takes OUTPUT2 and OUTPUT3; "inout"
    /// takes INPUT, OUTPUT2, OUTPUT3, the three BIDIR functions and OBSERVE_ONLY; "buffer" takes
    /// OUTPUT2. Control cells are reached through the output cell. Nothing checks for duplicates.
    ///
    /// @return 0; -1 for a null or unsuitable cell; bscan::kOutOfMemory.
    int AssociateBScanCell(LBScanCell* cell);

    /// Lets the port receive.
    ///
    /// With an observe cell, that cell takes the level and nothing else changes: the driver of an
    /// "inout" port stays as it is. Otherwise the input cell takes the level, and for an "inout"
    /// port the control cell turns the driver off; an output cell of its own then takes what the
    /// pin shows: 1 for PULL1 and WEAK1, else 0.
    ///
    /// @param level  SIG_1 for 1; every other level counts as 0.
    /// @return 0; -1 without an observe and an input cell, and for an "inout" port without a
    /// control
    ///         or an output cell (the input cell keeps the level then).
    int SetInput(eSignal level);

    /// Lets the port drive: the control cell turns the driver on, the output cell takes a level.
    ///
    /// @param level  SIG_1 for 1; every other level counts as 0.
    /// @return 0; -1 without an output or a control cell, and for an "inout" port without an input
    ///         cell (the other two keep their new values then).
    int SetOutput(eSignal level);

    /// Calls SetInput() for PORT_IN or SetOutput() for PORT_OUT where the mode allows it.
    ///
    /// @return what the chosen operation returns; -1 for a direction that the mode refuses and for
    ///         any other direction.
    int SetBScanCell(PortType direction, eSignal level);

    void SetPositive(bool positive);
    /// @return whether the port is the positive leg of a differential pair.
    bool IsPositive() const;

    void SetNegative(bool negative);
    /// @return whether the port is the negative leg of a differential pair.
    bool IsNegative() const;

private:
    friend class bscan::detail::DeviceBuilder;
    friend class bscan::detail::PortIndex;

    std::optional<std::string> port_name_;
    std::optional<std::string> pin_name_;
    int vector_index_ = -1;
    int pin_number_ = -1;
    PortType type_ = PORT_NONE;
    eSignal value_ = SIG_X;
    bool positive_ = false;
    bool negative_ = false;
    std::optional<LObjList> cells_;              // from the first association on
    bscan::detail::PortIndex* index_ = nullptr;  // of its device, told what lookups depend on
};

namespace bscan {

/// Reads a port's name without handing out a writable pointer, so that lookups need not walk.
///
/// @return the text of LPinNode::GetPortName, to be read only; null when never set.
BSCAN_EXPORT const char* PortName(const LPinNode& node);

/// Reads the designator of a port's package pin; otherwise as PortName().
BSCAN_EXPORT const char* PinName(const LPinNode& node);

}  // namespace bscan
