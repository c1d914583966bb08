/// @file
/// The model of one device: its port elements, its boundary register and the scan vector.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/export.h>
#include <bscan/object_list.h>
#include <bscan/pin_node.h>
#include <bscan/signal.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bscan::detail {
class DeviceBuilder;
struct CellRoles;
struct DeviceIndex;
}

/// A device as its BSDL file describes it, and the engine that drives and observes its pins.
///
/// The map owns its port elements, its cells and its scan vector; what a lookup returns stays owned
/// by the map and valid as long as it (a cell until the cell table is allocated again). When it is
/// destroyed, it destroys elements and cells from the last to the first.
///
/// A *pin number* is the package pin number that the pin map gave a port element. Numbers count
/// from 1, and numbers above GetNumberOfPins() are never found, even when an element carries one.
///
/// A *port name* is matched without regard to letter case, by turning both the given buffer and
/// the stored names up to the match (all of them when nothing matches) into upper case in place.
/// Cell names are matched without regard to case too, but left as they are. Pin names are matched
/// exactly. Where several elements or cells match, the first counts.
///
/// Lookups do not walk over the device, with these exceptions:
/// - the first lookup of a kind learns the device, and so does the next one after AddNewPorts();
///   likewise by pin name after LPinNode::SetPinName(), by pin number after
///   LPinNode::SetPinNumber(), and by cell name after AllocateBScanCellTable();
/// - once a host has called SetPortName() or GetPortName() of any element (or GetPortName(int)),
///   every lookup by port name walks, the Serial operations and AddNewRegister() included; once it
///   has called GetPinName(), every lookup by pin name. bscan::PortName() and bscan::PinName() read
///   the names without that;
/// - once a host has appended to the list of GetPinListArray(), or taken from it, every lookup by
///   port name, pin name or pin number walks, and so does every operation that takes a pin number;
/// - when memory is short.
///
/// The *scan vector* has one bit for each cell: cell n is the bit 0x80 >> (n % 8) of byte n / 8.
/// Cell 0 is the one next to TDO, so its bit goes in first.
class BSCAN_EXPORT BScanPinMap {
public:
    /// Makes a device without ports and boundary register. When memory is exhausted the device
    /// stays empty, whatever is asked of it.
    BScanPinMap();
    BScanPinMap(const BScanPinMap&) = delete;
    BScanPinMap& operator=(const BScanPinMap&) = delete;
    ~BScanPinMap();

    /// @name Building the model
    /// The reader calls these; a host may, to model a device without a file. Operations without a
    /// result change nothing when memory is exhausted.
    /// @{

    /// Appends @p count elements of one name and mode, with vector indexes from 0 upward when
    /// @p ascending, else down to 0. Nothing for a count below 1, or past bscan::kMaxPortElements
    /// or bscan::kMaxPortNameText.
    void AddNewPorts(char* name, char* mode, int count, bool ascending);
    /// Appends the elements of a vector declared with the range from @p from to @p to, in that
    /// order; vector indexes count from the lower bound. Nothing for a negative bound or past
    /// the same limits.
    void AddNewPorts(char* name, char* mode, int from, int to);

    /// Gives the @p k-th element (from 0) whose port name equals @p portName, letter case included,
    /// its pin number. Nothing when there is no such element.
    void SerialSetPinNumber(char* portName, int k, int number);
    /// Gives the @p k-th element of a port its pin name; otherwise as SerialSetPinNumber().
    void SerialSetPinName(char* portName, int k, char* pinName);
    /// Gives the element that GetPort(char*, int) finds its pin number.
    void SetPinNumber(char* portName, int index, int number);

    /// Starts a fresh boundary register of @p length cells and a scan vector of as many 0 bits.
    /// The cells of a former register are destroyed. The list of every port is emptied, so that
    /// cells of a host's own leave it too. A negative length or one above
    /// bscan::kMaxBoundaryLength changes nothing.
    void AllocateBScanCellTable(int length);

    /// Fills one cell and ties it to its port element.
    ///
    /// @param cellNumber  position of the cell, from 0.
    /// @param cellType  text such as BC_1; null keeps the type.
    /// @param portName  the port's name without subscript, empty for none; turned into upper case.
    /// @param portIndex  vector index of the element; 0 for a scalar port.
    /// @param function  text such as OUTPUT3, turned into upper case; null keeps the function.
    /// @param safe  the safe value.
    /// @param controlCell  position of the control cell; negative for none.
    /// @param disableValue  value of the control cell that turns the driver off.
    /// @param disableResult  what the pin shows then.
    /// @param value  the cell's first value, which also sets its bit.
    /// @param originalPinName  the cell's second name; null keeps it.
    /// @return 0, also when no element has that name and index; -1 when a number is outside the
    ///         register, there is no register or @p portName is null (nothing changes then), and
    ///         when the element's mode does not take the function (the cell is filled, and not
    ///         listed by the element); bscan::kOutOfMemory.
    int AddNewRegister(int cellNumber, char* cellType, char* portName, int portIndex,
                       char* function, eSignal safe, int controlCell, eSignal disableValue,
                       eSignal disableResult, eSignal value, const char* originalPinName);
    /// @}

    /// @name The scan vector
    /// @{

    /// Sets bit @p n when @p value is SIG_1, and clears it otherwise; the cell keeps its value.
    /// @return 0; -1 when @p n is not a position of the register.
    int SetBit(int n, eSignal value);
    /// Clears every bit. Cells and ports keep their values.
    void InitBSCANBitArray();
    /// Does what InitBSCANBitArray() does.
    void ResetAllPort();
    /// @return the scan vector, (GetBScanLength() + 7) / 8 bytes owned by the map; null before the
    ///         register is allocated, replaced when it is allocated again. Bits past the length are
    ///         0 and must stay so.
    unsigned char* GetBScanBitArray();
    /// Copies the values of one element's input, output, control and observe cell into their bits.
    /// @return 0; -1 without a register or for a null @p node.
    int UpdateBScanBitArray(LPinNode* node);
    /// @}

    /// @name Driving and observing
    /// @{

    /// Drives a port (PORT_OUT) to a level, or lets it receive (PORT_IN), and updates its bits; see
    /// LPinNode::SetOutput() and LPinNode::SetInput(). With PORT_IN, an "inout" port that has an
    /// observe cell keeps its driver on, and the result is 0.
    ///
    /// @param pin  pin number.
    /// @param direction  PORT_OUT or PORT_IN.
    /// @param value  the level; recorded as the port's value even when driving fails.
    /// @return 0; for a port without cells 0 whatever its mode and @p direction, and nothing is
    ///         driven: HasBScanCell() tells. -1 for an unknown pin, a direction that the mode
    ///         refuses, or a port that lacks a cell for it (no bit changes then); -1 also when a
    ///         cell of the port has no position in the register.
    int setPort(int pin, PortType direction, eSignal value);
    /// Sets the bits of a port's input, output and control cell to 1, whatever the other arguments
    /// say, and records the value; cells keep theirs. After ResetAllPort() this marks which bits
    /// belong to which ports.
    /// @return 0; -1 for an unknown pin or without a register.
    int setPort(int pin, PortType direction, eSignal value, bool flag);

    /// @return PORT_OUT or PORT_IN by the port's mode; for an "inout" port, and one of no known
    ///         mode, PORT_IN when the control cell of its last OUTPUT2, OUTPUT3 or BIDIR cell holds
    ///         that cell's disable value, and PORT_OUT when it holds any other, SIG_X included;
    ///         PORT_NONE without such cells.
    PortType GetPortDirection(int pin);
    /// Tells the level that a port shows in its cells.
    ///
    /// After a reading with a capture that is what the pin showed; after setPort(), what the host
    /// asked for. A "buffer" port, and one of no known mode, shows the value last given to
    /// setPort(). A BIDIR cell that receives shows SIG_1 for 1 and SIG_Z for 0.
    ///
    /// @return the level; SIG_X when no port has that number or no cell tells.
    eSignal GetPortValue(int pin);
    /// @return whether a port has that number and at least one cell.
    bool HasBScanCell(int pin);
    /// @}

    /// @name Lookups
    /// @{

    /// @return the first element of that port name and vector index; null without one.
    LPinNode* GetPort(char* portName, int index);
    /// @return the first element of that port name, whatever its index; null without one.
    LPinNode* GetPortwName(char* portName);
    /// @return the first element of that pin name; null without one.
    LPinNode* GetPort(const char* pinName);
    /// @return the first element of that pin number; null without one.
    LPinNode* GetPort(int pin);
    /// @return the port name of the element of that pin number, as LPinNode::GetPortName gives it.
    char* GetPortName(int pin);
    /// @return the pin name of the element of that pin number, as LPinNode::GetPinName gives it.
    char* GetPinName(int pin);
    /// @return the mode of the element of that pin number; PORT_NONE without one.
    PortType GetPortType(int pin);
    /// @return whether the element of that pin number is the positive leg of a pair.
    bool IsPositiveElement(int pin);
    /// @return whether the element of that pin number is the negative leg of a pair.
    bool IsNegativeElement(int pin);
    /// @return the pin number of the first element of that pin name; -1 without one.
    int GetPinNumber(const char* pinName);
    /// @return the pin number of the first element of that port name; -1 without one.
    int GetPinNumberwPortName(char* portName);
    /// @return the position of the first cell of that port that can receive (INPUT, BIDIR_IN or
    ///         BIDIR); 0 when it has none; -1 when there is no such port.
    int GetPinIndexwPortName(char* portName);
    /// @return the first cell of that pin name, from position 0; null without one.
    LBScanCell* GetBScanCell(const char* pinName);
    /// @return the first cell of that original pin name, from position 0; null without one.
    LBScanCell* GetBScanCellByOriginalName(const char* name);
    /// @return the cell at that position; null without one.
    LBScanCell* GetBScanCell(int position);
    /// @}

    /// @name Plain access
    /// @{

    /// @return the number of port elements.
    int GetNumberOfPins() const;
    /// @return the elements in the order of their declaration, as LPinNode pointers. The list and
    ///         its nodes belong to the map; a node that a host appends belongs to it too.
    LObjList* GetPinListArray() const;
    /// @return the first cell of the table of GetBScanLength() cells; null before it is allocated.
    LBScanCell* GetBScanCellTable() const;
    /// @return the number of cells and of bits; 0 before the register is allocated.
    int GetBScanLength() const;
    /// Keeps a directory for the host; nothing in the library reads it. Null changes nothing.
    void SetDefaultDir(char* directory);
    /// @return that directory, owned by the map; null when never set.
    char* GetDefaultDir() const;
    /// Appends a copy of a port declaration's list of names; null changes nothing.
    void SetIOName(const char* names);
    /// @param index  counted from 0.
    /// @return the names of that declaration of mode "inout" as written, such as "D0, D1"; valid
    ///         until another is appended; null when there is none.
    const char* GetIOName(int index);
    /// @return the number of declarations of mode "inout".
    int GetIOTypeCount() const;
    /// @}

private:
    friend class bscan::detail::DeviceBuilder;

    BSCAN_LOCAL int CopyToBits(const bscan::detail::CellRoles& roles);

    std::unique_ptr<unsigned char[]> bits_;
    LObjList pins_;
    std::unique_ptr<LBScanCell[]> cells_;
    int length_ = 0;
    std::optional<std::string> default_directory_;
    std::vector<std::string> io_names_;
    std::size_t port_name_text_ = 0;  // characters of all port names, as they were added
    std::unique_ptr<bscan::detail::DeviceIndex> index_;  // null when there was no memory for it
};
