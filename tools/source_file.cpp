#include "source_file.h"

#include <fstream>
#include <sstream>

namespace tool {
namespace {

constexpr std::size_t kReadSize = 254;

}  // namespace

SourceFile::SourceFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    for (std::string line; std::getline(stream, line);) lines_.push_back(line);
}

int SourceFile::LineOfRead(std::int64_t read) const {
    int number = 0;
    for (const std::string& line : lines_) {
        if (read <= 0) break;
        const std::size_t with_end = line.size() + 1;
        read -= static_cast<std::int64_t>((with_end + kReadSize - 1) / kReadSize);
        ++number;
    }
    return number;
}

std::string SourceFile::Line(int number) const {
    if (number < 1 || number > LineCount()) return {};
    return lines_[static_cast<std::size_t>(number) - 1];
}

std::vector<std::string> Words(const std::string& line, int count) {
    std::istringstream stream(line.substr(0, line.find("--")));
    std::vector<std::string> words;
    for (std::string word; count > 0 && stream >> word; --count) words.push_back(word);
    return words;
}

}  // namespace tool
