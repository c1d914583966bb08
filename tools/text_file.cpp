#include "text_file.h"

#include <bscan/limits.h>
#include <bscan/result.h>

#include "output.h"
#include "printable.h"

#include <fmt/format.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <utility>

namespace tool {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

LoadedText LoadStream(std::FILE* stream) {
    LoadedText loaded;
    std::array<char, 65536> block{};
    while (const std::size_t got = std::fread(block.data(), 1, block.size(), stream)) {
        if (loaded.text.size() + got > bscan::kMaxDescriptionLength) {
            return {bscan::kTextTooLong, {}};
        }
        loaded.text.append(block.data(), got);
    }
    if (std::ferror(stream) != 0) return {bscan::kReadFailed, {}};
    return loaded;
}

}  // namespace

LoadedText LoadText(const std::string& path) {
    if (path == kStandardInput) return LoadStream(stdin);
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    return file == nullptr ? LoadedText{bscan::kCannotOpen, {}} : LoadStream(file.get());
}

std::optional<std::string> ReadText(const std::string& path) {
    LoadedText loaded = LoadText(path);
    return loaded.code == bscan::kOk ? std::optional(std::move(loaded.text)) : std::nullopt;
}

std::string NameOf(const std::string& path) {
    return path == kStandardInput ? "standard input" : Printable(path);
}

std::string DescribeLoad(int code) {
    if (code != bscan::kTextTooLong) return bscan::Describe(code);
    return fmt::format("the file has more than {} MiB", bscan::kMaxDescriptionLength >> 20);
}

bool SaveText(const char* command, const std::string& path, const std::string& text) {
    if (path.empty() || path == kStandardInput) {
        Write(stdout, text);
        return true;  // the program tells when its output cannot be written
    }
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    stream.close();
    if (stream) return true;
    Write(stderr, fmt::format("bscan {}: cannot write {}\n", command, Printable(path)));
    return false;
}

}  // namespace tool
