/// @file
/// A host that does with a device and a parser whatever an input says.
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

/// Whether a text asks for no more ports in one range, and no more cells, than it has characters (a
/// few hundred are fine). Counts up to the ceilings are lawful, and so slow to obey that random
/// tests would do little else.
bool IsCheap(std::string_view text);

}  // namespace bscan::test
