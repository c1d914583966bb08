/// @file
/// Counts what a piece of work allocates. A program that links this has its operators new and
/// delete replaced, for the library too; outside a count they only pass on.
#pragma once

#include <cstdint>

namespace bscan::bench {

struct AllocationCount {
    std::int64_t calls = 0;       ///< of operator new
    std::int64_t peak_bytes = 0;  ///< the most that was held at one time, rounding included
};

/// Begins to count; one count at a time, from one thread.
void StartCountingAllocations();
/// @return what was allocated since the start.
AllocationCount StopCountingAllocations();

template <typename Work>
AllocationCount CountAllocations(Work&& work) {
    StartCountingAllocations();
    work();
    return StopCountingAllocations();
}

}  // namespace bscan::bench
