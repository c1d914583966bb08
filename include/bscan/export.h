/// @file
/// Marks what the shared library exports; everything else in it has hidden visibility.
#pragma once

#if defined(BSCAN_STATIC)
#define BSCAN_EXPORT
#define BSCAN_LOCAL
#else
#define BSCAN_EXPORT __attribute__((visibility("default")))
/// Keeps a private member of an exported class inside the library.
#define BSCAN_LOCAL __attribute__((visibility("hidden")))
#endif
