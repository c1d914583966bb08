/// @file
/// How fuzz targets begin and report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

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

/// Whether a view lies within a text.
inline bool IsWithin(std::string_view part, std::string_view text) {
    return part.empty() ||
           (part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size());
}

}  // namespace bscan::fuzz
