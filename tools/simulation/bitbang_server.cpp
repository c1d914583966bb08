#include "bitbang_server.h"

#include "../interrupt.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace tool {
namespace {

// One player's stream of one-letter commands.
class Session {
public:
    Session(SimulatedBoard& board, int descriptor) : board_(board), descriptor_(descriptor) {}

    /// @return false when the player leaves.
    bool Take(std::string_view commands) {
        for (const char command : commands) {
            if (command == 'Q') return false;
            Obey(command);
        }
        return Flush();
    }

private:
    void Obey(char command) {
        if (command >= '0' && command <= '7') {
            const int lines = command - '0';
            Set((lines & 4) != 0, (lines & 2) != 0, (lines & 1) != 0);
        } else if (command == 'R') {
            answers_.push_back(board_.tdo() ? '1' : '0');
        } else if (command == 't' || command == 'u') {
            board_.Reset();  // TRST
        }
    }

    void Set(bool tck, bool tms, bool tdi) {
        if (tck && !tck_) board_.RisingEdge(tms, tdi);
        if (!tck && tck_) board_.FallingEdge();
        tck_ = tck;
    }

    bool Flush() {
        std::string_view rest = answers_;
        while (!rest.empty()) {
            const ssize_t sent = send(descriptor_, rest.data(), rest.size(), MSG_NOSIGNAL);
            if (sent < 0 && errno != EINTR) return false;
            if (sent > 0) rest.remove_prefix(static_cast<std::size_t>(sent));
        }
        answers_.clear();
        return true;
    }

    SimulatedBoard& board_;
    int descriptor_;
    bool tck_ = false;
    std::string answers_;
};

}  // namespace

BitbangServer::BitbangServer(std::uint16_t port) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int yes = 1;
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (listener_ < 0 || bind(listener_, generic, size) != 0 || listen(listener_, 1) != 0 ||
        getsockname(listener_, generic, &size) != 0) {
        problem_ = std::strerror(errno);
    }
    port_ = ntohs(address.sin_port);
}

BitbangServer::~BitbangServer() {
    if (listener_ >= 0) close(listener_);
}

// Waits for something to read, and looks now and then whether the user has had enough.
bool BitbangServer::Wait(int descriptor) const {
    while (!Interrupted()) {
        pollfd event = {descriptor, POLLIN, 0};
        if (poll(&event, 1, 200) > 0) return true;
    }
    return false;
}

bool BitbangServer::ServeOne(SimulatedBoard& board) {
    if (!Wait(listener_)) return false;
    const int player = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (player < 0) return !Interrupted();
    const int yes = 1;
    setsockopt(player, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    Session session(board, player);
    std::array<char, 65536> buffer{};
    while (Wait(player)) {
        const ssize_t got = recv(player, buffer.data(), buffer.size(), 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0 || !session.Take({buffer.data(), static_cast<std::size_t>(got)})) break;
    }
    close(player);
    return !Interrupted();
}

}  // namespace tool
