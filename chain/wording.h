// Sentences about chains are put together with these.
#pragma once

#include <string>
#include <string_view>

namespace bscan::detail {

// Appends to a list such as "A, B".
inline void AppendItem(std::string& list, std::string_view item) {
    if (!list.empty()) list += ", ";
    list += item;
}

}  // namespace bscan::detail
