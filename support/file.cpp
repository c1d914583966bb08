#include "support/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bscan::detail {

FilePointer OpenForReading(const char* path, std::span<char> buffer) {
    if (path == nullptr || *path == '\0') return nullptr;
    // Without O_NONBLOCK, a pipe that nobody writes to would already block here.
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    const bool readable =
        fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
    FILE* file = readable ? fdopen(descriptor, "r") : nullptr;
    if (file == nullptr) {
        close(descriptor);
        return nullptr;
    }
    if (!buffer.empty()) std::setvbuf(file, buffer.data(), _IOFBF, buffer.size());
    return FilePointer(file);
}

std::size_t BytesLeft(FILE* file) {
    if (file == nullptr) return 0;
    struct stat status {};
    const int descriptor = fileno(file);
    if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const off_t position = ftello(file);
    return position < 0 || position > status.st_size
               ? 0
               : static_cast<std::size_t>(status.st_size - position);
}

bool IsEnterableDirectory(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode) && access(path, X_OK) == 0;
}

}  // namespace bscan::detail
