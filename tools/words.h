// The words of BSDL for the model's values.
#pragma once

#include <bscan/bscan.h>

#include <string>
#include <string_view>

namespace tool {

std::string_view Word(eSignal signal);
std::string_view Word(PortType mode);
std::string_view Word(CellType type);
std::string_view Word(CellFunction function);

/// A name as BSDL compares it: its letters in upper case.
std::string Upper(std::string_view text);

}  // namespace tool
