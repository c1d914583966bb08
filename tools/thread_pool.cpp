#include "thread_pool.h"

#include "progress.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace tool {

int JobCount(int asked) {
    return asked > 0 ? asked : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

void RunInThreads(std::size_t count, int jobs, const std::function<void(std::size_t)>& work) {
    constexpr std::chrono::milliseconds kBetweenLooks{100};
    std::atomic<std::size_t> next{0};
    const auto work_on = [&] {
        for (std::size_t i = next++; i < count; i = next++) work(i);
    };
    std::vector<std::future<void>> threads;
    const std::size_t most = std::min(static_cast<std::size_t>(JobCount(jobs)), count);
    for (std::size_t i = 0; i < most; ++i) {
        threads.push_back(std::async(std::launch::async, work_on));
    }
    Progress progress(count);
    for (std::future<void>& thread : threads) {
        while (thread.wait_for(kBetweenLooks) != std::future_status::ready) {
            progress.Show(std::min<std::size_t>(next, count));
        }
    }
    progress.Clear();
    for (std::future<void>& thread : threads) thread.get();
}

}  // namespace tool
