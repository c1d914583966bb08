// bscan live: pins of a chain on hardware, through a running OpenOCD or one of our own.

#include <bscan/live_chain.h>

#include "commands.h"
#include "device_library.h"
#include "device_tables.h"
#include "interrupt.h"
#include "openocd_link.h"
#include "openocd_text.h"
#include "printable.h"
#include "step_text.h"
#include "table.h"
#include "terminal.h"
#include "vcd.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace tool {
namespace {

using bscan::ChainPin;
using bscan::ChainResult;
using bscan::PinState;

int Complain(const std::string& message) {
    Write(stderr, fmt::format("bscan live: {}\n", Printable(message)));
    return kProblem;
}

// The pins that the texts name; all that carry a signal when there are none.
bool FindPins(const bscan::Chain& chain, const std::vector<std::string>& texts,
              std::vector<ChainPin>& pins) {
    for (const std::string& text : texts) {
        std::vector<ChainPin> found;
        const ChainResult result = chain.FindPins(text, found);
        if (!result.Ok()) return Complain(result.reason) == kSuccess;
        pins.insert(pins.end(), found.begin(), found.end());
    }
    for (int device = 0; texts.empty() && device < chain.DeviceCount(); ++device) {
        const bscan::PinDriver* const driver = chain.Driver(device);
        for (int element = 0; driver != nullptr && element < driver->ElementCount(); ++element) {
            const bscan::PinCells cells = driver->Cells(element);
            if (cells.receiver != nullptr || cells.output != nullptr) {
                pins.push_back({device, element});
            }
        }
    }
    return true;
}

Table StateTable(const bscan::Chain& chain, const std::vector<PinState>& states) {
    Table table{{{"port", "Port"},
                 {"pin", "Pin"},
                 {"mode", "Mode"},
                 {"direction", "Direction"},
                 {"level", "Level"}},
                {}};
    for (const PinState& state : states) {
        const LPinNode* const node = chain.Driver(state.pin.device)->Node(state.pin.element);
        const std::string designator = chain.PackagePin(state.pin);
        table.rows.push_back({chain.Label(state.pin), TextOrNull(designator),
                              Word(node->GetPortType()),
                              state.direction == PORT_NONE ? Json() : Json(Word(state.direction)),
                              Word(state.level)});
    }
    return table;
}

class Session {
public:
    Session(const LiveOptions& options, bscan::Chain& chain, bscan::LiveChain& live)
        : options_(options), chain_(chain), live_(live) {}

    int Run() {
        const ChainResult attached = live_.Attach();
        if (!attached.Ok()) return Complain(attached.reason);
        switch (options_.action) {
            case LiveAction::kRead:
                return Read();
            case LiveAction::kDrive:
                return Drive();
            case LiveAction::kRun:
                return RunSteps();
            default:
                return Watch();
        }
    }

private:
    int Read() {
        std::vector<ChainPin> pins;
        if (!FindPins(chain_, options_.pins, pins)) return kProblem;
        std::vector<PinState> states;
        const ChainResult result = live_.Read(pins, states);
        if (!result.Ok()) return Complain(result.reason);
        const Table table = StateTable(chain_, states);
        if (options_.format == Format::kJson) {
            Print(stdout, Json{{"ports", ToJson(table)}}, 2);
        } else {
            Print(stdout, table, options_.format);
        }
        return kSuccess;
    }

    // A step in words is read where all steps are read.
    bool ParseOrComplain(const StepText& text, bscan::Steps& steps) const {
        steps = bscan::ParseSteps(chain_, text.text);
        TellFaults(steps.faults, text.source, Complain);
        return steps.result.Ok();
    }

    int Drive() {
        std::string text = "drive";
        for (const std::string& request : options_.pins) text += ' ' + request;
        bscan::Steps steps;
        if (!ParseOrComplain({text, "drive"}, steps)) return kProblem;
        const ChainResult result = live_.Drive(steps.steps.front().pins);
        if (!result.Ok()) return Complain(result.reason);
        TellSharers();
        constexpr double kLongest = 1e9;  // some thirty years
        const auto hold = std::chrono::milliseconds(
            static_cast<long long>(std::min(options_.hold, kLongest) * 1000));
        const bool interrupted = !SleepUnlessInterrupted(hold);
        const ChainResult released = live_.Release();
        if (!released.Ok()) return Complain(released.reason);
        if (interrupted) Complain("interrupted; the pins are free again");
        return kSuccess;
    }

    void TellSharers() const {
        for (int device = 0; device < chain_.DeviceCount(); ++device) {
            const bscan::PinDriver* const driver = chain_.Driver(device);
            if (driver == nullptr) continue;
            for (const int element : driver->AlsoDriven()) {
                Write(stderr, fmt::format("bscan live: also driven, through a shared control cell: "
                                          "{}\n",
                                          Printable(chain_.Label({device, element}))));
            }
        }
    }

    int RunSteps() {
        const std::optional<StepText> text = ReadSteps(options_.steps, Complain);
        if (!text) return kProblem;
        bscan::Steps steps;
        if (!ParseOrComplain(*text, steps)) return kProblem;
        const bscan::ScanProgram program = bscan::PlanSteps(chain_, steps.steps);
        TellFaults(program.faults, text->source, Complain);
        if (!program.result.Ok()) return kProblem;
        for (const std::string& note : program.notes) Complain("note: " + note);
        int failures = 0;
        const ChainResult result = live_.Play(
            program, [](const bscan::ScanOperation&) { return !Interrupted(); },
            [&](const bscan::ScanOperation& operation, const bscan::FailedCheck& check) {
                ++failures;
                TellFailure(steps, text->source, operation, check);
            });
        if (!result.Ok()) return Complain(result.reason);
        if (Interrupted()) return Complain("interrupted; the pins are free again");
        Write(stdout, failures == 0 ? fmt::format("{} steps: all as expected\n", steps.steps.size())
                                    : fmt::format("{} steps: {} levels otherwise than expected\n",
                                                  steps.steps.size(), failures));
        return failures == 0 ? kSuccess : kProblem;
    }

    void TellFailure(const bscan::Steps& steps, const std::string& source,
                     const bscan::ScanOperation& operation, const bscan::FailedCheck& check) const {
        const bool known = operation.step >= 0;
        const bscan::Step step =
            known ? steps.steps[static_cast<std::size_t>(operation.step)] : bscan::Step();
        const std::string where =
            known ? fmt::format("{}:{}: {}: ", source, step.line, step.text) : "";
        if (check.pin.device < 0) {
            Complain(where + "the IDCODE is not that of " + chain_.Device(check.device).name);
            return;
        }
        const std::string designator = chain_.PackagePin(check.pin);
        Write(stdout,
              Printable(fmt::format("{}{}{}: wanted {}, seen {}", where, chain_.Label(check.pin),
                                    designator.empty() ? "" : fmt::format(" (pin {})", designator),
                                    Word(check.wanted), Word(check.seen))) +
                  "\n");
    }

    int Watch() {
        std::vector<ChainPin> pins;
        if (!FindPins(chain_, options_.pins, pins)) return kProblem;
        std::vector<std::string> names;
        names.reserve(pins.size());
        for (const ChainPin pin : pins) names.push_back(chain_.Label(pin));
        std::unique_ptr<VcdFile> vcd;
        if (!options_.vcd.empty()) {
            vcd = std::make_unique<VcdFile>(options_.vcd, names);
            if (!vcd->IsOpen()) return Complain("cannot write " + options_.vcd);
        }
        const auto start = std::chrono::steady_clock::now();
        std::vector<PinState> last;
        for (long long turn = 0; options_.count == 0 || turn < options_.count; ++turn) {
            std::vector<PinState> states;
            const ChainResult result = live_.Read(pins, states);
            if (!result.Ok()) return Complain(result.reason);
            const auto time = std::chrono::duration_cast<std::chrono::microseconds>(
                std::chrono::steady_clock::now() - start);
            if (vcd != nullptr) vcd->Write(time, Levels(states));
            Show(states, last, time);
            last = states;
            const bool more = options_.count == 0 || turn + 1 < options_.count;
            if (more && !SleepUnlessInterrupted(std::chrono::milliseconds(options_.every))) break;
        }
        return kSuccess;
    }

    static std::vector<eSignal> Levels(const std::vector<PinState>& states) {
        std::vector<eSignal> levels;
        levels.reserve(states.size());
        for (const PinState& state : states) levels.push_back(state.level);
        return levels;
    }

    // On a terminal a table that stays in its place; elsewhere a line for each change.
    void Show(const std::vector<PinState>& states, const std::vector<PinState>& last,
              std::chrono::microseconds time) const {
        if (IsTerminal(stdout)) {
            if (!last.empty()) Write(stdout, fmt::format("\x1b[{}A", states.size() + 1));
            Print(stdout, StateTable(chain_, states), Format::kTable);
        } else {
            for (std::size_t i = 0; i < states.size(); ++i) {
                const bool same = !last.empty() && last[i].level == states[i].level &&
                                  last[i].direction == states[i].direction;
                if (same) continue;
                Write(stdout,
                      fmt::format("{:.3f} {} {} {}\n", static_cast<double>(time.count()) / 1e6,
                                  Printable(chain_.Label(states[i].pin)), Word(states[i].direction),
                                  Word(states[i].level)));
            }
        }
        std::fflush(stdout);
    }

    const LiveOptions& options_;
    bscan::Chain& chain_;
    bscan::LiveChain& live_;
};

// OpenOCD reads the IDCODEs of all TAPs at its start, also of those that nobody declared.
int IdentifyChain(const LiveOptions& options) {
    OpenOcdProcess process;
    bscan::OpenOcd link;
    const std::string trouble = Connect({options.openocd, options.adapter}, "", process, link);
    if (!trouble.empty()) return Complain(trouble);
    std::string answer;
    const int code = link.Run(
        "set bscan_ids {}; foreach tap [jtag names] { if {[jtag tapisenabled $tap]} { "
        "set id [jtag cget $tap -idcode]; if {$id != 0} { lappend bscan_ids $id } } }; "
        "set bscan_ids",
        answer);
    if (code != bscan::kOk) return Complain(link.Problem());
    std::vector<std::uint32_t> idcodes;
    std::istringstream words(answer);
    for (std::string word; words >> word;) {
        idcodes.push_back(static_cast<std::uint32_t>(std::strtoul(word.c_str(), nullptr, 0)));
    }
    if (idcodes.empty()) return Complain("OpenOCD has found no device");
    return PrintMatches(idcodes, {options.library}, 0, options.format);
}

}  // namespace

int Live(const LiveOptions& options) {
    CatchInterrupts();
    if (options.action == LiveAction::kIdentify) return IdentifyChain(options);
    LoadedChain loaded;
    if (!LoadChain("live", options.chain, loaded)) return kProblem;
    OpenOcdProcess process;
    bscan::OpenOcd link;
    const std::string trouble = Connect({options.openocd, options.adapter},
                                        OpenOcdConfiguration(loaded.chain), process, link);
    if (!trouble.empty()) return Complain(trouble);
    bscan::LiveChain live(link, loaded.chain);
    return Session(options, loaded.chain, live).Run();
}

}  // namespace tool
