/// @file
/// A host that does with a device whatever an input says.
#pragma once

#include <string>
#include <string_view>

namespace bscan::test {

/// Calls the public operations with any arguments, and holds what the lookups and the scan vector
/// answer against plain walks over what a host can see. Says what was answered wrongly.
///
/// Only what the headers ask of a host is granted: buffers have their room, and no pointer to
/// something destroyed is handed in.
std::string FindFaultInWork(std::string_view input);

}  // namespace bscan::test
