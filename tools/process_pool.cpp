#include "process_pool.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tool {
namespace {

struct Worker {
    std::size_t index = 0;
    pid_t process = -1;
    int pipe = -1;
    std::string output;
};

bool WriteAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) written += static_cast<std::size_t>(count);
    }
    return true;
}

// Lets this process end when its parent does, whatever ended it.
void EndWith(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);  // it has ended already
}

[[noreturn]] void WorkInChild(int descriptor, std::size_t index,
                              const std::function<std::string(std::size_t)>& work) {
    bool sound = false;
    try {
        sound = WriteAll(descriptor, work(index));
    } catch (...) {
        // The exit status tells; a child must not run its parent's code.
    }
    _exit(sound ? 0 : 1);
}

// @return a worker without a pipe when no process can be started.
Worker Start(std::size_t index, const std::function<std::string(std::size_t)>& work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return {};
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        EndWith(parent);
        WorkInChild(ends[1], index, work);
    }
    close(ends[1]);
    if (process > 0) return {index, process, ends[0], {}};
    close(ends[0]);
    return {};
}

// Takes what a worker has written. @return false at its end.
bool Drain(Worker& worker) {
    std::array<char, 4096> buffer{};
    const ssize_t count = read(worker.pipe, buffer.data(), buffer.size());
    if (count > 0) worker.output.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
}

std::optional<std::string> Finish(Worker& worker) {
    close(worker.pipe);
    int status = 0;
    while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return std::move(worker.output);
}

void AwaitOutput(const std::vector<Worker>& workers, std::vector<pollfd>& events) {
    events.clear();
    for (const Worker& worker : workers) events.push_back({worker.pipe, POLLIN, 0});
    poll(events.data(), events.size(), -1);
}

}  // namespace

void RunInProcesses(std::size_t count, int jobs,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, std::optional<std::string>)>& done) {
    std::vector<Worker> workers;
    std::vector<pollfd> events;
    std::size_t next = 0;
    while (next < count || !workers.empty()) {
        while (next < count && workers.size() < static_cast<std::size_t>(std::max(jobs, 1))) {
            Worker worker = Start(next, work);
            if (worker.pipe < 0 && !workers.empty()) break;  // try again when one has ended
            if (worker.pipe < 0) {
                done(next, std::nullopt);
            } else {
                workers.push_back(std::move(worker));
            }
            ++next;
        }
        AwaitOutput(workers, events);
        for (std::size_t i = workers.size(); i-- > 0;) {
            if (events[i].revents == 0 || Drain(workers[i])) continue;
            const std::size_t index = workers[i].index;
            done(index, Finish(workers[i]));
            workers.erase(workers.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

}  // namespace tool
