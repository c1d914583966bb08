// An OpenOCD that the program itself starts and ends.
#pragma once

#include <string>
#include <sys/types.h>

namespace tool {

/// Runs OpenOCD with a configuration that names adapter, transport and speed. Ports and "init" are
/// ours; what else the configuration of the chain declares comes from a second file.
class OpenOcdProcess {
public:
    OpenOcdProcess() = default;
    OpenOcdProcess(const OpenOcdProcess&) = delete;
    OpenOcdProcess& operator=(const OpenOcdProcess&) = delete;
    /// Ends the process.
    ~OpenOcdProcess();

    /// @param adapter_file  the user's configuration.
    /// @param chain_text  the TAPs; empty to let OpenOCD look for itself.
    /// @return what went wrong in words, with what OpenOCD said last; empty when it listens.
    std::string Start(const std::string& adapter_file, const std::string& chain_text);

    /// The Tcl port on the loopback address, once it is started.
    int port() const { return port_; }

private:
    std::string AwaitPort();
    void End();

    std::string chain_file_;
    std::string log_file_;
    pid_t process_ = -1;
    int port_ = 0;
};

}  // namespace tool
