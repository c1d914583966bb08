// Opening files for reading.
#pragma once

#include <cstdio>
#include <memory>

namespace bscan::detail {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<FILE, FileCloser>;

// Opens a regular file, or a directory (which then fails to be read). Pipes, sockets and devices
// are not opened: they could block or never end. Null for a null or empty path, too.
FilePointer OpenForReading(const char* path);

// Whether a directory exists and this process may enter it.
bool IsEnterableDirectory(const char* path);

}  // namespace bscan::detail
