/// @file
/// The two orderings behind the numbers of lettered package pins.
///
/// This header stands apart from bscan/bscan.h: the less-than on strings that it declares in the
/// global namespace replaces the standard one in a host's own global code, so a host includes it
/// on purpose.
#pragma once

#include <bscan/export.h>
#include <bscan/pin_name.h>

#include <string>

/// Orders strings by length, and those of one length byte by byte.
///
/// @return true when @p left is shorter, or of the same length and less as `strcmp` compares.
BSCAN_EXPORT bool operator<(const std::string& left, const std::string& right);

/// Orders designators as the package numbers them: larger numbers first, then shorter letters,
/// then letters byte by byte.
///
/// @return true when @p left comes before @p right.
BSCAN_EXPORT bool pin_smaller(const PIN_NAME& left, const PIN_NAME& right);
