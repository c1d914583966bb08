// The words of BSDL for the model's values.
#pragma once

#include <bscan/bscan.h>
#include <bscan/facts.h>

#include <optional>
#include <string_view>

namespace bscan::drawing {

std::string_view Word(eSignal signal);
std::string_view Word(PortType mode);
std::string_view Word(CellType type);
std::string_view Word(CellFunction function);
/// The mode as the language writes it, in lower case; "unknown" for none.
std::string_view Word(PortMode mode);

/// The level that a user names: 0, 1, or Z in either case.
std::optional<eSignal> ParseLevel(std::string_view text);

}  // namespace bscan::drawing
