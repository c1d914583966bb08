/// @file
/// Processor time taken by hand, where only a part of an iteration counts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

namespace bscan::bench {

/// @return the processor time that a piece of work takes, in seconds: on a busy machine the time
///         that passes says more about other programs.
template <typename Work>
double Seconds(Work&& work) {
    const auto now = [] {
        std::timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

/// Times of the same work, of which the median counts: other programs disturb some of them.
class Samples {
public:
    double Add(double seconds) {
        seconds_.push_back(seconds);
        return seconds;
    }
    double Median() {
        const auto middle = seconds_.begin() + static_cast<std::ptrdiff_t>(seconds_.size() / 2);
        std::nth_element(seconds_.begin(), middle, seconds_.end());
        return *middle;
    }

private:
    std::vector<double> seconds_;
};

}  // namespace bscan::bench
