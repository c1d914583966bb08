// The one file of the main pass, which the process shares.
#pragma once

#include "support/file.h"

namespace bscan::detail {

// Closes the file of the main pass, if any, and lets another take its place in fptrBSDL.
void SetMainFile(FilePointer file);

// Closes the file and clears fptrBSDL; nothing happens when none is open.
void CloseMainFile();

}  // namespace bscan::detail
