// The words of BSDL for the model's values.
#pragma once

#include <bscan/bscan.h>
#include <bscan/facts.h>

#include <string_view>

namespace bscan::drawing {

std::string_view Word(eSignal signal);
std::string_view Word(PortType mode);
std::string_view Word(CellType type);
std::string_view Word(CellFunction function);
/// The mode as the language writes it, in lower case; "unknown" for none.
std::string_view Word(PortMode mode);

}  // namespace bscan::drawing
