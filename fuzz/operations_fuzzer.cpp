/// @file
/// Calls the public operations as an input says.

#include "fuzz/input.h"
#include "support/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bscan::fuzz::Require(bscan::test::FindFaultInWork({reinterpret_cast<const char*>(data), size}));
    return 0;
}
