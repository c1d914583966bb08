#include "captures.h"

#include <fmt/format.h>

namespace tool {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view WithoutComment(std::string_view line) {
    line = line.substr(0, line.find('#'));
    const std::size_t first = line.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    line = line.substr(first, line.find_last_not_of(kBlanks) + 1 - first);
    if (line.substr(0, 2) == "0x" || line.substr(0, 2) == "0X") line.remove_prefix(2);
    return line;
}

}  // namespace

std::string WriteCaptures(const bscan::BoardTest& test,
                          const std::vector<bscan::ScanBits>& captures) {
    std::string text = fmt::format(
        "# {} scans of {} bits. The bit that came out first is the lowest of the last digit.\n",
        captures.size(), test.scan_length);
    for (std::size_t i = 0; i < captures.size(); ++i) {
        const auto count = static_cast<std::size_t>(test.record.vector_count);
        text += fmt::format("# group {}, vector {}\n{}\n", i / count + 1, i % count + 1,
                            captures[i].Hex());
    }
    return text;
}

std::string ReadCaptures(std::string_view text, const bscan::BoardTest& test,
                         std::vector<bscan::ScanBits>& captures) {
    const auto wanted = static_cast<std::size_t>(test.CaptureCount());
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = WithoutComment(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        ++number;
        if (line.empty()) continue;
        if (captures.size() == wanted) {
            return fmt::format("line {}: the test takes {} captures, and here is one more", number,
                               wanted);
        }
        const auto bits = bscan::ScanBits::FromHex(line, test.scan_length);
        if (!bits) {
            return fmt::format("line {}: this is no scan of {} bits in hexadecimal", number,
                               test.scan_length);
        }
        captures.push_back(*bits);
    }
    if (captures.size() == wanted) return {};
    return fmt::format("it has {} captures, and the test takes {}", captures.size(), wanted);
}

}  // namespace tool
