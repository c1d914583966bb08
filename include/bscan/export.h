/// @file
/// Marks what the shared library exports; everything else in it has hidden visibility.
#pragma once

#if defined(BSCAN_STATIC)
#define BSCAN_EXPORT
#else
#define BSCAN_EXPORT __attribute__((visibility("default")))
#endif
