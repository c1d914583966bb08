/// @file
/// A connection to a running OpenOCD, which plays scans on real hardware.
#pragma once

#include <bscan/export.h>

#include <chrono>
#include <string>
#include <string_view>

namespace bscan {

/// Speaks to the Tcl port of OpenOCD: a command goes out, its answer comes back, each ended by the
/// byte 0x1A.
///
/// Nothing waits for ever: every call has a limit, after which the connection is closed. One
/// object serves one thread at a time.
class BSCAN_EXPORT OpenOcd {
public:
    /// The port on which OpenOCD listens when nobody tells it another.
    static constexpr int kDefaultPort = 6666;

    /// Makes an object without connection.
    OpenOcd() = default;
    OpenOcd(const OpenOcd&) = delete;
    OpenOcd& operator=(const OpenOcd&) = delete;
    OpenOcd(OpenOcd&& other) noexcept;
    OpenOcd& operator=(OpenOcd&& other) noexcept;
    /// Closes the connection; OpenOCD goes on.
    ~OpenOcd();

    /// Connects; a connection that is there is closed first.
    ///
    /// @param host  name or address.
    /// @param port  of its Tcl interface.
    /// @param limit  how long each call may wait, this one and those that follow.
    /// @return kOk or kCannotConnect.
    int Connect(const std::string& host, int port,
                std::chrono::milliseconds limit = std::chrono::seconds(10));

    /// Connects anew to where the last Connect() went, with its limit.
    ///
    /// @return kOk or kCannotConnect, the latter also when there was no Connect().
    int Reconnect();

    /// Runs a Tcl command.
    ///
    /// @param command  complete: braces and quotes are balanced.
    /// @param answer  receives what the command returns, or its error message.
    /// @return kOk; kCommandFailed when OpenOCD refuses it (the connection stays);
    ///         kNoConnection when there is none, it breaks, no answer comes in time, or the answer
    ///         is not that of an OpenOCD;
    ///         kOutOfMemory.
    int Run(std::string_view command, std::string& answer);

    /// @return whether there is a connection.
    bool IsConnected() const { return socket_ >= 0; }

    /// Closes the connection; nothing happens without one.
    void Close();

    /// @return the last failure in words, without a full stop; empty when there was none.
    const std::string& Problem() const { return problem_; }

private:
    BSCAN_LOCAL int Fail(int code, const std::string& problem);
    BSCAN_LOCAL bool Await(short event, std::chrono::steady_clock::time_point end) const;
    BSCAN_LOCAL bool TryAddress(const void* address);
    BSCAN_LOCAL bool Send(std::string_view text);
    BSCAN_LOCAL bool Receive(std::string& text);

    int socket_ = -1;
    std::string host_;
    int port_ = 0;
    std::chrono::milliseconds limit_ = std::chrono::seconds(10);
    std::string problem_;
};

}  // namespace bscan
