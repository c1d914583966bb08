#include "allocation_counter.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

bool counting = false;
std::int64_t live_bytes = 0;  // negative where more from before the start was released
bscan::bench::AllocationCount count;

void* Allocated(void* block) {
    if (counting && block != nullptr) {
        ++count.calls;
        live_bytes += static_cast<std::int64_t>(malloc_usable_size(block));
        count.peak_bytes = std::max(count.peak_bytes, live_bytes);
    }
    return block;
}

void* AllocatedOrThrow(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return Allocated(block);
}

void* AlignedBlock(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    return std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
}

void Release(void* block) {
    if (counting && block != nullptr) {
        live_bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
    }
    std::free(block);
}

}  // namespace

namespace bscan::bench {

void StartCountingAllocations() {
    count = {};
    live_bytes = 0;
    counting = true;
}

AllocationCount StopCountingAllocations() {
    counting = false;
    return count;
}

}  // namespace bscan::bench

// The array forms of the standard library call these.
void* operator new(std::size_t size) { return AllocatedOrThrow(std::malloc(size == 0 ? 1 : size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocated(std::malloc(size == 0 ? 1 : size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return AllocatedOrThrow(AlignedBlock(size, alignment));
}
void operator delete(void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, std::align_val_t) noexcept { Release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Release(block); }
