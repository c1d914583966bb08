#include "support/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bscan::detail {

FilePointer OpenForReading(const char* path) {
    if (path == nullptr || *path == '\0') return nullptr;
    // Without O_NONBLOCK, a pipe that nobody writes to would already block here.
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    const bool readable =
        fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
    FILE* const file = readable ? fdopen(descriptor, "r") : nullptr;
    if (file == nullptr) close(descriptor);
    return FilePointer(file);
}

bool IsEnterableDirectory(const char* path) {
    struct stat status {};
    // The effective user is the one that will open files there.
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode) &&
           faccessat(AT_FDCWD, path, X_OK, AT_EACCESS) == 0;
}

}  // namespace bscan::detail
