// The ranges of vector ports.
#pragma once

#include "bsdl/source_reader.h"

#include <string_view>

namespace bscan::detail {

// Reads "0 to 7)" or "7 downto 4)" into a port; digits in front may have been read with the type. A
// range that lacks an end is noted in source.lost_ranges, for the port that comes next.
void ReadPortRange(SourceReader& source, Port& port, std::string_view digits);

// Works out the ranges that lack an end from the number of pins in the first pin map.
void RestoreRanges(SourceReader& source);

}  // namespace bscan::detail
