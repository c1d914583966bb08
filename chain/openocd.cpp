// The client side of OpenOCD's Tcl port, on non-blocking sockets.

#include <bscan/openocd.h>
#include <bscan/result.h>

#include "support/border.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace bscan {
namespace {

constexpr char kEnd = 0x1A;
// No answer of a scan comes near this; a peer that is no OpenOCD may send without end.
constexpr std::size_t kMaxAnswer = std::size_t{64} << 20;

using Clock = std::chrono::steady_clock;

struct AddressListDeleter {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

}  // namespace

OpenOcd::OpenOcd(OpenOcd&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)),
      host_(std::move(other.host_)),
      port_(other.port_),
      limit_(other.limit_),
      problem_(std::move(other.problem_)) {}

OpenOcd& OpenOcd::operator=(OpenOcd&& other) noexcept {
    if (this == &other) return *this;
    Close();
    socket_ = std::exchange(other.socket_, -1);
    host_ = std::move(other.host_);
    port_ = other.port_;
    limit_ = other.limit_;
    problem_ = std::move(other.problem_);
    return *this;
}

OpenOcd::~OpenOcd() { Close(); }

void OpenOcd::Close() {
    if (socket_ >= 0) close(socket_);
    socket_ = -1;
}

int OpenOcd::Fail(int code, const std::string& problem) {
    if (code != kCommandFailed) Close();
    problem_ = problem;
    return code;
}

int OpenOcd::Connect(const std::string& host, int port, std::chrono::milliseconds limit) {
    return detail::GuardedCode([&]() -> int {
        Close();
        limit_ = limit;
        host_ = host;
        port_ = port;
        addrinfo hints = {};
        hints.ai_socktype = SOCK_STREAM;
        addrinfo* list = nullptr;
        const std::string service = std::to_string(port);
        if (port < 1 || port > 65535) return Fail(kCannotConnect, "there is no port " + service);
        const int code = getaddrinfo(host.c_str(), service.c_str(), &hints, &list);
        if (code != 0) {
            return Fail(kCannotConnect, "no host " + host + ": " + gai_strerror(code));
        }
        const std::unique_ptr<addrinfo, AddressListDeleter> owner(list);
        for (const addrinfo* address = list; address != nullptr; address = address->ai_next) {
            if (TryAddress(address)) return kOk;
        }
        return Fail(kCannotConnect, "no OpenOCD listens at " + host + ":" + service);
    });
}

int OpenOcd::Reconnect() {
    return detail::GuardedCode([&]() -> int {
        if (host_.empty()) return Fail(kCannotConnect, "there was no connection to OpenOCD");
        const std::string host = host_;
        return Connect(host, port_, limit_);
    });
}

bool OpenOcd::TryAddress(const void* address) {
    const auto& info = *static_cast<const addrinfo*>(address);
    socket_ = socket(info.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, info.ai_protocol);
    if (socket_ < 0) return false;
    int error = 0;
    socklen_t size = sizeof error;
    const bool begun = connect(socket_, info.ai_addr, info.ai_addrlen) == 0 || errno == EINPROGRESS;
    if (!begun || !Await(POLLOUT, Clock::now() + limit_) ||
        getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
        Close();
        return false;
    }
    const int yes = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    return true;
}

// Waits until the socket can be written or read, at most until the end.
bool OpenOcd::Await(short event, Clock::time_point end) const {
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) return false;
        pollfd wanted = {socket_, event, 0};
        const int ready = poll(&wanted, 1, static_cast<int>(left.count()));
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

bool OpenOcd::Send(std::string_view text) {
    const Clock::time_point end = Clock::now() + limit_;
    while (!text.empty()) {
        if (!Await(POLLOUT, end)) return false;
        const ssize_t sent = send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
        if (sent > 0) text.remove_prefix(static_cast<std::size_t>(sent));
        if (sent < 0 && errno != EINTR && errno != EAGAIN) return false;
    }
    return true;
}

// Reads up to the end mark, which is taken off.
bool OpenOcd::Receive(std::string& text) {
    const Clock::time_point end = Clock::now() + limit_;
    std::array<char, 16384> block{};
    text.clear();
    while (text.empty() || text.back() != kEnd) {
        if (text.size() > kMaxAnswer || !Await(POLLIN, end)) return false;
        const ssize_t got = recv(socket_, block.data(), block.size(), 0);
        if (got > 0) text.append(block.data(), static_cast<std::size_t>(got));
        if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN)) return false;
    }
    text.pop_back();
    return true;
}

// The Tcl port answers alike to success and failure, so the command is wrapped to tell which.
int OpenOcd::Run(std::string_view command, std::string& answer) {
    return detail::GuardedCode([&]() -> int {
        if (socket_ < 0) return Fail(kNoConnection, "there is no connection to OpenOCD");
        std::string wrapped = "format {%d %s} [catch {";
        wrapped.append(command).append("} bscan_answer] $bscan_answer").push_back(kEnd);
        if (!Send(wrapped) || !Receive(answer)) {
            return Fail(kNoConnection, "OpenOCD does not answer any more");
        }
        const bool is_answer =
            answer.size() >= 2 && answer[0] >= '0' && answer[0] <= '9' && answer[1] == ' ';
        if (!is_answer) return Fail(kNoConnection, "what answers is no OpenOCD");
        const bool refused = answer[0] != '0';
        answer.erase(0, 2);
        return refused ? Fail(kCommandFailed, answer) : int{kOk};
    });
}

}  // namespace bscan
