// The words of BSDL for the model's values.
#pragma once

#include "drawing/words.h"

#include <string>
#include <string_view>

namespace tool {

using bscan::drawing::Word;

/// A name as BSDL compares it: its letters in upper case.
std::string Upper(std::string_view text);

}  // namespace tool
