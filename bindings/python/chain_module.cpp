// Scan chains: their pins, their scans, and steps.

#include <bscan/live_chain.h>
#include <bscan/scan_program.h>

#include "chain.h"
#include "chain_rows.h"
#include "drawing/words.h"
#include "module.h"
#include "values.h"

#include <pybind11/stl.h>

namespace bscan::python {
namespace {

// Waits for an operation on hardware to end; Python's other threads go on meanwhile.
class Held {
public:
    explicit Held(ScanChain& chain) : lock_(chain.Mutex(), std::defer_lock) {
        const py::gil_scoped_release release;
        lock_.lock();
    }

private:
    std::unique_lock<std::mutex> lock_;
};

// A pin is a pair: the positions of device and element.
using PinPair = std::pair<int, int>;

std::vector<PinPair> FindPins(ScanChain& chain, const std::string& text) {
    const Held held(chain);
    std::vector<ChainPin> pins;
    Check(chain.Get().FindPins(text, pins));
    std::vector<PinPair> pairs;
    pairs.reserve(pins.size());
    for (const ChainPin pin : pins) pairs.emplace_back(pin.device, pin.element);
    return pairs;
}

py::list Labels(ScanChain& chain, const std::vector<PinPair>& pins) {
    const Held held(chain);
    py::list labels;
    for (const auto& [device, element] : pins) {
        labels.append(Text(chain.Get().Label({device, element})));
    }
    return labels;
}

std::vector<PinPair> SignalPins(ScanChain& chain) {
    const Held held(chain);
    std::vector<PinPair> pairs;
    for (int device = 0; device < chain.Get().DeviceCount(); ++device) {
        const PinDriver* const driver = chain.Get().Driver(device);
        for (int element = 0; driver != nullptr && element < driver->ElementCount(); ++element) {
            const PinCells cells = driver->Cells(element);
            if (cells.receiver != nullptr || cells.output != nullptr) {
                pairs.emplace_back(device, element);
            }
        }
    }
    return pairs;
}

void Drive(ScanChain& chain, const std::vector<std::tuple<int, int, int>>& requests) {
    const Held held(chain);
    std::vector<PinLevel> levels;
    levels.reserve(requests.size());
    for (const auto& [device, element, level] : requests) {
        levels.push_back({{device, element}, SignalOf(level)});
    }
    chain.Drive(levels);
}

void Select(ScanChain& chain, const std::vector<std::pair<int, std::string>>& choices) {
    const Held held(chain);
    std::vector<InstructionChoice> list;
    list.reserve(choices.size());
    for (const auto& [device, instruction] : choices) list.push_back({device, instruction});
    Check(chain.Get().Select(list));
}

py::list Members(ScanChain& chain) {
    const Held held(chain);
    py::list rows;
    for (int i = 0; i < chain.Get().DeviceCount(); ++i) {
        const ChainDevice& device = chain.Get().Device(i);
        py::dict row;
        row["name"] = Text(device.name);
        row["component"] = TextOrNone(device.component);
        row["package"] = TextOrNone(device.package);
        row["instruction_length"] = device.instruction_length;
        row["instruction"] = Text(chain.Get().SelectedInstruction(i));
        rows.append(row);
    }
    return rows;
}

py::list Fields(const Chain& chain, const ScanFields& fields) {
    py::list rows;
    for (const ScanField& field : fields) {
        py::dict row;
        row["device"] = Text(chain.Device(field.device).name);
        row["register"] = Text(field.register_name);
        row["first"] = field.first;
        row["count"] = field.count;
        rows.append(row);
    }
    return rows;
}

py::tuple InstructionScan(ScanChain& chain) {
    const Held held(chain);
    return py::make_tuple(BitText(chain.Get().InstructionBits()),
                          Fields(chain.Get(), chain.Get().InstructionFields()));
}

py::tuple DataScan(ScanChain& chain) {
    const Held held(chain);
    return py::make_tuple(BitText(chain.Get().DataBits()),
                          Fields(chain.Get(), *chain.Get().DataFields()));
}

py::list Observe(ScanChain& chain, const std::string& bits, const std::vector<PinPair>& pins) {
    const Held held(chain);
    const ScanBits captured = BitsOf(bits);
    py::list rows;
    for (const auto& [device, element] : pins) {
        rows.append(StateRow(chain.Get(), StateOf(chain.Get(), {device, element}, captured)));
    }
    return rows;
}

// Steps change a chain, so they get one of their own.
struct Planned {
    std::unique_ptr<ScanChain> chain;
    ScanProgram program;
};

void CheckSteps(const ChainResult& result, const std::vector<StepFault>& faults) {
    if (result.Ok()) return;
    std::string reason;
    for (const StepFault& fault : faults) {
        if (!reason.empty()) reason += '\n';
        if (fault.line > 0) reason += "line " + std::to_string(fault.line) + ": ";
        reason += fault.message;
    }
    throw Problem("ChainError", static_cast<int>(result.code),
                  reason.empty() ? result.reason : reason);
}

Planned Plan(ScanChain& chain, const std::string& text, bool check_idcodes) {
    const Held held(chain);
    const py::gil_scoped_release release;
    Planned planned;
    planned.chain = chain.Fresh();
    const Steps steps = ParseSteps(planned.chain->Get(), text);
    CheckSteps(steps.result, steps.faults);
    ProgramOptions options;
    options.check_idcodes = check_idcodes;
    planned.program = PlanSteps(planned.chain->Get(), steps.steps, options);
    CheckSteps(planned.program.result, planned.program.faults);
    return planned;
}

py::str Svf(ScanChain& chain, const std::string& text, double frequency, bool check_idcodes) {
    const Planned planned = Plan(chain, text, check_idcodes);
    SvfOptions options;
    options.frequency = frequency;
    return Text(WriteSvf(planned.chain->Get(), planned.program, options));
}

py::object Wait(const ScanOperation& operation) {
    if (operation.kind != OperationKind::kWait) return py::none();
    constexpr const char* kUnits[] = {"tck", "us", "ms"};
    return py::make_tuple(operation.wait.count, kUnits[static_cast<int>(operation.wait.unit)]);
}

py::list Scans(ScanChain& chain, const std::string& text, bool check_idcodes) {
    const Planned planned = Plan(chain, text, check_idcodes);
    constexpr const char* kKinds[] = {"comment", "reset", "instruction", "data", "wait"};
    py::list rows;
    for (const ScanOperation& operation : planned.program.operations) {
        py::dict row;
        row["kind"] = kKinds[static_cast<int>(operation.kind)];
        row["text"] = Text(operation.text);
        row["out"] = BitText(operation.out);
        row["wanted"] = BitText(operation.wanted);
        row["mask"] = BitText(operation.mask);
        row["wait"] = Wait(operation);
        rows.append(row);
    }
    return rows;
}

}  // namespace

py::dict StateRow(const Chain& chain, const PinState& state) {
    const LPinNode* const node = chain.Driver(state.pin.device)->Node(state.pin.element);
    py::dict row;
    row["port"] = Text(chain.Label(state.pin));
    row["pin"] = TextOrNone(chain.PackagePin(state.pin));
    row["mode"] = Text(drawing::Word(node->GetPortType()));
    row["direction"] = state.direction == PORT_NONE
                           ? py::object(py::none())
                           : py::object(py::str(state.direction == PORT_IN ? "in" : "out"));
    row["level"] = Level(state.level);
    return row;
}

void BindChain(py::module_& module) {
    py::class_<ScanChain, std::shared_ptr<ScanChain>>(module, "Chain")
        .def(py::init<>())
        .def("add_device", [](ScanChain& chain, const std::string& name,
                              const Device& device) { chain.Add(name, device); })
        .def("add_length",
             [](ScanChain& chain, const std::string& name, int length) { chain.Add(name, length); })
        .def("devices", &Members)
        .def("max_frequency", [](ScanChain& chain) { return chain.Get().MaxFrequency(); })
        .def("find", &FindPins)
        .def("labels", &Labels)
        .def("signal_pins", &SignalPins)
        .def("drive", &Drive)
        .def("select", &Select)
        .def("instruction_scan", &InstructionScan)
        .def("data_scan", &DataScan)
        .def("observe", &Observe)
        .def("svf", &Svf)
        .def("scans", &Scans);
}

}  // namespace bscan::python
