#include "parser/main_file.h"

#include <bscan/parser.h>

#include <utility>

FILE* fptrBSDL = nullptr;

namespace bscan::detail {

void SetMainFile(FilePointer file) {
    CloseMainFile();
    fptrBSDL = file.release();
}

// Parsers that have no file may be destroyed in any thread, so nothing is written without need.
void CloseMainFile() {
    if (fptrBSDL != nullptr) FilePointer(std::exchange(fptrBSDL, nullptr)).reset();
}

}  // namespace bscan::detail
