#include "interrupt.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace tool {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void Note(int) { g_interrupted = 1; }

}  // namespace

void CatchInterrupts() {
    struct sigaction action = {};
    action.sa_handler = Note;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

bool Interrupted() { return g_interrupted != 0; }

bool SleepUnlessInterrupted(std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kTurn(50);
    const Clock::time_point end = Clock::now() + time;
    while (!Interrupted()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) return true;
        std::this_thread::sleep_for(std::min(left, kTurn));
    }
    return false;
}

}  // namespace tool
