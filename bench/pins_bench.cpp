// Driving and observing every pin once, and finding ports and cells, on a device that grows.

#include <bscan/bscan.h>

#include "device_generator.h"
#include "files.h"
#include "run.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace bscan::bench;

/// A device as a host has it after the reading.
class LoadedDevice {
public:
    explicit LoadedDevice(benchmark::State& state)
        : generated(DeviceOf(static_cast<int>(state.range(0)))) {
        const TemporaryFile file(generated.Text());
        if (parser_.Initialize(file.path().c_str(), nullptr) != 0 || parser_.Read() != 0) {
            throw std::runtime_error("the generated device cannot be read");
        }
    }
    BScanPinMap& map() { return *parser_.GetPinMap(); }
    int pins() { return map().GetNumberOfPins(); }

    const GeneratedDevice& generated;

private:
    BScanParser parser_;
};

void SetTimePerCall(benchmark::State& state, std::size_t calls_per_iteration) {
    using benchmark::Counter;
    state.counters["per_call"] =
        Counter(static_cast<double>(calls_per_iteration),
                Counter::Flags(Counter::kIsIterationInvariantRate | Counter::kInvert));
}

/// Pin numbers run down the columns of a grid whose rows hold neighbouring elements, so in this
/// order every call meets memory that the calls before it have not touched.
std::vector<int> InNumberOrder(LoadedDevice& device) {
    std::vector<int> pins(static_cast<std::size_t>(device.pins()));
    std::iota(pins.begin(), pins.end(), 1);
    return pins;
}

std::vector<int> InDeclaredOrder(LoadedDevice& device) {
    std::vector<int> pins;
    const LObjList* list = device.map().GetPinListArray();
    for (int i = 0; i < list->GetCount(); ++i) {
        pins.push_back(static_cast<const LPinNode*>(list->GetAt(i))->GetPinNumber());
    }
    return pins;
}

struct Order {
    const char* name;
    std::vector<int> (*pins)(LoadedDevice& device);
};

constexpr Order kOrders[] = {{"as declared", InDeclaredOrder}, {"by number", InNumberOrder}};

void DriveEveryPin(benchmark::State& state, const Order& order) {
    struct Request {
        int pin;
        PortType direction;
    };
    LoadedDevice device(state);
    BScanPinMap& map = device.map();
    std::vector<Request> requests;
    for (const int pin : order.pins(device)) {
        requests.push_back({pin, map.GetPortType(pin) == PORT_IN ? PORT_IN : PORT_OUT});
    }
    eSignal level = SIG_0;
    int refused = 0;
    for (auto _ : state) {
        level = level == SIG_0 ? SIG_1 : SIG_0;
        for (const auto& [pin, direction] : requests) refused += map.setPort(pin, direction, level);
    }
    if (refused != 0) state.SkipWithError("a pin refuses its own direction");
    SetTimePerCall(state, requests.size());
}

void ObserveEveryPin(benchmark::State& state, const Order& order) {
    LoadedDevice device(state);
    BScanPinMap& map = device.map();
    const std::vector<int> pins = order.pins(device);
    for (auto _ : state) {
        for (const int pin : pins) benchmark::DoNotOptimize(map.GetPortValue(pin));
    }
    SetTimePerCall(state, pins.size());
}

/// What a lookup is given.
struct Key {
    std::string text;
    int number = 0;
};

using Keys = std::vector<Key>;

Keys PortNamesOf(LoadedDevice& device) {
    Keys keys;
    for (const PortElement& element : device.generated.elements) {
        keys.push_back({element.port, element.index});
    }
    return keys;
}

Keys PinNamesOf(LoadedDevice& device) {
    Keys keys;
    for (const PortElement& element : device.generated.elements) keys.push_back({element.pin});
    return keys;
}

Keys CellNamesOf(LoadedDevice& device) {
    Keys keys;
    for (const PortElement& element : device.generated.elements) {
        if (!element.cell.empty()) keys.push_back({element.cell});
    }
    return keys;
}

Keys NumbersOf(LoadedDevice& device) {
    Keys keys;
    for (int pin = 1; pin <= device.pins(); ++pin) keys.push_back({"", pin});
    return keys;
}

/// Takes the names from the model, as a host that knows no file has to.
template <typename NameOf>
Keys NamesInModel(LoadedDevice& device, NameOf name_of) {
    Keys keys;
    const LObjList* list = device.map().GetPinListArray();
    for (int i = 0; i < list->GetCount(); ++i) {
        const auto* node = static_cast<const LPinNode*>(list->GetAt(i));
        keys.push_back({name_of(*node), node->GetVectorIndex()});
    }
    return keys;
}

Keys ReadPortNames(LoadedDevice& device) {
    return NamesInModel(device, [](const LPinNode& node) { return bscan::PortName(node); });
}

Keys WritablePortNames(LoadedDevice& device) {
    return NamesInModel(device, [](const LPinNode& node) { return node.GetPortName(); });
}

const void* ByPortName(BScanPinMap& map, Key& key) { return map.GetPortwName(key.text.data()); }

struct Lookup {
    const char* name;
    Keys (*keys)(LoadedDevice& device);
    const void* (*find)(BScanPinMap& map, Key& key);
};

constexpr Lookup kLookups[] = {
    {"by port name", PortNamesOf, ByPortName},
    {"by port name that PortName tells", ReadPortNames, ByPortName},
    {"by port name and index", PortNamesOf,
     [](BScanPinMap& map, Key& key) -> const void* {
         return map.GetPort(key.text.data(), key.number);
     }},
    {"by pin name", PinNamesOf,
     [](BScanPinMap& map, Key& key) -> const void* { return map.GetPort(key.text.c_str()); }},
    {"by pin number", NumbersOf,
     [](BScanPinMap& map, Key& key) -> const void* { return map.GetPort(key.number); }},
    {"by cell name", CellNamesOf,
     [](BScanPinMap& map, Key& key) -> const void* { return map.GetBScanCell(key.text.c_str()); }},
};

/// The price of a writable name: every lookup has to look at the names themselves.
constexpr Lookup kExposedLookup = {"by port name that GetPortName gave out", WritablePortNames,
                                   ByPortName};

void Find(benchmark::State& state, const Lookup& lookup) {
    LoadedDevice device(state);
    BScanPinMap& map = device.map();
    Keys keys = lookup.keys(device);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(1));
    const bool all = std::all_of(keys.begin(), keys.end(),
                                 [&](Key& key) { return lookup.find(map, key) != nullptr; });
    for (auto _ : state) {
        for (Key& key : keys) benchmark::DoNotOptimize(lookup.find(map, key));
    }
    if (!all) state.SkipWithError("a name of the device is not found");
    SetTimePerCall(state, keys.size());
}

}  // namespace

int main(int argc, char** argv) {
    const auto add = [](const std::string& name, auto run) {
        return benchmark::RegisterBenchmark(("pins/" + name).c_str(), run)
            ->Arg(1'000)
            ->Unit(benchmark::kMicrosecond);
    };
    for (const Order& order : kOrders) {
        const auto drive = [&order](benchmark::State& state) { DriveEveryPin(state, order); };
        const auto observe = [&order](benchmark::State& state) { ObserveEveryPin(state, order); };
        add(std::string("setPort ") + order.name, drive)->Arg(10'000)->Arg(100'000);
        add(std::string("GetPortValue ") + order.name, observe)->Arg(10'000)->Arg(100'000);
    }
    for (const Lookup& lookup : kLookups) {
        add(lookup.name, [&lookup](benchmark::State& state) { Find(state, lookup); })
            ->Arg(10'000)
            ->Arg(100'000);
    }
    add(kExposedLookup.name, [](benchmark::State& state) { Find(state, kExposedLookup); });
    return RunBenchmarks(argc, argv);
}
