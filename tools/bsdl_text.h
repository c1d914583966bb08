// A description written as clean BSDL.
#pragma once

#include <bscan/facts.h>

#include <string>
#include <string_view>

namespace tool {

/// The text of a description in the order and the spelling of the standard. Comments are kept where
/// they stand before the entity, and where they say which cell is a pair's negative leg.
/// @param package  the pin map that the generic names; empty for the file's own choice.
std::string BsdlText(const bscan::Facts& facts, std::string_view package);

/// What stands before the entity: comments and packages. It ends with a blank line.
std::string PreambleText(const bscan::Facts& facts);

/// The packages behind the entity.
std::string PackagesBehind(const bscan::Facts& facts);

}  // namespace tool
