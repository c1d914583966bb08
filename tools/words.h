// The words of BSDL for the model's values.
#pragma once

#include "drawing/words.h"

namespace tool {

using bscan::drawing::ParseLevel;
using bscan::drawing::Word;

}  // namespace tool
