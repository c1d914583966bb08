// Opening files for reading.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>

namespace bscan::detail {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<FILE, FileCloser>;

// The buffer that a stream has by itself costs a call of the system for each 4 KiB. Most files fit
// into this one.
inline constexpr std::size_t kFileBufferSize = std::size_t{1} << 16;

// Opens a regular file, or a directory (which then fails to be read). Pipes, sockets and devices
// are not opened: they could block or never end. Null for a null or empty path, too. A buffer is
// used until the file is closed.
FilePointer OpenForReading(const char* path, std::span<char> buffer = {});

// How many bytes a file has behind the position of its stream; 0 for a stream that is no file, and
// for null.
std::size_t BytesLeft(FILE* file);

// Whether a directory exists and may be entered.
bool IsEnterableDirectory(const char* path);

}  // namespace bscan::detail
