// A chain of simulated devices, the nets between their pins, and what may be broken on them.
#pragma once

#include <bscan/chain.h>

#include "simulated_device.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// How a short between nets decides when they differ.
enum class ShortKind { kAnd, kOr, kFirstWins };

/// The board outside the devices. Set it up, then clock it.
///
/// Operations that name a pin or net return what is wrong in words, empty when all is well. A pin
/// is named as everywhere, such as U1.D(3); a net the name that Join() gave it or the label of a
/// pin without one.
class SimulatedBoard {
public:
    /// One line of the log: the count of TCK and what happened.
    using Log = std::function<void(std::uint64_t tck, std::string_view text)>;

    /// @param chain  finds the pins that a text names, and must live as long.
    SimulatedBoard(const bscan::Chain& chain, Log log) : chain_(chain), log_(std::move(log)) {}

    /// Appends the next device of the chain.
    void Add(SimulatedDevice device);

    std::string Join(const std::string& net, std::string_view pin);
    /// Holds what a pin is tied to at a level, against any driver.
    std::string SetLevel(std::string_view where, bool level);
    /// Ties it to a supply by a resistor: the level when nothing else drives.
    std::string SetPull(std::string_view where, bool level);
    /// What a pin shows that nothing drives.
    void SetFloating(bool level) { floating_ = level; }

    std::string BreakOpen(std::string_view pin);
    std::string StickAt(std::string_view where, bool level);
    std::string Short(std::string_view first, std::string_view second, ShortKind kind);

    /// Puts every device into reset; also how a simulation begins.
    void Reset();
    /// TCK rises.
    void RisingEdge(bool tms, bool tdi);
    /// TCK falls.
    void FallingEdge();
    /// The level at the chain's end.
    bool tdo() const { return devices_.back().tdo(); }
    std::uint64_t tck_count() const { return tck_; }
    const std::vector<SimulatedDevice>& devices() const { return devices_; }

private:
    struct PinRef {
        std::size_t device = 0;
        std::size_t pin = 0;
        bool operator<(const PinRef& other) const {
            return device != other.device ? device < other.device : pin < other.pin;
        }
    };
    struct Net {
        std::string name;
        std::vector<PinRef> pins;
        PinDrive outside;           // a pull or a held level
        std::optional<bool> stuck;  // injected
        bool in_contention = false;
    };
    struct InjectedShort {
        std::size_t first = 0;
        std::size_t second = 0;
        ShortKind kind = ShortKind::kAnd;
    };

    std::vector<PinRef> FindPins(std::string_view text, std::string& problem) const;
    std::size_t NetOf(PinRef pin);
    std::vector<std::size_t> FindNets(std::string_view where, std::string& problem);
    PinDrive Resolve(Net& net);
    void ApplyShorts(std::vector<PinDrive>& drives) const;
    void Settle();
    void ShowAt(const Net& net, bool level);
    void LogDrives();
    std::string LabelOf(PinRef pin) const;

    const bscan::Chain& chain_;
    Log log_;
    std::vector<SimulatedDevice> devices_;
    std::vector<Net> nets_;
    std::map<PinRef, std::size_t> net_of_pin_;
    std::map<std::string, std::size_t, std::less<>> net_by_name_;
    std::vector<InjectedShort> shorts_;
    std::map<PinRef, PinDrive> last_drives_;
    bool floating_ = false;
    std::uint64_t tck_ = 0;
};

}  // namespace tool
