// Texts that a user names: files and standard input.
#pragma once

#include <bscan/limits.h>

#include <optional>
#include <string>

namespace tool {

/// The most that is read of one text, a byte beyond what a description may have.
inline constexpr std::size_t kMostRead = bscan::kMaxDescriptionLength + 1;

/// Reads a file, or standard input for "-".
/// @return its text, cut at kMostRead bytes; nothing when it cannot be read.
std::optional<std::string> ReadText(const std::string& path);

/// What messages call a path: "standard input" for "-", and otherwise itself, fit to be printed.
std::string NameOf(const std::string& path);

}  // namespace tool
