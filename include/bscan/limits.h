/// @file
/// Ceilings that keep the memory for one device bounded, whatever its file says.
#pragma once

#include <cstddef>

namespace bscan {

/// Longest statement or string value, in characters; beyond it a reader gives
/// ResultCode::kTextTooLong.
inline constexpr std::size_t kMaxStatementLength = std::size_t{16} << 20;

/// Most port elements of one device; BScanPinMap::AddNewPorts creates nothing that would pass it.
inline constexpr int kMaxPortElements = 1 << 20;

/// Most characters that the names of all port elements of a device may take together, each element
/// having a copy of its own; BScanPinMap::AddNewPorts creates nothing that would pass it.
inline constexpr std::size_t kMaxPortNameText = std::size_t{128} << 20;

/// Most cells of one boundary register; a greater BOUNDARY_LENGTH gives ResultCode::kBadValue.
inline constexpr int kMaxBoundaryLength = 1 << 20;

}  // namespace bscan
