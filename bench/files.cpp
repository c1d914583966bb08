#include "files.h"

#include <bscan/description.h>
#include <bscan/parser.h>
#include <bscan/text.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

namespace bscan::bench {

TemporaryFile::TemporaryFile(std::string_view contents)
    : path_((std::filesystem::temp_directory_path() / "bscan-bench-XXXXXX").string()) {
    const int descriptor = mkstemp(path_.data());
    FILE* file = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (file == nullptr) throw std::runtime_error("no temporary file can be made");
    const bool written = fwrite(contents.data(), 1, contents.size(), file) == contents.size();
    if (fclose(file) != 0 || !written) {
        unlink(path_.c_str());
        throw std::runtime_error("the temporary file cannot be written");
    }
}

TemporaryFile::~TemporaryFile() { unlink(path_.c_str()); }

FileSet DeviceFilesIn(const char* directory) {
    FileSet files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const std::string extension = entry.path().extension().string();
        if (!entry.is_regular_file()) continue;
        if (stricmp(extension.c_str(), ".bsd") != 0 && stricmp(extension.c_str(), ".bsdl") != 0) {
            continue;
        }
        files.paths.push_back(entry.path().string());
        files.bytes += static_cast<std::int64_t>(entry.file_size());
    }
    std::sort(files.paths.begin(), files.paths.end());
    return files;
}

std::int64_t ReadLines(const std::string& path) {
    FILE* file = fopen(path.c_str(), "r");
    if (file == nullptr) throw std::runtime_error("cannot open " + path);
    std::int64_t reads = 0;
    char line[255];
    while (fgets(line, sizeof line, file) != nullptr) ++reads;
    fclose(file);
    return reads;
}

int ReadDevice(const std::string& path) {
    BScanParser parser;
    const int result = parser.Initialize(path.c_str(), nullptr);
    return result != 0 ? result : parser.Read();
}

int ReadDescription(const std::string& path) {
    const Description description = Description::Read(path.c_str());
    BScanParser parser;
    return description.Fill(parser);
}

}  // namespace bscan::bench
