#include "vcd.h"

#include "output.h"

#include <fmt/format.h>

#include <algorithm>

namespace tool {
namespace {

// Signals are named by the printable characters, as digits of a number.
std::string Identifier(std::size_t number) {
    constexpr std::size_t kFirst = '!';
    constexpr std::size_t kCount = '~' - '!' + 1;
    std::string text;
    do {
        text += static_cast<char>(kFirst + number % kCount);
        number /= kCount;
    } while (number > 0);
    return text;
}

// A name ends at white space in this format.
std::string Unspaced(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c <= ' ' && c >= 0; }, '_');
    return name;
}

char Letter(eSignal level) { return level == SIG_0 ? '0' : level == SIG_1 ? '1' : 'x'; }

}  // namespace

VcdFile::VcdFile(const std::string& path, const std::vector<std::string>& names)
    : file_(std::fopen(path.c_str(), "w")) {
    if (file_ == nullptr) return;
    std::string text = "$version bscan $end\n$timescale 1 us $end\n$scope module chain $end\n";
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += fmt::format("$var wire 1 {} {} $end\n", Identifier(i), Unspaced(names[i]));
    }
    tool::Write(file_.get(), text + "$upscope $end\n$enddefinitions $end\n");
}

void VcdFile::Write(std::chrono::microseconds time, const std::vector<eSignal>& levels) {
    std::string text;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (last_.size() == levels.size() && last_[i] == levels[i]) continue;
        text += fmt::format("{}{}\n", Letter(levels[i]), Identifier(i));
    }
    last_ = levels;
    if (text.empty()) return;
    tool::Write(file_.get(), fmt::format("#{}\n{}", time.count(), text));
    std::fflush(file_.get());
}

}  // namespace tool
