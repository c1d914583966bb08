#include "parser/main_file.h"

#include <bscan/parser.h>

#include "support/file.h"

#include <utility>

FILE* fptrBSDL = nullptr;

namespace bscan::detail {

bool OpenMainFile(const char* path) {
    static char buffer[kFileBufferSize];
    CloseMainFile();
    fptrBSDL = OpenForReading(path, buffer).release();
    return fptrBSDL != nullptr;
}

void CloseMainFile() { FilePointer(std::exchange(fptrBSDL, nullptr)).reset(); }

}  // namespace bscan::detail
