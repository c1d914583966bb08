// A progress bar on standard error, for work that takes a while.
#pragma once

#include <chrono>
#include <cstddef>

namespace tool {

/// Draws nothing unless standard error is a terminal and the work has gone on for half a second.
class Progress {
public:
    explicit Progress(std::size_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Show(std::size_t done);
    /// Takes the bar away, so that other text can be written.
    void Clear();

private:
    using Clock = std::chrono::steady_clock;

    std::size_t total_;
    bool enabled_;
    Clock::time_point start_;
    std::size_t drawn_ = 0;  // columns
};

}  // namespace tool
