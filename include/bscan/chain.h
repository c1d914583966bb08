/// @file
/// The devices of one scan chain, and the scans that drive and observe their pins.
///
/// A chain goes from TDI to TDO, and devices are numbered in that order:
///
///                +----------+     +----------+     +----------+
///        TDI --->| device 0 |---->| device 1 |---->| device 2 |---> TDO
///                +----------+     +----------+     +----------+
///
///     bit of a scan, in the order of shifting:
///        0 ...        cell 0 of device 2, then its cell 1, and so on;
///        then         cell 0 of device 1, ...;
///        ... last     the highest cell of device 0.
///
/// Bit 0 goes into TDI first and travels farthest: it ends in cell 0 of the device next to TDO.
/// What is captured comes out in the same order, so a bit has one number on both ways. In a
/// register, the bit that BSDL writes rightmost is the one next to TDO.
#pragma once

#include <bscan/export.h>
#include <bscan/facts.h>
#include <bscan/parser.h>
#include <bscan/pin_driver.h>
#include <bscan/scan_bits.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bscan {

namespace detail {
struct ChainState;
}

/// Why a chain could not do what was asked.
enum class ChainCode : int {
    kOk,
    kOutOfMemory,
    kBadName,             ///< a device without a name, or with that of another
    kNoLength,            ///< the length of a device's instruction register is not known
    kNoModel,             ///< the device is a length alone, or was read without ports
    kNoDevice,            ///< the chain has no such device
    kNoInstruction,       ///< the device has no opcode of that name
    kPrivateInstruction,  ///< the device's maker reserves the instruction
    kBadOpcode,           ///< the opcode does not fit the instruction register
    kNoRegister,          ///< which register the instruction selects, or its length, is not known
    kNoPin,               ///< no pin or port of that name
    kBadStep,             ///< a step cannot be read or done
    kEmpty,               ///< the chain has no devices
    kWrongChain,          ///< the chain on the board is another, or cannot be reached as a whole
    kLinkFailed,          ///< the connection to the player failed
};

/// What an operation of a chain came to.
struct ChainResult {
    ChainCode code = ChainCode::kOk;
    std::string reason;  ///< a sentence for people; empty for kOk

    bool Ok() const { return code == ChainCode::kOk; }
};

/// A port element of a device of the chain, by the positions of both.
struct ChainPin {
    int device = -1;
    int element = -1;  ///< as in PinDriver

    friend bool operator==(const ChainPin& a, const ChainPin& b) {
        return a.device == b.device && a.element == b.element;
    }
    friend bool operator!=(const ChainPin& a, const ChainPin& b) { return !(a == b); }
};

/// The part of a scan that goes through one device.
struct ScanField {
    int device = -1;
    std::string register_name;  ///< INSTRUCTION, BOUNDARY, BYPASS, DEVICE_ID or the file's own
    int first = 0;              ///< number of the bit of its cell 0
    int count = 0;              ///< length of the register
};

/// The parts of a scan in the order of shifting: the device next to TDO first.
using ScanFields = std::vector<ScanField>;

/// Where one bit of a scan belongs.
struct ScanPlace {
    const ScanField* field = nullptr;  ///< null for a bit outside the scan
    int cell = -1;                     ///< number of the cell in its register; 0 is next to TDO
};

/// @return the place of a bit, counted from 0.
BSCAN_EXPORT ScanPlace FindPlace(const ScanFields& fields, int bit);

/// An instruction for one device.
struct InstructionChoice {
    int device = -1;
    std::string_view instruction;  ///< letter case ignored
};

/// What a chain knows about one of its devices. Texts are as the file writes them.
struct ChainDevice {
    std::string name;  ///< by which the chain's user knows it, such as U1
    std::string component;
    std::string package;
    int instruction_length = 0;
    std::string instruction_capture;    ///< leftmost bit next to TDI; empty when not told
    std::vector<std::string> idcodes;   ///< 32 characters 0, 1, X each; alternatives
    double max_frequency = 0;           ///< of TCK in hertz; 0 when not told
    std::string compliance;             ///< ports and patterns, such as "(A, B) (10)"
    std::string design_warning;         ///< on one line
    std::unique_ptr<PinDriver> driver;  ///< null for a device of length alone
    bool HasModel() const { return driver != nullptr; }
};

/// The devices of a scan chain from TDI to TDO, which instruction each has, and what is to be
/// shifted through them.
///
/// Working with one goes like this: add the devices, ask their drivers for pins, select
/// instructions, shift InstructionBits(), shift DataBits(), and look at what came back with
/// FindPlace() or Seen(). A chain shifts nothing itself.
///
/// The chain keeps texts of its own, and refers to the parsers that it is given: they must live as
/// long, and no two chains should drive one model. Nothing throws but copying what is handed out.
class BSCAN_EXPORT Chain {
public:
    Chain();
    Chain(Chain&&) noexcept;
    Chain& operator=(Chain&&) noexcept;
    ~Chain();

    /// @name Devices
    /// @{

    /// Appends a device, the next one towards TDO, and presets its pins (PinDriver::Preset).
    ///
    /// @param name  its name in the chain; pins are named NAME.PIN.
    /// @param parser  holds the filled model.
    /// @param facts  what the file says beside the model: IDCODEs, private instructions, the
    /// clock's
    ///        limit, compliance, warnings; null when that is not known. They are copied.
    ChainResult Add(std::string_view name, BScanParser& parser, const Facts* facts = nullptr);

    /// Appends a device of which only the length of the instruction register is known. It stays in
    /// BYPASS.
    ChainResult Add(std::string_view name, int instruction_length);

    int DeviceCount() const;
    /// @param device  0 for the one next to TDI; there must be one.
    const ChainDevice& Device(int device) const;
    /// @return the device of that name, letter case included; -1 without one.
    int FindDevice(std::string_view name) const;
    /// @return the driver of a device's pins; null for a device of length alone or none at all.
    PinDriver* Driver(int device) const;
    /// @return the lowest limit of TCK that a device tells, in hertz; 0 when none does.
    double MaxFrequency() const;
    /// @}

    /// @name Pins
    /// @{

    /// Finds the port elements that a text names: DEVICE.PIN, or PIN in a chain of one device with
    /// a model. PIN is what PinNames::Find() takes.
    ///
    /// @param text  the name.
    /// @param pins  receives them in the order of PinNames::Find().
    ChainResult FindPins(std::string_view text, std::vector<ChainPin>& pins) const;

    /// @return a pin's name as FindPins() takes it, such as U1.D(3); empty for no pin.
    std::string Label(ChainPin pin) const;
    /// @return the designator of its package pin; empty without one.
    std::string PackagePin(ChainPin pin) const;
    /// @}

    /// @name Instructions
    /// @{

    /// Selects an instruction for some devices, and BYPASS for all others. A failure leaves the
    /// selection as it was.
    ///
    /// Opcodes with x take 0, and of several the first counts. Instructions that a file calls
    /// private are refused. BYPASS is all ones where a file gives no opcode (7.2.1 of the
    /// standard).
    ChainResult Select(const std::vector<InstructionChoice>& choices);

    /// @return whether Select() would take the instruction for the device, and why not.
    ChainResult CanSelect(int device, std::string_view instruction) const;

    /// @return the instruction that a device has now, in upper case; BYPASS at first.
    std::string SelectedInstruction(int device) const;

    /// @return the opcodes of the selected instructions, for a scan of the instruction register.
    ScanBits InstructionBits() const;
    /// @return the parts of InstructionBits().
    const ScanFields& InstructionFields() const;
    /// @}

    /// @name Data
    /// @{

    /// @return what to shift through the selected registers: the scan vectors of the devices whose
    ///         boundary register is selected, and 0 for all other bits.
    ScanBits DataBits() const;
    /// @return the parts of DataBits(); shared, so that they outlast the next Select().
    std::shared_ptr<const ScanFields> DataFields() const;

    /// @return the number of a boundary cell's bit in DataBits(); -1 when its register is not
    ///         selected or has no such cell.
    int BitOf(int device, int cell) const;
    /// @return the number of the bit that captures what a pin shows; -1 when no cell does, or its
    ///         register is not selected.
    int ReceiverBit(ChainPin pin) const;
    /// Tells the level of a pin in what came back from a data scan of the present selection.
    /// @return SIG_0 or SIG_1; SIG_X when no bit tells.
    eSignal Seen(ChainPin pin, const ScanBits& captured) const;
    /// @}

private:
    std::unique_ptr<detail::ChainState> state_;
};

}  // namespace bscan
