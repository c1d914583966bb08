#include "openocd_process.h"

#include "interrupt.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kStartLimit(15000);
constexpr milliseconds kEndLimit(2000);

std::optional<std::string> MakeTemporaryFile(const std::string& text) {
    const char* const folder = std::getenv("TMPDIR");
    std::string path = fmt::format("{}/bscan-XXXXXX", folder == nullptr ? "/tmp" : folder);
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) return std::nullopt;
    const ssize_t written = write(descriptor, text.data(), text.size());
    close(descriptor);
    if (written == static_cast<ssize_t>(text.size())) return path;
    unlink(path.c_str());
    return std::nullopt;
}

std::string Content(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

[[noreturn]] void RunOpenOcd(const std::string& log_file, const std::string& adapter_file,
                             const std::string& chain_file) {
    // A Ctrl-C is for the parent, which first frees the pins through this process.
    setpgid(0, 0);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    const int log = open(log_file.c_str(), O_WRONLY | O_APPEND);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    const char* const ports = "gdb_port disabled; telnet_port disabled; tcl_port 0";
    std::vector<const char*> arguments = {
        "openocd", "-f",   adapter_file.c_str(), "-f", chain_file.c_str(), "-c", ports, "-c",
        "init",    nullptr};
    execvp(arguments[0], const_cast<char* const*>(arguments.data()));
    _exit(127);
}

// The last line that tells of an error, or the last one at all.
std::string Complaint(const std::string& text) {
    std::string last;
    std::string error;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        if (!line.empty()) last = line;
        if (line.find("Error") != std::string::npos && error.empty()) error = line;
        begin = end + 1;
    }
    return error.empty() ? last : error;
}

}  // namespace

OpenOcdProcess::~OpenOcdProcess() {
    End();
    for (const std::string& path : {chain_file_, log_file_}) {
        if (!path.empty()) unlink(path.c_str());
    }
}

std::string OpenOcdProcess::Start(const std::string& adapter_file, const std::string& chain_text) {
    chain_file_ = MakeTemporaryFile(chain_text).value_or("");
    log_file_ = MakeTemporaryFile("").value_or("");
    if (!chain_file_.empty() && !log_file_.empty()) process_ = fork();
    if (process_ == 0) RunOpenOcd(log_file_, adapter_file, chain_file_);
    if (process_ < 0) return fmt::format("cannot start OpenOCD: {}", std::strerror(errno));
    return AwaitPort();
}

// OpenOCD picks a free port and tells it once everything is set up.
std::string OpenOcdProcess::AwaitPort() {
    const Clock::time_point end = Clock::now() + kStartLimit;
    while (Clock::now() < end && !Interrupted()) {
        const bool ended = waitpid(process_, nullptr, WNOHANG) != 0;
        const std::string said = Content(log_file_);
        const std::size_t found = said.find(" for tcl connections");
        if (ended) {
            process_ = -1;
            return said.empty() ? "OpenOCD cannot be started; is it installed?"
                                : fmt::format("OpenOCD ended: {}", Complaint(said));
        }
        if (found != std::string::npos) {
            port_ = std::atoi(said.c_str() + said.rfind(' ', found - 1) + 1);
            return {};
        }
        std::this_thread::sleep_for(milliseconds(20));
    }
    return fmt::format("OpenOCD does not start: {}", Complaint(Content(log_file_)));
}

void OpenOcdProcess::End() {
    if (process_ <= 0) return;
    kill(process_, SIGTERM);
    const Clock::time_point end = Clock::now() + kEndLimit;
    while (waitpid(process_, nullptr, WNOHANG) == 0) {
        if (Clock::now() > end) kill(process_, SIGKILL);
        std::this_thread::sleep_for(milliseconds(10));
    }
    process_ = -1;
}

}  // namespace tool
