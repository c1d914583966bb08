// How the program writes.
#pragma once

#include <cstdio>
#include <string_view>

namespace tool {

enum class Format { kTable, kCsv, kJson };

/// Writes text as it is.
void Write(std::FILE* stream, std::string_view text);

}  // namespace tool
