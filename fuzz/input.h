/// @file
/// How fuzz targets begin and report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace bscan::fuzz {

/// Ends the run when something that must hold does not.
inline void Require(const std::string& fault) {
    if (fault.empty()) return;
    std::fprintf(stderr, "fault: %s\n", fault.c_str());
    std::abort();
}

inline void Require(bool holds, const char* claim) {
    if (!holds) Require(std::string("not so: ") + claim);
}

}  // namespace bscan::fuzz
