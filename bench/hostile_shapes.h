/// @file
/// Files that nobody needs and anybody can send: each as long as wanted, and of a shape that a
/// careless reader would meet with more than linear time or memory.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace bscan::bench {

struct HostileShape {
    const char* name;
    std::string (*make)(std::size_t bytes);  ///< a file of about that length
};

/// @return all shapes.
std::span<const HostileShape> HostileShapes();

}  // namespace bscan::bench
