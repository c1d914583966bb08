/// @file
/// Ceilings that keep the memory for one device bounded, whatever its file says.
#pragma once

#include <cstddef>
#include <cstdint>

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

/// Longest text that Description reads, in bytes.
inline constexpr std::size_t kMaxDescriptionLength = std::size_t{64} << 20;

/// Most findings that Description keeps of one text.
inline constexpr std::size_t kMaxFindings = 200;

/// Most pins that a text of steps may name, those of whole vectors counted one by one.
inline constexpr std::size_t kMaxProgramPins = std::size_t{4} << 20;

/// Most bits that the scans of one program may have together.
inline constexpr std::size_t kMaxProgramBits = std::size_t{4} << 30;

/// Most work for statements that a file repeats although IEEE 1149.1 allows each once, in one
/// reading: the cells and port elements of every BOUNDARY_LENGTH but the first, and the characters
/// in the names of the differential pairs (with the port elements, when the pairs are dropped) of
/// every BOUNDARY_REGISTER but the first. Beyond it a reader gives ResultCode::kRepeatedTooOften.
/// A single reader that a host calls is a reading of its own.
inline constexpr std::int64_t kMaxRepeatedWork = std::int64_t{1} << 24;

}  // namespace bscan
