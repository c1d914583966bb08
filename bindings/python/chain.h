// A scan chain as the module holds it.
#pragma once

#include <bscan/chain.h>
#include <bscan/scan_program.h>

#include "device.h"
#include "pin_requests.h"
#include "problem.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace bscan::python {

/// The devices of a chain with models of their own, so that the same Device may stand in it twice
/// and what drives a pin here changes nothing there.
class ScanChain {
public:
    ScanChain() = default;

    /// @param name  its name in the chain.
    /// @param device  whose file is filled again. Throws Problem.
    void Add(const std::string& name, const Device& device);
    void Add(const std::string& name, int instruction_length);

    /// A chain of the same devices in which nothing is asked for yet.
    std::unique_ptr<ScanChain> Fresh() const;

    Chain& Get() { return chain_; }
    /// Does all of the requests or, when one cannot be done, none of them, and throws Problem.
    void Drive(const std::vector<PinLevel>& levels);
    /// Turns off all drivers and forgets all requests.
    void Preset();

    /// Held while the chain is looked at or changed: an operation on hardware does so without
    /// Python's lock.
    std::mutex& Mutex() { return mutex_; }

private:
    struct Member {
        std::string name;
        std::shared_ptr<const Description> source;  // null for a device of length alone
        std::string package;
        int instruction_length = 0;
        std::unique_ptr<BScanParser> parser;
        std::unique_ptr<PinRequests> requests;
    };

    void Add(Member member);

    std::mutex mutex_;
    std::vector<Member> members_;
    Chain chain_;  // refers to the parsers, and so goes first
};

/// Throws Problem unless the result is kOk.
void Check(const ChainResult& result);

}  // namespace bscan::python
