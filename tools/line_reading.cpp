#include "line_reading.h"

#include <bscan/bscan.h>
#include <bscan/result.h>

#include "model_difference.h"
#include "printable.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace tool {
namespace {

// A text as a file, for a reader that opens its file itself.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text) : descriptor_(memfd_create("text", MFD_CLOEXEC)) {
        for (std::size_t at = 0; at < text.size();) {
            const ssize_t count = write(descriptor_, text.data() + at, text.size() - at);
            if (count <= 0) break;
            at += static_cast<std::size_t>(count);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor_); }

    std::string Path() const { return fmt::format("/proc/self/fd/{}", descriptor_); }

private:
    int descriptor_;
};

Json DifferencesJson(const Differences& differences) {
    Json list = Json::array();
    for (const auto& [what, count] : differences) {
        list.push_back({{"cause", what.first + ' ' + what.second}, {"count", count}});
    }
    return list;
}

// "1 cell missing", "2 cells missing"
std::string CountText(const Json& difference) {
    const int count = difference["count"];
    std::string cause = difference["cause"];
    const std::size_t plural = cause.find("s ");
    if (count == 1) cause.erase(plural, 1);
    return fmt::format("{} {}", count, cause);
}

// The line that the library's n-th read ended in; 0 for none. A read takes a line or 254 characters
// of it, so that a long line takes several.
int LineOfRead(std::string_view text, std::int64_t read) {
    constexpr std::size_t kReadSize = 254;
    int line = 0;
    while (read > 0 && !text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        read -= static_cast<std::int64_t>((size + kReadSize - 1) / kReadSize);
        text.remove_prefix(size);
        ++line;
    }
    return line;
}

}  // namespace

Json ReadByLines(const std::string& text, const bscan::Description& description) {
    const MemoryFile copy(text);
    BScanParser model;
    int code = model.Initialize(copy.Path().c_str(), nullptr);
    if (code == bscan::kOk) code = model.Read();
    model.CloseFile();
    Json lines = {{"code", code}, {"line", Json()}, {"differs", Json::array()}};
    if (code != bscan::kOk) {
        const int line = LineOfRead(text, model.GetLineNumber());
        if (line > 0) lines["line"] = line;
    }
    BScanParser right;
    if (description.Fill(right) == bscan::kOk) {
        lines["differs"] = DifferencesJson(CompareModels(model, right));
    }
    return lines;
}

std::string LineReadingText(const std::string& file, const Json& lines) {
    const int code = lines["code"];
    const std::string where =
        lines["line"].is_null() ? "" : fmt::format(":{}", lines["line"].get<int>());
    std::string text = fmt::format("{}{}: read by lines: ", Printable(file), where);
    text += code == bscan::kOk ? "ok" : fmt::format("{} ({})", bscan::Describe(code), code);
    std::vector<std::string> counts;
    for (const Json& difference : lines["differs"]) counts.push_back(CountText(difference));
    if (!counts.empty()) {
        text += fmt::format("\n  its model has otherwise: {}", fmt::join(counts, ", "));
    }
    return text + '\n';
}

}  // namespace tool
