#include "progress.h"

#include "output.h"
#include "terminal.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace tool {

Progress::Progress(std::size_t total)
    : total_(total), enabled_(IsTerminal(stderr)), start_(Clock::now()) {}

Progress::~Progress() { Clear(); }

void Progress::Show(std::size_t done) {
    if (!enabled_ || Clock::now() - start_ < std::chrono::milliseconds(500)) return;
    const std::string count = fmt::format(" {}/{}", done, total_);
    const auto columns = static_cast<std::size_t>(std::max(TerminalWidth(stderr), 20));
    const std::size_t width = std::min<std::size_t>(50, columns - count.size() - 3);
    const std::size_t filled = total_ == 0 ? width : width * done / total_;
    const std::string bar = fmt::format("[{:<{}}]{}", std::string(filled, '#'), width, count);
    Clear();
    Write(stderr, bar);
    std::fflush(stderr);
    drawn_ = bar.size();
}

void Progress::Clear() {
    if (drawn_ == 0) return;
    Write(stderr, '\r' + std::string(drawn_, ' ') + '\r');
    drawn_ = 0;
}

}  // namespace tool
