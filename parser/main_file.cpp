#include "parser/main_file.h"

#include <bscan/parser.h>

#include <utility>

FILE* fptrBSDL = nullptr;

namespace bscan::detail {
namespace {

// One for the file of the main pass, the other for the one beside it.
char buffers[2][kFileBufferSize];
int free_buffer = 0;

}  // namespace

FilePointer OpenFile(const char* path) { return OpenForReading(path, buffers[free_buffer]); }

void SetMainFile(FilePointer file) {
    CloseMainFile();
    fptrBSDL = file.release();
    free_buffer = 1 - free_buffer;
}

void CloseMainFile() { FilePointer(std::exchange(fptrBSDL, nullptr)).reset(); }

}  // namespace bscan::detail
