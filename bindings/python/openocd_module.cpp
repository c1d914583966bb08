// A chain on hardware, through a running OpenOCD.

#include <bscan/live_chain.h>
#include <bscan/openocd.h>
#include <bscan/result.h>

#include "chain.h"
#include "chain_rows.h"
#include "module.h"
#include "values.h"

#include <chrono>
#include <pybind11/stl.h>

namespace bscan::python {
namespace {

// The connection and the chain behind it. Each operation holds both, and lets Python's other
// threads go on while it waits for the hardware.
class Link {
public:
    Link(const std::string& host, int port, double limit) {
        const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::duration<double>(limit));
        const int code = link_.Connect(host, port, time);
        if (code != kOk) throw Problem("Error", code, link_.Problem());
    }

    void Attach(const std::shared_ptr<ScanChain>& chain) {
        const std::lock_guard lock(mutex_);
        Detach();
        chain_ = chain;
        const std::lock_guard chain_lock(chain_->Mutex());
        chain_->Preset();
        live_ = std::make_unique<LiveChain>(link_, chain_->Get());
        const ChainResult result = live_->Attach();
        if (!result.Ok()) live_.reset();
        Check(result);
    }

    /// Does something with the chain on the board. A failure of the hardware gives the pins back,
    /// so what was asked of them is over.
    template <typename Operation>
    void With(Operation operation) {
        const std::lock_guard lock(mutex_);
        if (!link_.IsConnected()) throw Problem("Error", kNoConnection, Describe(kNoConnection));
        if (live_ == nullptr) {
            throw Problem("ChainError", static_cast<int>(ChainCode::kEmpty),
                          "No chain is attached.");
        }
        const std::lock_guard chain_lock(chain_->Mutex());
        const ChainResult result = operation(*live_, *chain_);
        if (!result.Ok()) chain_->Preset();
        Check(result);
    }

    std::string Run(const std::string& command) {
        const std::lock_guard lock(mutex_);
        std::string answer;
        const int code = link_.Run(command, answer);
        if (code == kCommandFailed) throw Problem("Error", code, answer);
        if (code != kOk) throw Problem("Error", code, link_.Problem());
        return answer;
    }

    /// Frees the pins and closes the connection. Nothing happens when that was done.
    void Close() {
        const std::lock_guard lock(mutex_);
        Detach();
        link_.Close();
    }

    bool IsOpen() {
        const std::lock_guard lock(mutex_);
        return link_.IsConnected();
    }

    ~Link() { Detach(); }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

private:
    void Detach() {
        if (live_ == nullptr) return;
        const std::lock_guard chain_lock(chain_->Mutex());
        live_->Detach();
        live_.reset();
    }

    std::mutex mutex_;
    OpenOcd link_;
    std::shared_ptr<ScanChain> chain_;
    std::unique_ptr<LiveChain> live_;  // refers to both, and so goes first
};

using Released = py::call_guard<py::gil_scoped_release>;

py::list Read(Link& link, const std::vector<std::pair<int, int>>& pairs) {
    std::vector<ChainPin> pins;
    pins.reserve(pairs.size());
    for (const auto& [device, element] : pairs) pins.push_back({device, element});
    std::vector<PinState> states;
    py::list rows;
    const auto read = [&](LiveChain& live, ScanChain& chain) {
        ChainResult result = live.Read(pins, states);
        const py::gil_scoped_acquire acquire;
        for (const PinState& state : states) rows.append(StateRow(chain.Get(), state));
        return result;
    };
    const py::gil_scoped_release release;
    link.With(read);
    return rows;
}

void Drive(Link& link, const std::vector<std::tuple<int, int, int>>& requests) {
    std::vector<PinLevel> levels;
    levels.reserve(requests.size());
    for (const auto& [device, element, level] : requests) {
        levels.push_back({{device, element}, SignalOf(level)});
    }
    link.With([&](LiveChain& live, ScanChain& chain) {
        chain.Drive(levels);  // all or none, before anything is shifted
        return live.Drive(levels);
    });
}

void Release(Link& link) {
    link.With([](LiveChain& live, ScanChain& chain) {
        chain.Preset();
        return live.Release();
    });
}

struct Failed {
    int line = 0;
    std::string pin;
    eSignal wanted = SIG_X;
    eSignal seen = SIG_X;
};

// Plays steps and tells which levels were otherwise; a device's IDCODE stands for a pin.
std::vector<Failed> Play(Link& link, const std::string& text, bool check_idcodes) {
    std::vector<Failed> failures;
    link.With([&](LiveChain& live, ScanChain& scan_chain) -> ChainResult {
        Chain& chain = scan_chain.Get();
        scan_chain.Preset();
        const Steps steps = ParseSteps(chain, text);
        if (!steps.result.Ok()) return steps.result;
        ProgramOptions options;
        options.check_idcodes = check_idcodes;
        const ScanProgram program = PlanSteps(chain, steps.steps, options);
        if (!program.result.Ok()) return program.result;
        return live.Play(
            program, nullptr, [&](const ScanOperation& operation, const FailedCheck& check) {
                Failed failed{0, "", check.wanted, check.seen};
                if (operation.step >= 0) {
                    const auto step = static_cast<std::size_t>(operation.step);
                    failed.line = steps.steps[step].line;
                }
                failed.pin = check.pin.device < 0 ? chain.Device(check.device).name + " IDCODE"
                                                  : chain.Label(check.pin);
                failures.push_back(failed);
            });
    });
    return failures;
}

py::list PlayRows(Link& link, const std::string& text, bool check_idcodes) {
    std::vector<Failed> failures;
    {
        const py::gil_scoped_release release;
        failures = Play(link, text, check_idcodes);
    }
    py::list rows;
    for (const Failed& failed : failures) {
        py::dict row;
        row["line"] = failed.line;
        row["port"] = Text(failed.pin);
        row["wanted"] = Level(failed.wanted);
        row["seen"] = Level(failed.seen);
        rows.append(row);
    }
    return rows;
}

py::str Run(Link& link, const std::string& command) {
    std::string answer;
    {
        const py::gil_scoped_release release;
        answer = link.Run(command);
    }
    return Text(answer);
}

// An object that nobody closed waits for the hardware as it goes.
struct DeleteReleased {
    void operator()(Link* link) const {
        const py::gil_scoped_release release;
        delete link;
    }
};

}  // namespace

void BindOpenOcd(py::module_& module) {
    module.attr("default_port") = OpenOcd::kDefaultPort;
    py::class_<Link, std::unique_ptr<Link, DeleteReleased>>(module, "Link")
        .def(py::init<const std::string&, int, double>(), Released())
        .def("attach", &Link::Attach, Released())
        .def("read", &Read)
        .def("drive", &Drive, Released())
        .def("release", &Release, Released())
        .def("play", &PlayRows)
        .def("run", &Run)
        .def("close", &Link::Close, Released())
        .def("is_open", &Link::IsOpen, Released());
}

}  // namespace bscan::python
