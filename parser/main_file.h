// The one file of the main pass, which the process shares.
#pragma once

#include "support/file.h"

namespace bscan::detail {

// Opens a file beside that of the main pass, to take its place.
FilePointer OpenFile(const char* path);

// Closes the file of the main pass, if any, and lets the one just opened take its place in
// fptrBSDL.
void SetMainFile(FilePointer file);

// Closes the file and clears fptrBSDL; nothing happens when none is open.
void CloseMainFile();

}  // namespace bscan::detail
