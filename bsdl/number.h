// Numbers of BSDL.
#pragma once

#include <optional>
#include <string_view>

namespace bscan::detail {

// An integer such as 12, 1_024 or 16#FF#; nothing when the text is none or beyond 31 bits.
std::optional<int> ParseInteger(std::string_view text);

// A number such as 20.0e6, 1.0E+07 or an integer; nothing when the text is none.
std::optional<double> ParseReal(std::string_view text);

}  // namespace bscan::detail
