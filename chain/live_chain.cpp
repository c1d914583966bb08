// Scans as commands of OpenOCD.

#include <bscan/live_chain.h>

#include "chain/reset_state.h"
#include "chain/wording.h"
#include "support/border.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>
#include <utility>

namespace bscan {
namespace {

ChainResult Refuse(ChainCode code, std::string reason) { return {code, std::move(reason)}; }

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

std::string Number(int value) { return std::to_string(value); }

template <typename Body>
ChainResult Guard(Body&& body) {
    return detail::Guarded(std::forward<Body>(body), ChainResult{ChainCode::kOutOfMemory, {}});
}

}  // namespace

LiveChain::LiveChain(OpenOcd& link, Chain& chain) : link_(link), chain_(chain) {}

LiveChain::~LiveChain() {
    if (link_.IsConnected() && !tap_.empty()) Detach();
}

ChainResult LiveChain::Command(const std::string& tcl, std::string& answer) {
    switch (link_.Run(tcl, answer)) {
        case kOk:
            return {};
        case kOutOfMemory:
            return Refuse(ChainCode::kOutOfMemory, "There is not enough memory.");
        case kCommandFailed:
            return Refuse(ChainCode::kLinkFailed,
                          "OpenOCD refuses '" + tcl.substr(0, 60) + "': " + link_.Problem() + ".");
        default:
            return Refuse(ChainCode::kLinkFailed, link_.Problem() + ".");
    }
}

ChainResult LiveChain::Attach(bool check_idcodes) {
    return Guard([&]() -> ChainResult {
        if (chain_.DeviceCount() == 0) {
            return Refuse(ChainCode::kEmpty, "The chain has no devices.");
        }
        ChainResult result = ChooseTap();
        if (result.Ok() && check_idcodes) result = CheckIdcodes();
        return result;
    });
}

namespace {

// Whether a device may have an IDCODE, whatever its version; 0 stands for none.
bool FitsIdcode(const ChainDevice& device, std::uint32_t idcode) {
    constexpr std::size_t kVersion = 4;
    if (!device.HasModel() || (device.idcodes.empty() && idcode == 0)) return true;
    return std::any_of(device.idcodes.begin(), device.idcodes.end(), [&](const std::string& code) {
        for (std::size_t i = kVersion; i < code.size(); ++i) {
            const char bit = (idcode >> (code.size() - 1 - i) & 1U) != 0 ? '1' : '0';
            if ((code[i] == '0' || code[i] == '1') && code[i] != bit) return false;
        }
        return true;
    });
}

}  // namespace

// OpenOCD runs the handlers of the event when codes, lengths and captures are as they should be;
// nothing else tells. It lists TAPs from TDO.
ChainResult LiveChain::CheckTaps() {
    return Guard([&]() -> ChainResult {
        for (int device = 0; device < chain_.DeviceCount(); ++device) {
            if (!detail::IsResetStateKnown(chain_, device)) return {};
        }
        std::string answer;
        ChainResult result = Command(
            "set bscan_fits 0; foreach bscan_tap [jtag names] { jtag configure $bscan_tap -event "
            "setup { global bscan_fits; set bscan_fits 1 } }; jtag arp_init; "
            "set bscan_taps {}; foreach bscan_tap [jtag names] { if {[jtag tapisenabled "
            "$bscan_tap]} { lappend bscan_taps [jtag cget $bscan_tap -idcode] } }; "
            "concat $bscan_fits $bscan_taps",
            answer);
        const std::vector<std::string> words = Words(answer);
        if (!result.Ok()) return result;
        if (words.size() != static_cast<std::size_t>(chain_.DeviceCount()) + 1) {
            return Refuse(ChainCode::kWrongChain,
                          "OpenOCD finds another number of devices than the chain has.");
        }
        std::string differing;
        for (std::size_t i = 1; i < words.size(); ++i) {
            const ChainDevice& device = chain_.Device(chain_.DeviceCount() - static_cast<int>(i));
            const auto code = std::strtoul(words[i].c_str(), nullptr, 0);
            if (!FitsIdcode(device, static_cast<std::uint32_t>(code))) {
                detail::AppendItem(differing, device.name);
            }
        }
        if (!differing.empty()) {
            return Refuse(ChainCode::kWrongChain,
                          "The IDCODE that the board gives is not that of " + differing + ".");
        }
        if (words.front() == "1") return {};
        return Refuse(ChainCode::kWrongChain,
                      "The chain's IDCODEs, or what its instruction registers capture, are not "
                      "what the files of its devices tell.");
    });
}

// Disabled TAPs are not counted when OpenOCD works out the length of a scan, so the whole chain
// can take the place of its parts.
ChainResult LiveChain::ChooseTap() {
    std::string answer;
    ChainResult result = Command("jtag names", answer);
    if (!result.Ok()) return result;
    std::vector<std::string> names = Words(answer);
    const auto whole = std::find(names.begin(), names.end(), kWholeChainTap);
    if (whole == names.end()) {
        if (names.size() != 1 || chain_.DeviceCount() != 1) {
            return Refuse(ChainCode::kWrongChain,
                          "OpenOCD knows " + Number(static_cast<int>(names.size())) +
                              " TAPs and none of the name " + kWholeChainTap +
                              ": start it with the configuration that 'bscan openocd' writes.");
        }
        tap_ = names.front();
        return {};
    }
    names.erase(whole);
    // OpenOCD gives names such as "auto0.tap" to devices that it finds behind those it knows.
    const auto found = std::erase_if(
        names, [](const std::string& name) { return name.compare(0, 4, "auto") == 0; });
    if (found > 0) {
        return Refuse(ChainCode::kWrongChain,
                      "The chain is longer than it should be: OpenOCD found " +
                          Number(static_cast<int>(found)) + " more at its end.");
    }
    if (static_cast<int>(names.size()) != chain_.DeviceCount()) {
        return Refuse(ChainCode::kWrongChain, "OpenOCD's configuration is for a chain of " +
                                                  Number(static_cast<int>(names.size())) +
                                                  " devices, not " + Number(chain_.DeviceCount()) +
                                                  ".");
    }
    for (const std::string& name : names) take_over_ += "jtag tapdisable " + name + "; ";
    take_over_ += std::string("jtag tapenable ") + kWholeChainTap;
    // A TAP without these handlers cannot be switched.
    names.emplace_back(kWholeChainTap);
    std::string prepare;
    for (const std::string& name : names) {
        for (const char* const event : {" -event tap-enable {}; ", " -event tap-disable {}; "}) {
            prepare += "jtag configure " + name + event;
        }
    }
    tap_ = kWholeChainTap;
    return Command(prepare + take_over_, answer);
}

ChainResult LiveChain::CheckIdcodes() {
    std::string differing;
    ChainResult result =
        Play(PlanSteps(chain_, {}), nullptr, [&](const ScanOperation&, const FailedCheck& check) {
            if (check.device < 0) return;
            if (!differing.empty()) differing += ", ";
            differing += chain_.Device(check.device).name;
        });
    if (!result.Ok() || differing.empty()) return result;
    return Refuse(ChainCode::kWrongChain,
                  "The IDCODE that the board gives is not that of " + differing + ".");
}

ChainResult LiveChain::ScanInstruction(const ScanBits& out) {
    if (out.Size() > kMaxInstructionBits) {
        return Refuse(ChainCode::kWrongChain,
                      "The instruction registers of the chain have " + Number(out.Size()) +
                          " bits together; OpenOCD takes " + Number(kMaxInstructionBits) +
                          " at a time. An SVF file has no such limit.");
    }
    std::string answer;
    return Command("irscan " + tap_ + " 0x" + out.Hex(), answer);
}

ChainResult LiveChain::ScanData(const ScanBits& out, ScanBits* captured) {
    std::string answer;
    ChainResult result =
        Command("drscan " + tap_ + " " + Number(out.Size()) + " 0x" + out.Hex(), answer);
    if (!result.Ok() || captured == nullptr) return result;
    const std::optional<ScanBits> bits = ScanBits::FromHex(answer, out.Size());
    if (!bits || answer.empty()) {
        return Refuse(ChainCode::kLinkFailed,
                      "OpenOCD answers '" + answer.substr(0, 60) + "', which is no scan.");
    }
    *captured = *bits;
    return {};
}

// Selects an instruction in every device that has it, or another in its place.
ChainResult LiveChain::SelectAndScan(const char* instruction, const char* instead) {
    std::vector<InstructionChoice> choices;
    for (int device = 0; device < chain_.DeviceCount(); ++device) {
        if (!chain_.Device(device).HasModel()) continue;
        if (chain_.CanSelect(device, instruction).Ok()) {
            choices.push_back({device, instruction});
        } else if (instead != nullptr && chain_.CanSelect(device, instead).Ok()) {
            choices.push_back({device, instead});
        }
    }
    ChainResult result = chain_.Select(choices);
    return result.Ok() ? ScanInstruction(chain_.InstructionBits()) : result;
}

ChainResult LiveChain::Enter(bool extest) {
    if (!extest) return SelectAndScan("SAMPLE", "PRELOAD");
    ChainResult result = SelectAndScan("PRELOAD", "SAMPLE");
    if (result.Ok()) result = ScanData(chain_.DataBits(), nullptr);
    if (result.Ok()) result = SelectAndScan("EXTEST", nullptr);
    return result;
}

ChainResult LiveChain::Capture(ScanBits& captured) {
    return Guard([&]() -> ChainResult {
        ChainResult result = driving_ ? ChainResult() : Enter(false);
        if (result.Ok()) result = ScanData(chain_.DataBits(), &captured);
        if (!result.Ok()) Release();
        return result;
    });
}

ChainResult LiveChain::Read(const std::vector<ChainPin>& pins, std::vector<PinState>& states) {
    return Guard([&]() -> ChainResult {
        ScanBits captured;
        ChainResult result = Capture(captured);
        if (!result.Ok()) return result;
        states.clear();
        for (const ChainPin pin : pins) states.push_back(StateOf(chain_, pin, captured));
        return result;
    });
}

ChainResult LiveChain::Request(const PinLevel& wanted) {
    PinDriver* const driver = chain_.Driver(wanted.pin.device);
    if (driver == nullptr) return Refuse(ChainCode::kNoModel, "A pin is of no device.");
    ChainResult extest = chain_.CanSelect(wanted.pin.device, "EXTEST");
    if (!extest.Ok()) return extest;
    const DriveCode code = driver->Request(wanted.pin.element, wanted.level);
    if (IsDone(code)) return {};
    return Refuse(ChainCode::kBadStep, chain_.Label(wanted.pin) + ": " +
                                           driver->Explain(wanted.pin.element, code) + ".");
}

// What was asked before the last release does not count any more.
ChainResult LiveChain::Drive(const std::vector<PinLevel>& levels) {
    return Guard([&]() -> ChainResult {
        for (int device = 0; !driving_ && device < chain_.DeviceCount(); ++device) {
            if (PinDriver* const driver = chain_.Driver(device)) driver->Preset();
        }
        ChainResult result;
        for (const PinLevel& wanted : levels) {
            if (result.Ok()) result = Request(wanted);
        }
        if (result.Ok() && !driving_) result = Enter(true);
        if (result.Ok()) result = ScanData(chain_.DataBits(), nullptr);
        driving_ = result.Ok();
        if (!result.Ok()) Release();
        return result;
    });
}

ChainResult LiveChain::Play(const ScanProgram& program, const OnOperation& before,
                            const OnFailure& failed) {
    return Guard([&]() -> ChainResult {
        if (!program.result.Ok()) return program.result;
        for (const ScanOperation& operation : program.operations) {
            bool ended = before && !before(operation);
            if (ended) return Release();
            ChainResult result = PlayOne(operation, before, failed, ended);
            if (result.Ok() && !ended) continue;
            ChainResult released = Release();
            return ended ? released : result;
        }
        return {};
    });
}

ChainResult LiveChain::PlayOne(const ScanOperation& operation, const OnOperation& before,
                               const OnFailure& failed, bool& ended) {
    switch (operation.kind) {
        case OperationKind::kComment:
            return {};
        case OperationKind::kReset:
            return Release();
        case OperationKind::kInstructionScan:
            return ScanInstruction(operation.out);
        case OperationKind::kWait:
            return PlayWait(operation, before, ended);
        case OperationKind::kDataScan:
            break;
    }
    return PlayScan(operation, failed);
}

ChainResult LiveChain::PlayScan(const ScanOperation& operation, const OnFailure& failed) {
    ScanBits captured;
    ChainResult result = ScanData(operation.out, &captured);
    if (!result.Ok() || operation.mask.Empty() || !failed) return result;
    for (const FailedCheck& check : Compare(operation, captured)) failed(operation, check);
    return result;
}

ChainResult LiveChain::PlayAndCapture(const ScanProgram& program, const OnCapture& captured) {
    return Guard([&]() -> ChainResult {
        if (!program.result.Ok()) return program.result;
        if (tap_.empty()) return Refuse(ChainCode::kWrongChain, "There is no chain to play on.");
        std::string answer;
        ChainResult result = Command("verify_ircapture disable", answer);
        if (result.Ok()) result = PlayOperations(program, captured);
        const ChainResult released = Release();
        if (result.Ok()) result = released;
        const ChainResult restored = Command("verify_ircapture enable", answer);
        return result.Ok() ? restored : result;
    });
}

ChainResult LiveChain::PlayOperations(const ScanProgram& program, const OnCapture& captured) {
    for (const ScanOperation& operation : program.operations) {
        if (operation.kind != OperationKind::kDataScan) {
            bool ended = false;
            ChainResult result = PlayOne(operation, nullptr, nullptr, ended);
            if (!result.Ok()) return result;
            continue;
        }
        // OpenOCD shifts no data register before an instruction has been: see CheckTaps().
        if (operation.fields == nullptr) continue;
        ScanBits bits;
        ChainResult result = ScanData(operation.out, &bits);
        if (!result.Ok()) return result;
        if (!captured(operation, bits)) return {};
    }
    return {};
}

// The host is asked on the way whether to go on: pins may be driven all the time.
ChainResult LiveChain::PlayWait(const ScanOperation& operation, const OnOperation& before,
                                bool& ended) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kTurn(50);
    const Wait& wait = operation.wait;
    std::string answer;
    if (wait.unit == WaitUnit::kTck) return Command("runtest " + Number(wait.count), answer);
    const Clock::duration time = wait.unit == WaitUnit::kMicroseconds
                                     ? Clock::duration(std::chrono::microseconds(wait.count))
                                     : Clock::duration(std::chrono::milliseconds(wait.count));
    const Clock::time_point end = Clock::now() + time;
    while (Clock::now() + kTurn < end) {
        std::this_thread::sleep_for(kTurn);
        ended = before && !before(operation);
        if (ended) return {};
    }
    std::this_thread::sleep_until(end);
    return {};
}

// BYPASS gives the pins back before the reset does; no boundary register is shifted on the way.
// When one of them is refused, the other may do. OpenOCD enables its own TAPs again at a reset.
ChainResult LiveChain::TryReset() {
    ChainResult result = chain_.Select({});
    if (result.Ok()) result = ScanInstruction(chain_.InstructionBits());
    std::string answer;
    ChainResult reset = Command("adapter assert trst; adapter deassert trst", answer);
    return result.Ok() ? reset : result;
}

// Pins that are driven outlast a connection, so a lost one is made anew to give them back.
ChainResult LiveChain::Reset() {
    driving_ = false;
    ChainResult result = TryReset();
    if (!result.Ok() && !link_.IsConnected() && link_.Reconnect() == kOk) result = TryReset();
    return result;
}

ChainResult LiveChain::Release() {
    return Guard([&]() -> ChainResult {
        if (tap_.empty()) return {};
        ChainResult result = Reset();
        std::string answer;
        return result.Ok() && !take_over_.empty() ? Command(take_over_, answer) : result;
    });
}

ChainResult LiveChain::Detach() {
    return Guard([&]() -> ChainResult {
        if (tap_.empty()) return {};
        ChainResult result = Reset();
        tap_.clear();
        take_over_.clear();
        return result;
    });
}

PinState StateOf(const Chain& chain, ChainPin pin, const ScanBits& captured) {
    PinState state{pin, PORT_NONE, chain.Seen(pin, captured)};
    const PinDriver* const driver = chain.Driver(pin.device);
    const LPinNode* const node = driver == nullptr ? nullptr : driver->Node(pin.element);
    if (node == nullptr) return state;
    const auto captured_in = [&](const LBScanCell* cell) -> eSignal {
        const int bit =
            cell == nullptr ? -1 : chain.BitOf(pin.device, cell->GetBoundaryCellPosition());
        if (bit < 0) return SIG_X;
        return captured.Get(bit) ? SIG_1 : SIG_0;
    };
    const PinCells cells = driver->Cells(pin.element);
    const eSignal output = captured_in(cells.output);
    const eSignal control = captured_in(cells.control);
    const bool off = cells.output != nullptr && cells.control != nullptr &&
                     control == cells.output->disableValue;
    switch (node->GetPortType()) {
        case PORT_IN:
            state.direction = PORT_IN;
            break;
        case PORT_INOUT:
            if (output != SIG_X) state.direction = off ? PORT_IN : PORT_OUT;
            break;
        case PORT_OUT:
        case PORT_BUFFER:
            state.direction = PORT_OUT;
            break;
        default:
            break;
    }
    if (state.level == SIG_X && output != SIG_X) state.level = off ? SIG_Z : output;
    return state;
}

}  // namespace bscan
