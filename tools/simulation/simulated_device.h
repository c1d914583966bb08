// One device of a simulated chain: its test access port, its registers, and what its pins do.
#pragma once

#include <bscan/facts.h>

#include "pin_drive.h"
#include "tap.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tool {

/// A pin of a simulated device: one element of one port.
struct SimulatedPin {
    std::string port;          ///< name as declared
    std::optional<int> index;  ///< as declared, for an element of a vector
    bool input = false;        ///< level at the pin, as the board sets it
    PinDrive drive;            ///< what the device does to the pin
};

/// The device behaves as IEEE 1149.1 demands: it samples TMS and TDI at rising edges of TCK, and
/// changes TDO, latches and pins at falling ones. Its core drives nothing.
class SimulatedDevice {
public:
    /// A device as its file describes it, with an instruction length of 2 or more.
    SimulatedDevice(std::string name, const bscan::Facts& facts);
    /// A device that is known by the length of its instruction register alone: always in BYPASS.
    SimulatedDevice(std::string name, int instruction_length);

    const std::string& name() const { return name_; }
    /// The elements of all ports, in the order of their declaration.
    std::vector<SimulatedPin>& pins() { return pins_; }
    const std::vector<SimulatedPin>& pins() const { return pins_; }
    const std::string& instruction() const { return instruction_; }

    void RisingEdge(bool tms, bool tdi);
    /// @return whether the drive of a pin may have changed.
    bool FallingEdge();
    /// TRST, or power on. @return as FallingEdge().
    bool Reset();
    bool tdo() const { return tdo_; }

private:
    enum class PinMode { kCore, kBoundary, kAllOff };

    struct DecodedInstruction {
        std::string name;
        std::string opcode;  // leftmost bit next to TDI; x matches both
    };
    // One entry of the boundary register, tied to a pin.
    struct Entry {
        std::size_t cell = 0;
        CellFunction function = FUNCTION_NONE;
        std::optional<std::size_t> pin;
        std::optional<std::size_t> control;
        bool disable_value = false;
        eSignal disable_result = SIG_Z;
        bool self_monitoring = false;  // captures the pin although it drives
    };

    void AddPins(const bscan::Facts& facts);
    void AddInstructions(const bscan::Facts& facts);
    void AddCells(const bscan::Facts& facts);
    void Select(const std::string& instruction);
    std::string Decode() const;
    void Shift(std::deque<bool>& bits, bool tdi);
    void CaptureData();
    void CaptureBoundary();
    void UpdateDrives();
    PinDrive DriveOf(const Entry& entry) const;

    std::string name_;
    std::vector<SimulatedPin> pins_;
    std::unordered_map<std::string, std::size_t> first_pin_of_port_;  // by upper-case name
    std::vector<DecodedInstruction> instructions_;
    std::unordered_map<std::string, std::deque<bool>> fixed_registers_;  // by instruction
    std::deque<bool> instruction_capture_;                               // front next to TDO
    std::vector<Entry> entries_;
    std::vector<bool> latches_;
    std::vector<bool> is_controlr_;  // by cell
    std::unordered_set<std::string> boundary_instructions_;

    TapState state_ = TapState::kTestLogicReset;
    std::string instruction_;
    PinMode pin_mode_ = PinMode::kCore;
    bool boundary_selected_ = false;
    std::deque<bool> instruction_bits_;
    std::deque<bool> data_bits_;
    bool tdo_ = true;
};

}  // namespace tool
