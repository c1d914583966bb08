// Whole files against the floor, and a device that grows.

#include <bscan/bscan.h>
#include <bscan/description.h>

#include "allocation_counter.h"
#include "device_generator.h"
#include "files.h"
#include "run.h"
#include "stopwatch.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace {

using namespace bscan::bench;

/// What a whole reading leaves behind.
struct Model {
    int result = 0;
    int ports = 0;
    int cells = 0;
    int pairs = 0;
};

/// One of the two ways to read a file.
struct Way {
    const char* name;
    int (*read)(const std::string& path);
    int (*fill)(const std::string& path, BScanParser& parser);
};

const Way kWays[] = {
    {"whole", ReadDevice,
     [](const std::string& path, BScanParser& parser) {
         const int result = parser.Initialize(path.c_str(), nullptr);
         return result == 0 ? parser.Read() : result;
     }},
    {"description", ReadDescription,
     [](const std::string& path, BScanParser& parser) {
         return bscan::Description::Read(path.c_str()).Fill(parser);
     }},
};

Model ReadModel(const Way& way, const std::string& path) {
    BScanParser parser;
    Model model;
    model.result = way.fill(path, parser);
    if (const BScanPinMap* map = parser.GetPinMap()) {
        model.ports = map->GetNumberOfPins();
        model.cells = map->GetBScanLength();
    }
    model.pairs = parser.GetDifferentialPairCount();
    return model;
}

void SetRate(benchmark::State& state, std::int64_t bytes) {
    state.SetBytesProcessed(state.iterations() * bytes);
}

void FloorOfFiles(benchmark::State& state, const FileSet& files) {
    for (auto _ : state) {
        for (const std::string& path : files.paths) benchmark::DoNotOptimize(ReadLines(path));
    }
    SetRate(state, files.bytes);
}

/// Reads files and takes the floor over the same files in turn, so that both meet the same machine.
void WholeFiles(benchmark::State& state, const Way& way, const FileSet& files) {
    Samples readings;
    Samples floors;
    for (auto _ : state) {
        floors.Add(Seconds([&] {
            for (const std::string& path : files.paths) benchmark::DoNotOptimize(ReadLines(path));
        }));
        state.SetIterationTime(readings.Add(Seconds([&] {
            for (const std::string& path : files.paths) benchmark::DoNotOptimize(way.read(path));
        })));
    }
    SetRate(state, files.bytes);
    state.counters["times_floor"] = readings.Median() / floors.Median();

    double cells = 0;
    double allocations = 0;
    double allowed = 0;
    double largest = 0;
    for (const std::string& path : files.paths) {
        const Model model = ReadModel(way, path);
        const AllocationCount count = CountAllocations([&] { way.read(path); });
        cells += model.cells;
        allocations += static_cast<double>(count.calls);
        allowed += 4.0 * model.ports + model.cells;
        const auto bytes = static_cast<double>(std::filesystem::file_size(path));
        if (bytes > largest) {
            largest = bytes;
            state.counters["peak_per_byte"] = static_cast<double>(count.peak_bytes) / bytes;
        }
    }
    state.counters["ns_per_cell"] = readings.Median() * 1e9 / cells;
    state.counters["allocs_of_allowed"] = allocations / allowed;
}

/// Allocations for each line, told by a second file that has a comment line after every line.
double AllocationsPerLine(const Way& way, const std::string& text, std::int64_t allocations) {
    std::string commented;
    double lines = 0;
    for (const char character : text) {
        commented += character;
        if (character != '\n') continue;
        commented += "-- a line more\n";
        ++lines;
    }
    const TemporaryFile file(commented);
    const AllocationCount count = CountAllocations([&] { way.read(file.path()); });
    return static_cast<double>(count.calls - allocations) / lines;
}

void WholeDevice(benchmark::State& state, const Way& way) {
    const GeneratedDevice& device = DeviceOf(static_cast<int>(state.range(0)));
    const std::string text = device.Text();
    const TemporaryFile file(text);
    const Model model = ReadModel(way, file.path());
    const int elements = static_cast<int>(device.elements.size());
    if (model.result != 0 || model.ports != elements || model.cells != device.cells ||
        model.pairs != device.pairs) {
        state.SkipWithError("the generated device is not read as it was made");
        return;
    }
    Samples readings;
    Samples floors;
    for (auto _ : state) {
        floors.Add(Seconds([&] { benchmark::DoNotOptimize(ReadLines(file.path())); }));
        state.SetIterationTime(
            readings.Add(Seconds([&] { benchmark::DoNotOptimize(way.read(file.path())); })));
    }
    SetRate(state, static_cast<std::int64_t>(text.size()));
    const AllocationCount count = CountAllocations([&] { way.read(file.path()); });
    state.counters["times_floor"] = readings.Median() / floors.Median();
    state.counters["ns_per_cell"] = readings.Median() * 1e9 / device.cells;
    state.counters["peak_per_byte"] =
        static_cast<double>(count.peak_bytes) / static_cast<double>(text.size());
    state.counters["allocs_of_allowed"] =
        static_cast<double>(count.calls) / (4.0 * elements + device.cells);
    state.counters["allocs_per_line"] = AllocationsPerLine(way, text, count.calls);
}

void RegisterFiles(const std::string& name, const char* directory) {
    const auto files = std::make_shared<FileSet>(DeviceFilesIn(directory));
    if (files->paths.empty()) return;
    benchmark::RegisterBenchmark((name + "/fgets floor").c_str(), [files](benchmark::State& state) {
        FloorOfFiles(state, *files);
    })->Unit(benchmark::kMicrosecond);
    for (const Way& way : kWays) {
        benchmark::RegisterBenchmark(
            (name + '/' + way.name).c_str(),
            [files, &way](benchmark::State& state) { WholeFiles(state, way, *files); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
}

}  // namespace

int main(int argc, char** argv) {
    RegisterFiles("examples", BSCAN_EXAMPLES_DIR);
    RegisterFiles("devices", BSCAN_DEVICES_DIR);
    for (const Way& way : kWays) {
        benchmark::RegisterBenchmark(("scaled/" + std::string(way.name)).c_str(),
                                     [&way](benchmark::State& state) { WholeDevice(state, way); })
            ->Arg(1'000)
            ->Arg(10'000)
            ->Arg(100'000)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    return RunBenchmarks(argc, argv);
}
