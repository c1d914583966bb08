// Each reader by itself, over a device that grows.

#include <bscan/bscan.h>

#include "allocation_counter.h"
#include "device_generator.h"
#include "files.h"
#include "run.h"
#include "stopwatch.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>

namespace {

using namespace bscan::bench;

/// A text as the stream that a reader takes.
class TextStream {
public:
    explicit TextStream(const std::string& text)
        : file_(fmemopen(const_cast<char*>(text.data()), text.size(), "r")) {
        if (file_ == nullptr) throw std::runtime_error("no stream can be opened over a text");
    }
    TextStream(const TextStream&) = delete;
    TextStream& operator=(const TextStream&) = delete;
    ~TextStream() { fclose(file_); }

    operator FILE*() const { return file_; }

private:
    FILE* file_;
};

// The readers. Each is timed on a parser that the readers before it in a file have prepared.

void Require(int result, const char* reader) {
    if (result != 0) throw std::runtime_error(std::string(reader) + " failed");
}

int ReadPorts(BScanParser& parser, const GeneratedDevice& device) {
    TextStream stream(device.port_clause);
    char line[1024];
    const int result = parser.GetLine(stream, line, nullptr);
    return result != 0 ? result : parser.ReadPort(stream, line);
}

int ReadPinMap(BScanParser& parser, const GeneratedDevice& device) {
    TextStream stream(device.pin_map);
    return parser.ReadBSCANPinMap(stream, "constant GRID : PIN_MAP_STRING :=");
}

int ReadGrouping(BScanParser& parser, const GeneratedDevice& device) {
    TextStream stream(device.grouping);
    return parser.ReadPortGroupingAttribute(stream, "attribute PORT_GROUPING of S : entity is ");
}

int ReadLength(BScanParser& parser, const GeneratedDevice& device) {
    const std::string value = std::to_string(device.cells) + ";\n";
    TextStream stream(value);
    char statement[] = "attribute BOUNDARY_LENGTH of S : entity is ";
    return parser.ReadBSCANBoundaryLength(stream, statement);
}

int ReadRegister(BScanParser& parser, const std::string& value) {
    TextStream stream(value);
    char statement[] = "attribute BOUNDARY_REGISTER of S : entity is ";
    return parser.ReadBSCANBoundaryRegister(stream, statement);
}

/// One reader: what has to be read before it, and what is timed.
struct Reader {
    const char* name;
    void (*prepare)(BScanParser& parser, const GeneratedDevice& device);
    int (*read)(BScanParser& parser, const GeneratedDevice& device);
    bool per_port;  // else per cell
};

void PreparePorts(BScanParser& parser, const GeneratedDevice& device) {
    Require(ReadPorts(parser, device), "the port clause");
}

/// The package pass opens its file by name: here the file holds nothing but the pin map.
const std::string& PinMapFile(const GeneratedDevice& device) {
    static std::map<const GeneratedDevice*, TemporaryFile> files;
    auto file = files.find(&device);
    if (file == files.end()) {
        const char* begin = "constant GRID : PIN_MAP_STRING :=\n";
        file = files.try_emplace(&device, begin + device.pin_map).first;
    }
    return file->second.path();
}

int ReadPackage(BScanParser& parser, const GeneratedDevice& device) {
    std::string path = PinMapFile(device);
    return parser.ReadPackageDB(path.data());
}

void PreparePinMap(BScanParser& parser, const GeneratedDevice& device) {
    PreparePorts(parser, device);
    char package[] = "grid";
    parser.SetPackageType(package);
    Require(ReadPackage(parser, device), "the package pass");
}

void PrepareTable(BScanParser& parser, const GeneratedDevice& device) {
    PreparePorts(parser, device);
    Require(ReadLength(parser, device), "the boundary length");
}

void PrepareRegister(BScanParser& parser, const GeneratedDevice& device) {
    PrepareTable(parser, device);
    Require(ReadRegister(parser, device.boundary_register), "the boundary register");
}

constexpr Reader kReaders[] = {
    {"port clause", [](BScanParser&, const GeneratedDevice&) {}, ReadPorts, true},
    {"package pass", [](BScanParser&, const GeneratedDevice& device) { PinMapFile(device); },
     ReadPackage, true},
    {"pin map", PreparePinMap, ReadPinMap, true},
    {"boundary register", PrepareTable,
     [](BScanParser& parser, const GeneratedDevice& device) {
         return ReadRegister(parser, device.boundary_register);
     },
     false},
    {"grouping with completion", PrepareRegister,
     [](BScanParser& parser, const GeneratedDevice& device) {
         const int result = ReadGrouping(parser, device);
         // Every register is followed by the completion; this one changes nothing else.
         return result != 0 ? result : ReadRegister(parser, "\"0 (BC_1, *, internal, X)\";\n");
     },
     true},
};

void OneReader(benchmark::State& state, const Reader& reader) {
    const GeneratedDevice& device = DeviceOf(static_cast<int>(state.range(0)));
    Samples times;
    for (auto _ : state) {
        BScanParser parser;
        reader.prepare(parser, device);
        state.SetIterationTime(
            times.Add(Seconds([&] { Require(reader.read(parser, device), reader.name); })));
    }
    BScanParser counted;
    reader.prepare(counted, device);
    const AllocationCount count = CountAllocations([&] { reader.read(counted, device); });

    const char* unit = reader.per_port ? "port" : "cell";
    const double units =
        reader.per_port ? static_cast<double>(device.elements.size()) : device.cells;
    state.counters[std::string("ns_per_") + unit] = times.Median() * 1e9 / units;
    state.counters[std::string("allocs_per_") + unit] = static_cast<double>(count.calls) / units;
}

}  // namespace

int main(int argc, char** argv) {
    for (const Reader& reader : kReaders) {
        benchmark::RegisterBenchmark(
            (std::string("readers/") + reader.name).c_str(),
            [&reader](benchmark::State& state) { OneReader(state, reader); })
            ->Arg(1'000)
            ->Arg(10'000)
            ->Arg(100'000)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    return RunBenchmarks(argc, argv);
}
