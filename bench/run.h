/// @file
/// What the main function of a benchmark program ends with.
#pragma once

#include <benchmark/benchmark.h>

namespace bscan::bench {

/// Runs what has been registered, as the program's arguments say.
inline int RunBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace bscan::bench
