// From steps to scans.

#include <bscan/limits.h>
#include <bscan/scan_program.h>

#include "chain/faults.h"
#include "chain/wording.h"
#include "support/border.h"

#include <algorithm>
#include <set>
#include <utility>

namespace bscan {
namespace {

// What the test logic of the chain does at a point of the program.
enum class Mode { kReset, kSample, kExtest };

class Planner {
public:
    Planner(Chain& chain, const ProgramOptions& options) : chain_(chain), options_(options) {}

    ScanProgram Plan(const std::vector<Step>& steps);

private:
    // Instructions for the devices that take part, by what they are for.
    struct Choices {
        std::vector<InstructionChoice> preload, extest, sample;
    };

    void ChooseInstructions(const std::vector<Step>& steps);
    void ChooseFor(int device, const Step* needs_extest, const Step* needs_sample);
    void PresetPins();
    void CheckIdcodes();
    void Serve(const Step& step);
    void Drive(const Step& step);
    void TellSharers(const std::vector<bool>& before, const Step& step);
    std::vector<bool> DrivingPins() const;
    void Look(const Step& step);
    bool AddCheck(const Step& step, const PinLevel& wanted, ScanOperation& scan);
    void AddBit(const Step& step, const PinCheck& check, ScanOperation& scan);

    void Enter(Mode mode);
    void Select(const std::vector<InstructionChoice>& choices);
    ScanOperation DataScan() const;
    ScanOperation& Push(ScanOperation operation);
    void Comment(std::string text);
    void Reset();
    void Note(std::string text);

    Chain& chain_;
    const ProgramOptions& options_;
    Choices choices_;
    Mode mode_ = Mode::kReset;
    int step_ = -1;
    std::size_t bits_ = 0;
    bool too_long_ = false;
    detail::FaultList faults_;
    ScanProgram program_;
};

ScanProgram Planner::Plan(const std::vector<Step>& steps) {
    if (chain_.DeviceCount() == 0) {
        program_.result = {ChainCode::kEmpty, "The chain has no devices."};
        return std::move(program_);
    }
    ChooseInstructions(steps);
    PresetPins();
    Reset();
    if (options_.check_idcodes) CheckIdcodes();
    for (const Step& step : steps) {
        if (!faults_.Result().Ok() && too_long_) break;
        ++step_;
        Comment(step.text);
        Serve(step);
    }
    step_ = -1;
    Comment("End: back to reset, the pins are free");
    Reset();
    program_.result = faults_.Result();
    program_.faults = faults_.Take();
    return std::move(program_);
}

// The first step that needs a device under EXTEST or SAMPLE is where its lack is told.
void Planner::ChooseInstructions(const std::vector<Step>& steps) {
    const auto count = static_cast<std::size_t>(chain_.DeviceCount());
    std::vector<const Step*> extest(count);
    std::vector<const Step*> sample(count);
    for (const Step& step : steps) {
        std::vector<const Step*>& needs = step.kind == StepKind::kSample ? sample : extest;
        for (const PinLevel& wanted : step.pins) {
            const int device = wanted.pin.device;
            if (device < 0 || device >= chain_.DeviceCount()) continue;
            const Step*& first = needs[static_cast<std::size_t>(device)];
            if (first == nullptr) first = &step;
        }
    }
    for (std::size_t i = 0; i < count; ++i) ChooseFor(static_cast<int>(i), extest[i], sample[i]);
}

void Planner::ChooseFor(int device, const Step* needs_extest, const Step* needs_sample) {
    if (!chain_.Device(device).HasModel()) return;
    const ChainResult sample = chain_.CanSelect(device, "SAMPLE");
    const ChainResult preload = chain_.CanSelect(device, "PRELOAD");
    ChainResult extest = chain_.CanSelect(device, "EXTEST");
    if (sample.Ok()) {
        choices_.sample.push_back({device, "SAMPLE"});
    } else if (needs_sample != nullptr) {
        faults_.Add(*needs_sample, sample);
    }
    if (extest.Ok() && !preload.Ok()) extest = sample;
    if (extest.Ok()) {
        choices_.preload.push_back({device, preload.Ok() ? "PRELOAD" : "SAMPLE"});
        choices_.extest.push_back({device, "EXTEST"});
    } else if (needs_extest != nullptr) {
        faults_.Add(*needs_extest, extest);
    } else {
        Note(chain_.Device(device).name +
             " stays in BYPASS and goes on driving its pins: " + extest.reason);
    }
}

void Planner::PresetPins() {
    for (int device = 0; device < chain_.DeviceCount(); ++device) {
        PinDriver* const driver = chain_.Driver(device);
        if (driver == nullptr) continue;
        const auto index = static_cast<std::size_t>(device);
        if (index < options_.sample.size()) {
            driver->Preset(options_.sample[index]);
        } else {
            driver->Preset();
        }
        if (step_ >= 0) continue;
        for (const int cell : driver->UnsafeControls()) {
            Note("The safe value of control cell " + std::to_string(cell) + " of " +
                 chain_.Device(device).name +
                 " would turn a driver on; it starts at its disable value.");
        }
    }
}

// Bits of the version and of x are not compared, nor those in which alternatives differ.
void AddIdcode(const std::vector<std::string>& idcodes, int first, ScanOperation& scan) {
    constexpr int kVersion = 28;
    for (int bit = 0; bit < kVersion; ++bit) {
        const auto position = static_cast<std::size_t>(31 - bit);
        const char wanted = idcodes.front()[position];
        const auto same = [&](const std::string& code) { return code[position] == wanted; };
        const bool known = wanted == '0' || wanted == '1';
        if (!known || !std::all_of(idcodes.begin(), idcodes.end(), same)) continue;
        scan.mask.Set(first + bit, true);
        scan.wanted.Set(first + bit, wanted == '1');
    }
}

void Planner::CheckIdcodes() {
    std::vector<InstructionChoice> choices;
    for (int device = 0; device < chain_.DeviceCount(); ++device) {
        if (chain_.Device(device).idcodes.empty()) continue;
        if (chain_.CanSelect(device, "IDCODE").Ok()) choices.push_back({device, "IDCODE"});
    }
    if (choices.empty()) return;
    Comment("IDCODE of each device that has one, without its version");
    Select(choices);
    ScanOperation scan = DataScan();
    scan.wanted = ScanBits(scan.out.Size());
    scan.mask = ScanBits(scan.out.Size());
    for (const ScanField& field : *scan.fields) {
        if (field.register_name != "DEVICE_ID") continue;
        AddIdcode(chain_.Device(field.device).idcodes, field.first, scan);
    }
    Push(std::move(scan));
}

void Planner::Serve(const Step& step) {
    switch (step.kind) {
        case StepKind::kDrive:
            return Drive(step);
        case StepKind::kExpect:
        case StepKind::kSample:
            return Look(step);
        case StepKind::kWait:
            Push({}).kind = OperationKind::kWait;
            program_.operations.back().wait = step.wait;
            return;
        case StepKind::kReset:
            PresetPins();
            return Reset();
        case StepKind::kNote:
            return;
    }
}

void Planner::Drive(const Step& step) {
    const std::vector<bool> before = DrivingPins();
    for (const PinLevel& wanted : step.pins) {
        PinDriver* const driver = chain_.Driver(wanted.pin.device);
        if (driver == nullptr) continue;
        const DriveCode code = driver->Request(wanted.pin.element, wanted.level);
        if (IsDone(code)) continue;
        faults_.Add(step, chain_.Label(wanted.pin) + ": " +
                              driver->Explain(wanted.pin.element, code) + ".");
    }
    TellSharers(before, step);
    if (mode_ == Mode::kExtest) {
        Push(DataScan());
    } else {
        Enter(Mode::kExtest);  // with this step's levels as the first
    }
}

// Of all pins of all devices, which are driven.
std::vector<bool> Planner::DrivingPins() const {
    std::vector<bool> driving;
    for (int device = 0; device < chain_.DeviceCount(); ++device) {
        const PinDriver* const driver = chain_.Driver(device);
        const int count = driver == nullptr ? 0 : driver->ElementCount();
        for (int i = 0; i < count; ++i) driving.push_back(driver->IsDriving(i));
    }
    return driving;
}

// Tells which pins changed though the step does not name them.
void Planner::TellSharers(const std::vector<bool>& before, const Step& step) {
    std::set<std::pair<int, int>> asked;
    for (const PinLevel& wanted : step.pins) {
        asked.insert({wanted.pin.device, wanted.pin.element});
    }
    std::string on;
    std::string off;
    std::size_t index = 0;
    for (int device = 0; device < chain_.DeviceCount(); ++device) {
        const PinDriver* const driver = chain_.Driver(device);
        const int count = driver == nullptr ? 0 : driver->ElementCount();
        for (int i = 0; i < count; ++i, ++index) {
            if (driver->IsDriving(i) == before[index] || asked.count({device, i}) != 0) continue;
            detail::AppendItem(before[index] ? off : on, chain_.Label({device, i}));
        }
    }
    const auto tell = [&](const char* what, const std::string& pins) {
        if (pins.empty()) return;
        Comment(what + pins);
        Note("Line " + std::to_string(step.line) + ": " + what + pins + ".");
    };
    tell("also turned on, through a shared control cell: ", on);
    tell("also turned off, through a shared control cell: ", off);
}

void Planner::Look(const Step& step) {
    if (step.kind == StepKind::kExpect || mode_ == Mode::kExtest) {
        Enter(Mode::kExtest);
    } else {
        Enter(Mode::kSample);
    }
    ScanOperation scan = DataScan();
    scan.wanted = ScanBits(scan.out.Size());
    scan.mask = ScanBits(scan.out.Size());
    for (const PinLevel& wanted : step.pins) {
        if (AddCheck(step, wanted, scan)) continue;
        const bool sampling = mode_ == Mode::kExtest && step.kind == StepKind::kSample;
        faults_.Add(step, "What " + chain_.Label(wanted.pin) +
                              " shows cannot be seen: it has no cell that receives" +
                              (sampling ? " while pins are driven; a reset before it would let "
                                          "SAMPLE see it."
                                        : "."));
    }
    Push(std::move(scan));
}

// Under SAMPLE the cells of an output hold what the device drives.
bool Planner::AddCheck(const Step& step, const PinLevel& wanted, ScanOperation& scan) {
    const PinDriver* const driver = chain_.Driver(wanted.pin.device);
    if (driver == nullptr) return false;
    const int receiver = chain_.ReceiverBit(wanted.pin);
    if (receiver >= 0) {
        AddBit(step, {wanted.pin, receiver, wanted.level}, scan);
        return true;
    }
    const PinCells cells = driver->Cells(wanted.pin.element);
    if (mode_ != Mode::kSample || cells.output == nullptr) return false;
    const int output = chain_.BitOf(wanted.pin.device, cells.output->GetBoundaryCellPosition());
    if (output < 0) return false;
    AddBit(step, {wanted.pin, output, wanted.level}, scan);
    if (cells.control == nullptr || cells.control == cells.output) return true;
    const int control = chain_.BitOf(wanted.pin.device, cells.control->GetBoundaryCellPosition());
    const eSignal on = cells.output->disableValue == SIG_1 ? SIG_0 : SIG_1;
    AddBit(step, {wanted.pin, control, on, true}, scan);
    return true;
}

void Planner::AddBit(const Step& step, const PinCheck& check, ScanOperation& scan) {
    const bool wanted = check.wanted == SIG_1;
    if (scan.mask.Get(check.bit) && scan.wanted.Get(check.bit) != wanted) {
        faults_.Add(step, chain_.Label(check.pin) + " is to show 0 and 1 at the same time.");
    }
    scan.mask.Set(check.bit, true);
    scan.wanted.Set(check.bit, wanted);
    scan.checks.push_back(check);
}

// Before EXTEST comes, the cells hold what the pins are to show from its first moment.
void Planner::Enter(Mode mode) {
    if (mode_ == mode) return;
    if (mode == Mode::kSample) {
        Select(choices_.sample);
    } else {
        Select(choices_.preload);
        Push(DataScan());
        Select(choices_.extest);
    }
    mode_ = mode;
}

void Planner::Select(const std::vector<InstructionChoice>& choices) {
    const ChainResult result = chain_.Select(choices);
    if (!result.Ok()) faults_.Add(Step(), result);
    ScanOperation scan;
    scan.kind = OperationKind::kInstructionScan;
    scan.out = chain_.InstructionBits();
    scan.fields = std::make_shared<const ScanFields>(chain_.InstructionFields());
    Push(std::move(scan));
}

ScanOperation Planner::DataScan() const {
    ScanOperation scan;
    scan.kind = OperationKind::kDataScan;
    if (too_long_) return scan;
    scan.out = chain_.DataBits();
    scan.fields = chain_.DataFields();
    return scan;
}

ScanOperation& Planner::Push(ScanOperation operation) {
    bits_ += static_cast<std::size_t>(operation.out.Size()) * (operation.mask.Empty() ? 1 : 3);
    if (bits_ > kMaxProgramBits && !too_long_) {
        too_long_ = true;
        faults_.Add(Step(), "The scans of all steps have too many bits.");
    }
    operation.step = step_;
    program_.operations.push_back(std::move(operation));
    return program_.operations.back();
}

void Planner::Comment(std::string text) { Push({}).text = std::move(text); }

void Planner::Reset() {
    Push({}).kind = OperationKind::kReset;
    mode_ = Mode::kReset;
}

void Planner::Note(std::string text) {
    if (program_.notes.size() < kMaxFindings) program_.notes.push_back(std::move(text));
}

}  // namespace

ScanProgram PlanSteps(Chain& chain, const std::vector<Step>& steps, const ProgramOptions& options) {
    ScanProgram no_memory;
    no_memory.result.code = ChainCode::kOutOfMemory;
    return detail::Guarded([&] { return Planner(chain, options).Plan(steps); },
                           std::move(no_memory));
}

std::vector<FailedCheck> Compare(const ScanOperation& operation, const ScanBits& captured) {
    std::vector<FailedCheck> failed;
    const auto differs = [&](int bit) {
        return operation.mask.Get(bit) && operation.wanted.Get(bit) != captured.Get(bit);
    };
    const auto level = [](bool value) { return value ? SIG_1 : SIG_0; };
    eSignal wanted = SIG_X;  // of the pin; the check of its control cell comes behind
    for (const PinCheck& check : operation.checks) {
        if (!check.of_control) wanted = check.wanted;
        if (!differs(check.bit)) continue;
        const eSignal seen = check.of_control ? SIG_Z : level(captured.Get(check.bit));
        if (failed.empty() || failed.back().pin != check.pin) {
            failed.push_back({check.pin.device, check.pin, wanted, seen});
        } else if (check.of_control) {
            failed.back().seen = SIG_Z;
        }
    }
    if (!operation.checks.empty() || operation.fields == nullptr) return failed;
    for (const ScanField& field : *operation.fields) {
        for (int cell = 0; cell < field.count; ++cell) {
            const int bit = field.first + cell;
            if (!differs(bit)) continue;
            failed.push_back(
                {field.device, {}, level(operation.wanted.Get(bit)), level(captured.Get(bit))});
            break;
        }
    }
    return failed;
}

}  // namespace bscan
