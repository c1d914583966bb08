// How two models of one device differ.
#pragma once

#include <bscan/parser.h>

#include <map>
#include <string>

namespace tool {

/// What differs, and how often: {"cells", "tied to another element"}: 12.
using Differences = std::map<std::pair<std::string, std::string>, int>;

/// Tells what a model has otherwise than another one that is right.
Differences CompareModels(const BScanParser& model, const BScanParser& right);

}  // namespace tool
