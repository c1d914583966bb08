// Large blocks of memory without a fault for each of their small pages.
#pragma once

#include <cstddef>

namespace bscan::detail {

// Asks the system to give the untouched part of a block out in huge pages. A block that holds none
// of them, or a system without them, is left as it is.
void PreferHugePages(void* block, std::size_t size) noexcept;

}  // namespace bscan::detail
