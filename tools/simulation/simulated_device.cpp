#include "simulated_device.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace tool {
namespace {

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

// A text of bits, its last next to TDO, as a register that shifts out from its front.
std::deque<bool> Bits(std::string_view text) {
    std::deque<bool> bits;
    std::transform(text.rbegin(), text.rend(), std::back_inserter(bits),
                   [](char c) { return c == '1'; });
    return bits;
}

bool Matches(std::string_view pattern, std::string_view opcode) {
    return std::equal(pattern.begin(), pattern.end(), opcode.begin(), opcode.end(),
                      [](char p, char o) { return p == o || (p != '0' && p != '1'); });
}

bool Receives(CellFunction function) {
    constexpr std::array kReceiving = {INPUT, CLOCK, BIDIR, BIDIR_IN, OBSERVE_ONLY};
    return std::find(kReceiving.begin(), kReceiving.end(), function) != kReceiving.end();
}

bool Drives(CellFunction function) {
    constexpr std::array kDriving = {OUTPUT2, OUTPUT3, BIDIR, BIDIR_OUT};
    return std::find(kDriving.begin(), kDriving.end(), function) != kDriving.end();
}

}  // namespace

SimulatedDevice::SimulatedDevice(std::string name, const bscan::Facts& facts)
    : name_(std::move(name)) {
    AddPins(facts);
    AddInstructions(facts);
    AddCells(facts);
    Reset();
}

SimulatedDevice::SimulatedDevice(std::string name, int instruction_length)
    : name_(std::move(name)),
      instruction_capture_(static_cast<std::size_t>(instruction_length), false) {
    instruction_capture_.front() = true;
    Reset();
}

void SimulatedDevice::AddPins(const bscan::Facts& facts) {
    for (const bscan::Port& port : facts.ports) {
        const std::string name(port.name.text);
        first_pin_of_port_.emplace(Upper(name), pins_.size());
        const bscan::IndexRange range = port.range.value_or(bscan::IndexRange());
        const int step = range.left <= range.right ? 1 : -1;
        for (int k = 0; k < range.Count(); ++k) {
            SimulatedPin pin;
            pin.port = name;
            if (port.range) pin.index = range.left + k * step;
            pins_.push_back(std::move(pin));
        }
    }
}

void SimulatedDevice::AddInstructions(const bscan::Facts& facts) {
    for (const bscan::Instruction& instruction : facts.instructions) {
        for (const bscan::Word& opcode : instruction.opcodes) {
            instructions_.push_back({Upper(instruction.name.text), std::string(opcode.text)});
        }
    }
    const auto length = static_cast<std::size_t>(std::max(facts.instruction_length, 2));
    instruction_capture_ = Bits(facts.instruction_capture.text);
    instruction_capture_.resize(length, false);
    if (facts.instruction_capture.text.empty()) instruction_capture_.front() = true;
    boundary_instructions_ = {"EXTEST", "SAMPLE", "PRELOAD", "INTEST"};
    for (const bscan::RegisterAccess& data : facts.registers) {
        if (Upper(data.name.text) == "BOUNDARY") {
            for (const bscan::RegisterInstruction& instruction : data.instructions) {
                boundary_instructions_.insert(Upper(instruction.name.text));
            }
        }
        if (!data.length || Upper(data.name.text) == "BOUNDARY") continue;
        for (const bscan::RegisterInstruction& instruction : data.instructions) {
            std::deque<bool> bits = Bits(instruction.captures.text);
            bits.resize(static_cast<std::size_t>(*data.length), false);
            fixed_registers_[Upper(instruction.name.text)] = std::move(bits);
        }
    }
    if (!facts.idcodes.empty()) fixed_registers_["IDCODE"] = Bits(facts.idcodes.front().text);
    if (!facts.usercodes.empty()) fixed_registers_["USERCODE"] = Bits(facts.usercodes.front().text);
}

void SimulatedDevice::AddCells(const bscan::Facts& facts) {
    latches_.assign(static_cast<std::size_t>(std::max(facts.boundary_length, 0)), false);
    is_controlr_.assign(latches_.size(), false);
    const auto cell_at = [this](int number) -> std::optional<std::size_t> {
        const auto cell = static_cast<std::size_t>(number);
        return number >= 0 && cell < latches_.size() ? std::optional(cell) : std::nullopt;
    };
    for (const bscan::Cell& cell : facts.cells) {
        const std::optional<std::size_t> number = cell_at(cell.number);
        if (!number) continue;
        Entry entry;
        entry.cell = *number;
        entry.function = cell.function;
        entry.control = cell_at(cell.control);
        entry.disable_value = cell.disable_value == SIG_1;
        entry.disable_result = cell.disable_result;
        entry.self_monitoring = cell.type.text == "BC_9" || cell.type.text == "BC_10";
        const auto port = first_pin_of_port_.find(Upper(cell.port.port.text));
        if (port != first_pin_of_port_.end()) {
            const SimulatedPin& first = pins_[port->second];
            for (std::size_t pin = port->second; pin < pins_.size(); ++pin) {
                if (pins_[pin].port != first.port) break;
                if (!cell.port.index ||
                    pins_[pin].index.value_or(*cell.port.index) == *cell.port.index) {
                    entry.pin = pin;
                    break;
                }
            }
        }
        if (cell.function == CONTROLR) is_controlr_[*number] = true;
        latches_[*number] = cell.safe == SIG_1;
        entries_.push_back(entry);
    }
}

bool SimulatedDevice::Reset() {
    state_ = TapState::kTestLogicReset;
    // A controlr cell turns its drivers off in reset.
    for (const Entry& entry : entries_) {
        if (entry.control && is_controlr_[*entry.control]) {
            latches_[*entry.control] = entry.disable_value;
        }
    }
    Select(fixed_registers_.count("IDCODE") != 0 ? "IDCODE" : "BYPASS");
    return true;
}

void SimulatedDevice::Select(const std::string& instruction) {
    instruction_ = instruction;
    boundary_selected_ = boundary_instructions_.count(instruction) != 0;
    pin_mode_ = instruction == "HIGHZ" ? PinMode::kAllOff
                : instruction == "EXTEST" || instruction == "CLAMP" || instruction == "INTEST"
                    ? PinMode::kBoundary
                    : PinMode::kCore;
    UpdateDrives();
}

// The instruction in the register; an opcode that is none selects BYPASS.
std::string SimulatedDevice::Decode() const {
    std::string opcode;
    std::transform(instruction_bits_.rbegin(), instruction_bits_.rend(), std::back_inserter(opcode),
                   [](bool bit) { return bit ? '1' : '0'; });
    for (const DecodedInstruction& instruction : instructions_) {
        if (Matches(instruction.opcode, opcode)) return instruction.name;
    }
    return "BYPASS";
}

void SimulatedDevice::Shift(std::deque<bool>& bits, bool tdi) {
    bits.push_back(tdi);
    bits.pop_front();
}

void SimulatedDevice::RisingEdge(bool tms, bool tdi) {
    switch (state_) {
        case TapState::kCaptureIr:
            instruction_bits_ = instruction_capture_;
            break;
        case TapState::kShiftIr:
            Shift(instruction_bits_, tdi);
            break;
        case TapState::kCaptureDr:
            CaptureData();
            break;
        case TapState::kShiftDr:
            Shift(data_bits_, tdi);
            break;
        default:
            break;
    }
    state_ = Next(state_, tms);
}

bool SimulatedDevice::FallingEdge() {
    switch (state_) {
        case TapState::kTestLogicReset:
            return Reset();
        case TapState::kShiftIr:
            tdo_ = instruction_bits_.front();
            return false;
        case TapState::kShiftDr:
            tdo_ = data_bits_.front();
            return false;
        case TapState::kUpdateIr:
            Select(Decode());
            return true;
        case TapState::kUpdateDr:
            if (!boundary_selected_) return false;
            std::copy(data_bits_.begin(), data_bits_.end(), latches_.begin());
            UpdateDrives();
            return true;
        default:
            tdo_ = true;
            return false;
    }
}

void SimulatedDevice::CaptureData() {
    if (boundary_selected_ && !latches_.empty()) return CaptureBoundary();
    const auto fixed = fixed_registers_.find(instruction_);
    data_bits_ = fixed == fixed_registers_.end() ? std::deque<bool>{false} : fixed->second;
}

// Cells that receive capture their pins; the others what they hold. Where entries share a cell,
// the one that receives counts.
void SimulatedDevice::CaptureBoundary() {
    data_bits_.assign(latches_.begin(), latches_.end());
    for (const Entry& entry : entries_) {
        if (entry.pin && (Receives(entry.function) || entry.self_monitoring)) {
            data_bits_[entry.cell] = pins_[*entry.pin].input;
        }
    }
}

void SimulatedDevice::UpdateDrives() {
    for (SimulatedPin& pin : pins_) pin.drive = PinDrive();
    if (pin_mode_ != PinMode::kBoundary) return;
    for (const Entry& entry : entries_) {
        if (!entry.pin || !Drives(entry.function)) continue;
        const PinDrive drive = DriveOf(entry);
        SimulatedPin& pin = pins_[*entry.pin];
        if (drive.strength > pin.drive.strength) pin.drive = drive;
    }
}

PinDrive SimulatedDevice::DriveOf(const Entry& entry) const {
    const bool off = entry.control && latches_[*entry.control] == entry.disable_value;
    if (!off) return {Strength::kStrong, latches_[entry.cell]};
    switch (entry.disable_result) {
        case SIG_PULL0:
        case SIG_WEAK0:
            return {Strength::kWeak, false};
        case SIG_PULL1:
        case SIG_WEAK1:
            return {Strength::kWeak, true};
        default:
            return {};
    }
}

}  // namespace tool
