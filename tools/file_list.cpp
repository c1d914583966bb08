#include "file_list.h"

#include <algorithm>
#include <filesystem>
#include <strings.h>
#include <utility>

namespace tool {
namespace {

namespace fs = std::filesystem;

bool IsBsdlName(const fs::path& path) {
    const std::string extension = path.extension().string();
    const char* known[] = {".bsd", ".bsdl"};
    return std::any_of(std::begin(known), std::end(known),
                       [&](const char* name) { return strcasecmp(name, extension.c_str()) == 0; });
}

std::vector<std::string> FilesBelow(const std::string& top) {
    std::vector<std::string> files;
    std::vector<std::string> folders = {top};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        std::error_code error;
        fs::directory_iterator walk(folder, error);
        for (; !error && walk != fs::directory_iterator(); walk.increment(error)) {
            std::error_code ignored;
            if (walk->is_directory(ignored) && !walk->is_symlink(ignored)) {
                folders.push_back(walk->path().string());
            } else if (walk->is_regular_file(ignored) && IsBsdlName(walk->path())) {
                files.push_back(walk->path().string());
            }
        }
        if (error) files.push_back(folder);
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

std::vector<std::string> FindFiles(const std::vector<std::string>& paths) {
    std::vector<std::string> files;
    for (const std::string& path : paths) {
        std::error_code ignored;
        if (!fs::is_directory(path, ignored)) {
            files.push_back(path);
            continue;
        }
        const std::vector<std::string> below = FilesBelow(path);
        files.insert(files.end(), below.begin(), below.end());
    }
    return files;
}

}  // namespace tool
