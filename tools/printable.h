// Names and paths made fit to be printed.
#pragma once

#include "drawing/printable.h"

namespace tool {

using bscan::drawing::Character;
using bscan::drawing::FirstCharacter;
using bscan::drawing::JsonText;
using bscan::drawing::Printable;
using bscan::drawing::Width;

}  // namespace tool
