// The one file of the main pass, which the process shares.
#pragma once

namespace bscan::detail {

// Closes the file that is open, if any, and opens another into fptrBSDL; false when that fails.
bool OpenMainFile(const char* path);

// Closes the file and clears fptrBSDL; nothing happens when none is open.
void CloseMainFile();

}  // namespace bscan::detail
