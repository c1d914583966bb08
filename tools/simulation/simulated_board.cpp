#include "simulated_board.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tool {
namespace {

std::string DriveText(const PinDrive& drive) {
    if (drive.strength == Strength::kOff) return "drives nothing";
    const char* const how = drive.strength == Strength::kWeak ? "pulls" : "drives";
    return fmt::format("{} {}", how, drive.level ? 1 : 0);
}

}  // namespace

void SimulatedBoard::Add(SimulatedDevice device) {
    devices_.push_back(std::move(device));
    const std::size_t index = devices_.size() - 1;
    for (std::size_t pin = 0; pin < devices_[index].pins().size(); ++pin) NetOf({index, pin});
}

std::string SimulatedBoard::LabelOf(PinRef pin) const {
    return chain_.Label({static_cast<int>(pin.device), static_cast<int>(pin.pin)});
}

// The net of a pin; a pin that was joined to none has one of its own.
std::size_t SimulatedBoard::NetOf(PinRef pin) {
    const auto [found, is_new] = net_of_pin_.try_emplace(pin, nets_.size());
    if (is_new) nets_.push_back({LabelOf(pin), {pin}, {}, {}, false});
    return found->second;
}

std::vector<SimulatedBoard::PinRef> SimulatedBoard::FindPins(std::string_view text,
                                                             std::string& problem) const {
    std::vector<bscan::ChainPin> pins;
    const bscan::ChainResult result = chain_.FindPins(text, pins);
    if (!result.Ok()) problem = fmt::format("{}: {}", text, result.reason);
    std::vector<PinRef> found;
    found.reserve(pins.size());
    for (const bscan::ChainPin pin : pins) {
        found.push_back(
            {static_cast<std::size_t>(pin.device), static_cast<std::size_t>(pin.element)});
    }
    return found;
}

std::vector<std::size_t> SimulatedBoard::FindNets(std::string_view where, std::string& problem) {
    if (const auto net = net_by_name_.find(where); net != net_by_name_.end()) {
        return {net->second};
    }
    std::vector<std::size_t> nets;
    for (const PinRef pin : FindPins(where, problem)) nets.push_back(NetOf(pin));
    return nets;
}

std::string SimulatedBoard::Join(const std::string& net, std::string_view pin) {
    std::string problem;
    const std::vector<PinRef> pins = FindPins(pin, problem);
    if (pins.empty()) return problem;
    if (pins.size() > 1) return fmt::format("{} is more than one pin", pin);
    const auto [joined, is_new] = net_by_name_.try_emplace(net, nets_.size());
    if (is_new) nets_.push_back({net, {}, {}, {}, false});
    Net& old = nets_[NetOf(pins.front())];
    if (old.pins.size() > 1 || net_by_name_.count(old.name) != 0) {
        return fmt::format("{} is on net {} already", pin, old.name);
    }
    old.pins.clear();
    nets_[joined->second].pins.push_back(pins.front());
    net_of_pin_[pins.front()] = joined->second;
    return {};
}

std::string SimulatedBoard::SetLevel(std::string_view where, bool level) {
    std::string problem;
    for (const std::size_t net : FindNets(where, problem)) {
        nets_[net].outside = {Strength::kStrong, level};
    }
    return problem;
}

std::string SimulatedBoard::SetPull(std::string_view where, bool level) {
    std::string problem;
    for (const std::size_t net : FindNets(where, problem)) {
        nets_[net].outside = {Strength::kWeak, level};
    }
    return problem;
}

// The pin leaves its net and is alone from then on.
std::string SimulatedBoard::BreakOpen(std::string_view pin) {
    std::string problem;
    for (const PinRef broken : FindPins(pin, problem)) {
        std::vector<PinRef>& pins = nets_[NetOf(broken)].pins;
        pins.erase(std::remove_if(pins.begin(), pins.end(),
                                  [&](PinRef p) { return !(p < broken) && !(broken < p); }),
                   pins.end());
        net_of_pin_[broken] = nets_.size();
        nets_.push_back({LabelOf(broken) + " (open)", {broken}, {}, {}, false});
    }
    return problem;
}

std::string SimulatedBoard::StickAt(std::string_view where, bool level) {
    std::string problem;
    for (const std::size_t net : FindNets(where, problem)) nets_[net].stuck = level;
    return problem;
}

std::string SimulatedBoard::Short(std::string_view first, std::string_view second, ShortKind kind) {
    std::string problem;
    const std::vector<std::size_t> left = FindNets(first, problem);
    const std::vector<std::size_t> right = FindNets(second, problem);
    if (!problem.empty()) return problem;
    if (left.size() > 1) return fmt::format("{} is more than one net", first);
    if (right.size() > 1) return fmt::format("{} is more than one net", second);
    shorts_.push_back({left.front(), right.front(), kind});
    return {};
}

void SimulatedBoard::Reset() {
    for (SimulatedDevice& device : devices_) device.Reset();
    Settle();
}

void SimulatedBoard::RisingEdge(bool tms, bool tdi) {
    ++tck_;
    for (SimulatedDevice& device : devices_) {
        const bool from_this_one = device.tdo();  // still that of the falling edge before
        device.RisingEdge(tms, tdi);
        tdi = from_this_one;
    }
}

void SimulatedBoard::FallingEdge() {
    bool may_have_changed = false;
    for (SimulatedDevice& device : devices_) may_have_changed |= device.FallingEdge();
    if (may_have_changed) Settle();
}

// What the drivers of a net agree on. Two strong ones that differ are in contention: 0 wins.
PinDrive SimulatedBoard::Resolve(Net& net) {
    PinDrive result = net.outside;
    bool fought = false;
    for (const PinRef pin : net.pins) {
        const PinDrive& drive = devices_[pin.device].pins()[pin.pin].drive;
        if (drive.strength > result.strength) {
            result = drive;
        } else if (drive.strength == result.strength && drive.level != result.level) {
            fought |= drive.strength == Strength::kStrong;
            result.level = false;
        }
    }
    if (fought && !net.in_contention) log_(tck_, fmt::format("contention on {}", net.name));
    net.in_contention = fought;
    return result;
}

void SimulatedBoard::LogDrives() {
    for (std::size_t device = 0; device < devices_.size(); ++device) {
        for (std::size_t pin = 0; pin < devices_[device].pins().size(); ++pin) {
            const PinDrive& drive = devices_[device].pins()[pin].drive;
            PinDrive& last = last_drives_[{device, pin}];
            if (drive == last) continue;
            last = drive;
            log_(tck_, fmt::format("{} {}", LabelOf({device, pin}), DriveText(drive)));
        }
    }
}

void SimulatedBoard::ShowAt(const Net& net, bool level) {
    for (const PinRef ref : net.pins) {
        SimulatedPin& pin = devices_[ref.device].pins()[ref.pin];
        if (pin.input == level) continue;
        pin.input = level;
        log_(tck_, fmt::format("{} reads {}", LabelOf(ref), level ? 1 : 0));
    }
}

// Shorts that share a net pass levels on to each other, through each once at most.
void SimulatedBoard::ApplyShorts(std::vector<PinDrive>& drives) const {
    bool changes = true;
    for (std::size_t turn = 0; changes && turn < shorts_.size(); ++turn) {
        changes = false;
        for (const InjectedShort& wire : shorts_) {
            const PinDrive a = drives[wire.first];
            const PinDrive b = drives[wire.second];
            if (a == b) continue;
            PinDrive both = a.strength >= b.strength ? a : b;
            if (a.strength == b.strength && a.strength != Strength::kOff) {
                both.level = wire.kind == ShortKind::kAnd  ? a.level && b.level
                             : wire.kind == ShortKind::kOr ? a.level || b.level
                                                           : a.level;
            }
            drives[wire.first] = drives[wire.second] = both;
            changes = true;
        }
    }
}

// Works out the level of every net from what drives it, and shows it to the pins.
void SimulatedBoard::Settle() {
    LogDrives();
    std::vector<PinDrive> drives(nets_.size());
    for (std::size_t net = 0; net < nets_.size(); ++net) drives[net] = Resolve(nets_[net]);
    ApplyShorts(drives);
    for (std::size_t net = 0; net < nets_.size(); ++net) {
        const bool driven = drives[net].strength != Strength::kOff;
        ShowAt(nets_[net], nets_[net].stuck.value_or(driven ? drives[net].level : floating_));
    }
}

}  // namespace tool
