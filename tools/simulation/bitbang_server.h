// Serves a simulated chain to a JTAG player over OpenOCD's remote_bitbang protocol.
#pragma once

#include "simulated_board.h"

#include <cstdint>
#include <string>

namespace tool {

/// Listens on the loopback address alone and serves one player at a time.
class BitbangServer {
public:
    /// @param port  0 for any free one.
    explicit BitbangServer(std::uint16_t port);
    BitbangServer(const BitbangServer&) = delete;
    BitbangServer& operator=(const BitbangServer&) = delete;
    ~BitbangServer();

    /// What went wrong in the constructor; empty when it listens.
    const std::string& problem() const { return problem_; }
    std::uint16_t port() const { return port_; }

    /// Serves the next player until it leaves. @return false when a signal ended the wait.
    bool ServeOne(SimulatedBoard& board);

private:
    bool Wait(int descriptor) const;

    int listener_ = -1;
    std::uint16_t port_ = 0;
    std::string problem_;
};

}  // namespace tool
