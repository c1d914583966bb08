/// @file
/// One cell of the boundary register.
#pragma once

#include <bscan/export.h>
#include <bscan/object.h>
#include <bscan/signal.h>

#include <string>

class LPinNode;

namespace bscan::detail {
class CellNames;
class DeviceBuilder;
}

/// The design of a cell, BC_0 to BC_7 of IEEE 1149.1.
enum CellType : int { BC_0, BC_1, BC_2, BC_3, BC_4, BC_5, BC_6, BC_7, BC_UNKNOWN };

/// What a cell does, as the function column of BOUNDARY_REGISTER says.
enum CellFunction : int {
    INPUT,
    CLOCK,
    OUTPUT2,
    OUTPUT3,
    CONTROL,
    CONTROLR,
    INTERNAL,
    BIDIR,
    BIDIR_IN,
    BIDIR_OUT,
    OBSERVE_ONLY,
    FUNCTION_NONE,
};

/// One cell of the boundary register: one entry of the BOUNDARY_REGISTER attribute.
///
/// Cells live in the device pin map's cell table, which makes and destroys them together. A cell
/// refers to its port and its control cell without owning them. Texts handed in are copied; a null
/// text changes nothing.
class BSCAN_EXPORT LBScanCell : public LObject {
public:
    eSignal safeValue = SIG_X;      ///< the value that the device's maker calls safe
    eSignal cellValue = SIG_X;      ///< the current value: captured, safe, or asked for by the host
    eSignal disableValue = SIG_1;   ///< value of the control cell that turns this cell's driver off
    eSignal disableResult = SIG_Z;  ///< what the pin shows while the driver is off

    /// Makes a cell at no position, of no known type and function, without port and names.
    LBScanCell();
    /// Copies every field, the position, links and names included. May throw std::bad_alloc.
    LBScanCell(const LBScanCell& other);
    /// Copies every field as the constructor does. May throw std::bad_alloc, and then changes
    /// nothing.
    LBScanCell& operator=(const LBScanCell& other);
    ~LBScanCell() override;

    /// Tells the type that a text names; letter case does not matter.
    ///
    /// @param text  such as BC_1; may be null.
    /// @return the type, BC_UNKNOWN for any other text.
    static CellType ConvertCellTypeToEnum(const char* text);
    /// Sets the type that @p text names.
    void SetCellType(char* text);
    void SetCellType(CellType type);
    /// @return the type, BC_UNKNOWN when never set.
    CellType GetBScanCellType() const;

    /// Turns @p text into upper case in place and sets the function that it names; a text that
    /// names none leaves the function as it was.
    void SetFunction(char* text);
    void SetFunction(CellFunction function);
    /// @return the function, FUNCTION_NONE when never set.
    CellFunction GetFunction() const;

    void SetBoundaryCellPosition(int position);
    /// @return the cell's number in the boundary register, which is its bit number in the scan
    ///         vector: 0 is the cell next to TDO. -1 for a cell that no entry has filled.
    int GetBoundaryCellPosition() const;

    void SetPinName(const char* name);
    /// @return the name of the port in upper case, followed by its index when that is not 0; empty
    ///         for a cell of no port. Valid until the name changes.
    const char* GetPinName() const;

    void SetOriginalPinName(const char* name);
    /// @return the comment behind the cell's entry in the file, without white space and dashes;
    ///         empty without one. Valid until the name changes.
    const char* GetOriginalPinName() const;

    void SetControlCell(LBScanCell* cell);
    /// @return the cell that turns this cell's driver on and off; null without one.
    LBScanCell* GetControlCell() const;

    void SetPinNode(LPinNode* node);
    /// @return the port element that the cell serves; null for a cell of no port.
    LPinNode* GetPinNode() const;

private:
    friend class bscan::detail::CellNames;
    friend class bscan::detail::DeviceBuilder;

    BSCAN_LOCAL void CopyFrom(const LBScanCell& other, std::string pin_name,
                              std::string original_pin_name);
    BSCAN_LOCAL void Rename(std::string pin_name, std::string original_pin_name) noexcept;

    int position_ = -1;
    CellType type_ = BC_UNKNOWN;
    CellFunction function_ = FUNCTION_NONE;
    LPinNode* node_ = nullptr;
    LBScanCell* control_ = nullptr;
    std::string pin_name_;
    std::string original_pin_name_;
    bscan::detail::CellNames* names_ = nullptr;  // of its table, told of new names; not copied
};
