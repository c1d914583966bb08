#include "support/huge_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace bscan::detail {

void PreferHugePages(void* block, std::size_t size) noexcept {
    constexpr std::uintptr_t kHugePage = std::uintptr_t{1} << 21;
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t begin = (address + kHugePage - 1) & ~(kHugePage - 1);
    const std::uintptr_t end = (address + size) & ~(kHugePage - 1);
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

}  // namespace bscan::detail
