// Reading, looking at and driving one device.

#include <bscan/result.h>

#include "device.h"
#include "drawing/package_drawing.h"
#include "module.h"
#include "problem.h"
#include "rows.h"
#include "values.h"

#include <algorithm>
#include <pybind11/stl.h>

namespace bscan::python {
namespace {

using Shared = std::shared_ptr<Device>;

// Python's lock is free meanwhile, so that threads read side by side.
Shared Finish(Description description, const std::string& package) {
    const int code = description.Result();
    if (code != kOk) throw Problem("Error", code, description.Name() + ": " + Describe(code));
    return std::make_shared<Device>(std::make_shared<const Description>(std::move(description)),
                                    package);
}

Shared Read(const std::string& path, const std::string& package) {
    const py::gil_scoped_release release;
    return Finish(Description::Read(path.c_str()), package);
}

Shared Parse(const std::string& text, const std::string& name, const std::string& package) {
    const py::gil_scoped_release release;
    return Finish(Description::Parse(text, name.c_str()), package);
}

void Drive(Device& device, const std::vector<std::pair<int, int>>& requests) {
    std::vector<PinRequest> levels;
    levels.reserve(requests.size());
    for (const auto& [place, level] : requests) levels.emplace_back(place, SignalOf(level));
    device.Requests().Drive(levels);
}

void Preset(Device& device, const std::string& sample) {
    std::vector<eSignal> levels;
    levels.reserve(sample.size());
    for (const char level : sample) levels.push_back(SignalOf(level));
    device.Requests().Preset(std::move(levels));
}

py::bytes Vector(Device& device) {
    BScanPinMap& map = device.Map();
    const auto length = (static_cast<std::size_t>(map.GetBScanLength()) + 7) / 8;
    const unsigned char* const bits = map.GetBScanBitArray();
    std::string bytes(length, '\0');
    if (bits != nullptr) std::copy(bits, bits + length, bytes.begin());
    return bytes;
}

struct Seen {
    PortType direction = PORT_NONE;
    eSignal level = SIG_X;
};

// The model tells levels when it was filled with a capture, which makes it another model.
std::vector<Seen> SeenIn(const Device& device, std::string capture) {
    BScanParser parser;
    std::vector<unsigned char> data(capture.begin(), capture.end());
    std::vector<unsigned char> mask(data.size());
    for (std::size_t i = 0; i < data.size(); ++i) mask[i] = data[i] <= 1 ? 1 : 0;
    const int code =
        parser.SetBSCANBitArray(data.data(), static_cast<int>(data.size()), mask.data());
    if (code != kOk) throw Problem("Error", code, Describe(code));
    Fill(*device.Source(), device.PackageAsked(), parser);
    std::vector<Seen> seen;
    BScanPinMap* const map = parser.GetPinMap();
    const std::vector<drawing::DeclaredElement> elements =
        drawing::DeclaredElements(device.GetFacts(), map);
    // Package pin numbers may be missing or doubled, so each element gets one of its own.
    int number = 0;
    for (const drawing::DeclaredElement& element : elements) element.node->SetPinNumber(++number);
    for (int i = 1; i <= number; ++i) {
        seen.push_back({map->GetPortDirection(i), map->GetPortValue(i)});
    }
    return seen;
}

py::list Observe(const Device& device, const std::string& capture) {
    std::vector<Seen> seen;
    {
        const py::gil_scoped_release release;
        seen = SeenIn(device, capture);
    }
    py::list rows;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const PortType mode = device.Elements()[i].node->GetPortType();
        if (mode == PORT_NONE) continue;
        const py::object direction =
            seen[i].direction == PORT_NONE
                ? py::object(py::none())
                : py::object(py::str(seen[i].direction == PORT_IN ? "in" : "out"));
        rows.append(py::make_tuple(i, direction, Level(seen[i].level)));
    }
    return rows;
}

std::string Draw(Device& device) {
    return drawing::DrawPackage(device.GetFacts(), &device.Map(), device.PackageName());
}

py::str Line(const Device& device, int line) { return Text(device.Source()->Line(line)); }

}  // namespace

void BindDevice(py::module_& module) {
    // Paths and texts come as bytes, which need not be UTF-8.
    module.def("read", &Read, py::arg("path"), py::arg("package"));
    module.def("parse", &Parse, py::arg("text"), py::arg("name"), py::arg("package"));
    module.def("describe_rule", [](const std::string& rule) -> py::object {
        const char* const text = DescribeRule(rule);
        return text == nullptr ? py::object(py::none()) : py::object(py::str(text));
    });
    py::class_<Device, Shared>(module, "Device")
        .def("facts", &SingleFacts)
        .def("pins", &PinRows)
        .def("ports", &PortRows)
        .def("cells", &CellRows)
        .def("instructions",
             [](const Device& device) { return InstructionRows(device.GetFacts()); })
        .def("registers", [](const Device& device) { return RegisterRows(device.GetFacts()); })
        .def("pairs", &PairRows)
        .def("findings", [](const Device& device) { return FindingRows(*device.Source()); })
        .def("attributes", [](const Device& device) { return AttributeRows(device.GetFacts()); })
        .def("line", &Line)
        .def("length", [](Device& device) { return device.Map().GetBScanLength(); })
        .def("find", [](const Device& device,
                        const std::string& name) { return device.Names().Find(name); })
        .def("drive", &Drive)
        .def("preset", &Preset)
        .def("also_driven", [](Device& device) { return device.Driver().AlsoDriven(); })
        .def("no_longer_driven", [](Device& device) { return device.Driver().NoLongerDriven(); })
        .def("vector", &Vector)
        .def("observe", &Observe)
        .def("draw", &Draw);
}

}  // namespace bscan::python
