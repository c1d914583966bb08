// Texts from files and from standard input.
#pragma once

#include <optional>
#include <string>

namespace tool {

/// The name that stands for standard input.
constexpr const char* kStandardInput = "-";

/// A text, or the reason why there is none.
struct LoadedText {
    int code = 0;  ///< bscan::kOk, kCannotOpen, kReadFailed, kTextTooLong
    std::string text;
};

/// Reads a file of at most kMaxDescriptionLength bytes; `-` is standard input.
LoadedText LoadText(const std::string& path);

/// The same where the reason does not matter: nothing when it cannot be read.
std::optional<std::string> ReadText(const std::string& path);

/// What messages call a path: "standard input" for `-`, and otherwise itself, fit to be printed.
std::string NameOf(const std::string& path);

/// Why a text was not loaded.
std::string DescribeLoad(int code);

/// Writes a text to a file, or prints it where @p path is empty or `-`.
/// @param command  in front of the report of what goes wrong.
/// @return whether all was written.
bool SaveText(const char* command, const std::string& path, const std::string& text);

}  // namespace tool
