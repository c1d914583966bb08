// Which port elements a user means.
#pragma once

#include "device.h"

#include <string_view>
#include <vector>

namespace tool {

/// Finds the elements that a text names, by the first of these that finds any:
/// 1. the package pin of that designator, letter case included;
/// 2. the port of that name, letter case ignored, all elements of it, or the one whose index
///    follows in parentheses or brackets;
/// 3. the package pin of that number.
///
/// A prefix "pin:", "port:" or "number:" asks for one of them alone.
std::vector<const Element*> Select(const Device& device, std::string_view text);

}  // namespace tool
