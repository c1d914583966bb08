/// @file
/// The files that the benchmarks read, and the floor that readings are measured against.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::bench {

/// A file with given contents; it is removed together with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view contents);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

struct FileSet {
    std::vector<std::string> paths;
    std::int64_t bytes = 0;
};

/// @return the BSDL files of a directory in the order of their names; none when it is absent.
FileSet DeviceFilesIn(const char* directory);

/// Reads the lines of a file with fgets, 254 characters at the most at a time, and does nothing
/// with them.
///
/// @return the number of reads.
std::int64_t ReadLines(const std::string& path);

/// Reads a device from its file into a model, and destroys the model.
///
/// @return the result of the reading.
int ReadDevice(const std::string& path);

/// Reads a device by the standard, checks it and fills a model, and destroys both.
///
/// @return the result of the reading or the filling.
int ReadDescription(const std::string& path);

}  // namespace bscan::bench
