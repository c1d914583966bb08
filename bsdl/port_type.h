// What stands behind the colon of a port: mode, type and range.
#pragma once

#include "bsdl/source_reader.h"

namespace bscan::detail {

bool IsMode(const Token& token);
bool IsType(const Token& token);

// Reads "in bit" or "inout bit_vector (7 downto 0)" into a port, whose name is known.
void ReadPortType(SourceReader& source, Port& port);

}  // namespace bscan::detail
