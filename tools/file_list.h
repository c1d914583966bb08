// The BSDL files that a user means by naming files and folders.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// Files as they are given, and for a folder the files in and below it that end in .bsd or
/// .bsdl, in any case of letters, sorted by path. Links to folders are not followed. A folder that
/// cannot be read stands in the list itself: reading it as a file tells so.
std::vector<std::string> FindFiles(const std::vector<std::string>& paths);

}  // namespace tool
