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

/// A text in a file, as the stream that a reader takes.
class TextStream {
public:
    explicit TextStream(const std::string& text) : file_(fopen(FileOf(text).c_str(), "r")) {
        if (file_ == nullptr) throw std::runtime_error("the file of a text cannot be opened");
    }
    TextStream(const TextStream&) = delete;
    TextStream& operator=(const TextStream&) = delete;
    ~TextStream() { fclose(file_); }

    operator FILE*() const { return file_; }

    /// @return the path of the file; it is made once for each text, which must stay where it is.
    static const std::string& FileOf(const std::string& text) {
        static std::map<const std::string*, TemporaryFile> files;
        return files.try_emplace(&text, text).first->second.path();
    }

private:
    FILE* file_;
};

// The readers. Each is timed on a parser that the readers before it in a file have prepared.

void Require(int result, const char* reader) {
    if (result != 0) throw std::runtime_error(std::string(reader) + " failed");
}

int ReadPorts(BScanParser& parser, FILE* stream) {
    char line[1024];
    const int result = parser.GetLine(stream, line, nullptr);
    return result != 0 ? result : parser.ReadPort(stream, line);
}

int ReadPinMap(BScanParser& parser, FILE* stream) {
    return parser.ReadBSCANPinMap(stream, "constant GRID : PIN_MAP_STRING :=");
}

int ReadRegister(BScanParser& parser, FILE* stream) {
    char statement[] = "attribute BOUNDARY_REGISTER of S : entity is ";
    return parser.ReadBSCANBoundaryRegister(stream, statement);
}

int ReadGrouping(BScanParser& parser, FILE* stream) {
    const char* statement = "attribute PORT_GROUPING of S : entity is ";
    const int result = parser.ReadPortGroupingAttribute(stream, statement);
    return result != 0 ? result : ReadRegister(parser, stream);
}

/// The package pass opens its file by itself.
int ReadPackage(BScanParser& parser, const std::string& text) {
    return parser.ReadPackageDB(const_cast<char*>(TextStream::FileOf(text).c_str()));
}

/// The device as the readers take it, each by itself.
struct Texts {
    explicit Texts(const GeneratedDevice& device)
        : port_clause(device.port_clause),
          pin_map(device.pin_map),
          package("constant GRID : PIN_MAP_STRING :=\n" + device.pin_map),
          boundary_length(std::to_string(device.cells) + ";\n"),
          boundary_register(device.boundary_register),
          // Every register is followed by the completion; this one changes nothing else.
          grouping(device.grouping + "\"0 (BC_1, *, internal, X)\";\n") {}

    std::string port_clause;
    std::string pin_map;
    std::string package;
    std::string boundary_length;
    std::string boundary_register;
    std::string grouping;
};

const Texts& TextsOf(const GeneratedDevice& device) {
    static std::map<const GeneratedDevice*, Texts> texts;
    return texts.try_emplace(&device, device).first->second;
}

/// One reader: what has to be read before it, and what is timed.
struct Reader {
    const char* name;
    void (*prepare)(BScanParser& parser, const Texts& texts);
    const std::string Texts::*text;
    int (*read)(BScanParser& parser, FILE* stream);  // null for the package pass
    bool per_port;                                   // else per cell
};

void PreparePorts(BScanParser& parser, const Texts& texts) {
    Require(ReadPorts(parser, TextStream(texts.port_clause)), "the port clause");
}

void PreparePinMap(BScanParser& parser, const Texts& texts) {
    PreparePorts(parser, texts);
    char package[] = "grid";
    parser.SetPackageType(package);
    Require(ReadPackage(parser, texts.package), "the package pass");
}

void PrepareTable(BScanParser& parser, const Texts& texts) {
    PreparePorts(parser, texts);
    char statement[] = "attribute BOUNDARY_LENGTH of S : entity is ";
    const TextStream stream(texts.boundary_length);
    Require(parser.ReadBSCANBoundaryLength(stream, statement), "the boundary length");
}

void PrepareRegister(BScanParser& parser, const Texts& texts) {
    PrepareTable(parser, texts);
    Require(ReadRegister(parser, TextStream(texts.boundary_register)), "the boundary register");
}

constexpr Reader kReaders[] = {
    {"port clause", [](BScanParser&, const Texts&) {}, &Texts::port_clause, ReadPorts, true},
    {"package pass", [](BScanParser&, const Texts&) {}, &Texts::package, nullptr, true},
    {"pin map", PreparePinMap, &Texts::pin_map, ReadPinMap, true},
    {"boundary register", PrepareTable, &Texts::boundary_register, ReadRegister, false},
    {"grouping with completion", PrepareRegister, &Texts::grouping, ReadGrouping, true},
};

void OneReader(benchmark::State& state, const Reader& reader) {
    const GeneratedDevice& device = DeviceOf(static_cast<int>(state.range(0)));
    const Texts& texts = TextsOf(device);
    const std::string& text = texts.*reader.text;
    /// Prepares a parser, and gives the reading alone to a measurement.
    const auto read = [&](auto measure) {
        BScanParser parser;
        reader.prepare(parser, texts);
        const TextStream stream(text);
        return measure([&] {
            Require(
                reader.read == nullptr ? ReadPackage(parser, text) : reader.read(parser, stream),
                reader.name);
        });
    };
    Samples times;
    for (auto _ : state) {
        state.SetIterationTime(times.Add(read([](auto reading) { return Seconds(reading); })));
    }
    const AllocationCount count =
        read([](auto reading) { return CountAllocations(std::move(reading)); });

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
