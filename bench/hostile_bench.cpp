// Time and memory for files of hostile shapes, twice as long at every step. Arguments: nothing, or
// a part of the names of the shapes to read.

#include <bscan/parser.h>

#include "allocation_counter.h"
#include "files.h"
#include "hostile_shapes.h"
#include "stopwatch.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace bscan::bench;

constexpr std::size_t kMegabyte = 1'000'000;

struct Measurement {
    int result = 0;
    double seconds = 0;
    double heap = 0;      // bytes at the peak, as operator new counts them
    double resident = 0;  // bytes at the peak, as the system counts them
};

Measurement Measure(const std::string& path) {
    Measurement measurement;
    measurement.seconds = Seconds([&] { measurement.result = ReadDevice(path); });
    const AllocationCount count = CountAllocations([&] { ReadDevice(path); });
    measurement.heap = static_cast<double>(count.peak_bytes);
    return measurement;
}

/// Measures in a process of its own, whose resident memory nothing else has touched.
Measurement MeasureApart(const std::string& path) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe can be made");
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process can be started");
    if (child == 0) {
        const Measurement measurement = Measure(path);
        const bool sent = write(ends[1], &measurement, sizeof measurement) > 0;
        _exit(sent ? 0 : 1);
    }
    close(ends[1]);
    Measurement measurement;
    const bool received = read(ends[0], &measurement, sizeof measurement) == sizeof measurement;
    close(ends[0]);
    rusage usage = {};
    int status = 0;
    wait4(child, &status, 0, &usage);
    if (!received || status != 0) throw std::runtime_error("a reading did not come to its end");
    measurement.resident = static_cast<double>(usage.ru_maxrss) * 1024;
    return measurement;
}

void PrintGrowth(double value, std::optional<double> before) {
    if (before) {
        printf(" x%-6.2f", value / *before);
    } else {
        printf("        ");
    }
}

void MeasureShape(const HostileShape& shape, double idle_memory) {
    std::optional<Measurement> before;
    for (const std::size_t megabytes : {1U, 2U, 4U, 8U}) {
        std::optional<TemporaryFile> file;
        double bytes = 0;
        {
            const std::string text = shape.make(megabytes * kMegabyte);
            bytes = static_cast<double>(text.size());
            file.emplace(text);
        }
        Measurement now = MeasureApart(file->path());
        now.resident -= idle_memory;
        printf("%-26s %8.2f %6d %10.2f", before ? "" : shape.name, bytes / kMegabyte, now.result,
               now.seconds * 1e3);
        PrintGrowth(now.seconds, before ? std::optional(before->seconds) : std::nullopt);
        printf(" %10.2f", now.heap / kMegabyte);
        PrintGrowth(now.heap, before ? std::optional(before->heap) : std::nullopt);
        printf(" %10.2f %10.2f %8.1f\n", now.resident / kMegabyte, now.heap / bytes,
               now.seconds * 1e9 / bytes);
        before = now;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* wanted = argc > 1 ? argv[1] : "";
    const double idle_memory = MeasureApart(TemporaryFile("\n").path()).resident;
    printf("%-26s %8s %6s %10s %7s %11s %7s %11s %10s %8s\n", "shape", "MB", "result", "ms",
           "growth", "heap MB", "growth", "resident", "heap/byte", "ns/byte");
    for (const HostileShape& shape : HostileShapes()) {
        if (std::strstr(shape.name, wanted) != nullptr) MeasureShape(shape, idle_memory);
        fflush(stdout);
    }
    return 0;
}
