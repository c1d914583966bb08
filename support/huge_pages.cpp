#include "support/huge_pages.h"

#include <memory>
#include <sys/mman.h>

namespace bscan::detail {

void PreferHugePages(void* block, std::size_t size) noexcept {
    constexpr std::size_t kHugePage = std::size_t{1} << 21;
    // From the first whole page on, if the block holds one.
    if (std::align(kHugePage, kHugePage, block, size) == nullptr) return;
    madvise(block, size / kHugePage * kHugePage, MADV_HUGEPAGE);
}

}  // namespace bscan::detail
