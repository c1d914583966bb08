/// @file
/// The version of the library: of its headers as macros, of the library itself as a text.
#pragma once

#include <bscan/export.h>

// The build takes the version of the project from these lines.
#define BSCAN_VERSION_MAJOR 0
#define BSCAN_VERSION_MINOR 1
#define BSCAN_VERSION_PATCH 0

/// One number for comparisons: 10203 for 1.2.3.
#define BSCAN_VERSION \
    (BSCAN_VERSION_MAJOR * 10000 + BSCAN_VERSION_MINOR * 100 + BSCAN_VERSION_PATCH)

namespace bscan {

/// @return the version of the library that the host runs with, such as "1.2.3"; a static text.
BSCAN_EXPORT const char* Version();

}  // namespace bscan
