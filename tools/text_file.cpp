#include "text_file.h"

#include "printable.h"

#include <algorithm>
#include <fstream>
#include <iostream>

namespace tool {
namespace {

std::optional<std::string> ReadAll(std::istream& stream) {
    std::string text;
    char block[1 << 16];
    while (stream && text.size() < kMostRead) {
        const std::size_t room = std::min(sizeof(block), kMostRead - text.size());
        stream.read(block, static_cast<std::streamsize>(room));
        text.append(block, static_cast<std::size_t>(stream.gcount()));
    }
    return stream.bad() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace

std::optional<std::string> ReadText(const std::string& path) {
    if (path == "-") return ReadAll(std::cin);
    std::ifstream stream(path, std::ios::binary);
    return stream ? ReadAll(stream) : std::nullopt;
}

std::string NameOf(const std::string& path) {
    return path == "-" ? "standard input" : Printable(path);
}

}  // namespace tool
