// From a netlist and a chain to the nets of a test.

#include <bscan/board/board.h>

#include "board/device_pins.h"
#include "board/patterns.h"
#include "support/border.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

namespace bscan {
namespace detail {
namespace {

// So many sentences of one kind are given; a board with more has another problem.
constexpr std::size_t kMostNotes = 100;

enum class PartKind { kDevice, kThrough, kPullUp, kPullDown, kPassive, kForeign };

// A part of the netlist and where its pins are.
struct Part {
    PartKind kind = PartKind::kForeign;
    int device = -1;
    std::vector<std::pair<int, std::string>> pins;  // net of the netlist, designator
};

class BoardMaker {
public:
    BoardMaker(const Chain& chain, const std::vector<const Facts*>& facts, const Netlist& netlist,
               const BoardRules& rules)
        : chain_(chain), facts_(facts), netlist_(netlist), rules_(rules) {}

    Board Make() {
        for (int i = 0; i < chain_.DeviceCount(); ++i) AddDevice(i);
        CollectParts();
        JoinNets();
        MakeNets();
        for (auto& [name, part] : parts_) PlacePins(name, part);
        for (int i = 0; i < chain_.DeviceCount(); ++i) CompareDevice(i);
        Classify();
        return std::move(board_);
    }

private:
    // Where a net of the netlist went.
    struct Place {
        int net = -1;
        int segment = 0;
    };

    void Note(std::string text) {
        if (board_.notes.size() < kMostNotes) board_.notes.push_back(std::move(text));
    }
    void Refuse(std::string text) {
        if (board_.problems.size() < kMostNotes) board_.problems.push_back(std::move(text));
    }

    void AddDevice(int device) {
        const auto index = static_cast<std::size_t>(device);
        const Facts* const facts = index < facts_.size() ? facts_[index] : nullptr;
        devices_.emplace_back(chain_, device, facts);
        const bool loads =
            chain_.CanSelect(device, "PRELOAD").Ok() || chain_.CanSelect(device, "SAMPLE").Ok();
        const ChainResult extest = chain_.CanSelect(device, "EXTEST");
        BoardDevice& made = board_.devices.emplace_back();
        made.takes_part = chain_.Device(device).HasModel() && extest.Ok() && loads;
        if (made.takes_part) return;
        Note(chain_.Device(device).name +
             " stays in BYPASS and goes on driving its pins: its nets are left alone.");
    }

    void CollectParts() {
        for (std::size_t net = 0; net < netlist_.nets.size(); ++net) {
            for (const NetlistPin& pin : netlist_.nets[net].pins) {
                parts_[pin.part].pins.emplace_back(static_cast<int>(net), pin.pin);
            }
        }
        const Patterns through(rules_.through);
        const Patterns up(rules_.pull_up);
        const Patterns down(rules_.pull_down);
        const Patterns passive(rules_.passive);
        for (auto& [name, part] : parts_) {
            part.device = chain_.FindDevice(name);
            part.kind = part.device >= 0    ? PartKind::kDevice
                        : up.Fit(name)      ? PartKind::kPullUp
                        : down.Fit(name)    ? PartKind::kPullDown
                        : through.Fit(name) ? PartKind::kThrough
                        : passive.Fit(name) ? PartKind::kPassive
                                            : PartKind::kForeign;
            if (part.kind != PartKind::kThrough || part.pins.size() == 2) continue;
            part.kind = part.pins.size() < 2 ? PartKind::kPassive : PartKind::kForeign;
            if (part.pins.size() < 2) continue;
            Note(name + " has " + std::to_string(part.pins.size()) +
                 " pins, so it joins no nets; it counts as a part that could drive.");
        }
    }

    int Root(int net) {
        while (roots_[static_cast<std::size_t>(net)] != net) {
            int& parent = roots_[static_cast<std::size_t>(net)];
            parent = roots_[static_cast<std::size_t>(parent)];
            net = parent;
        }
        return net;
    }

    // The net that comes first in the netlist stands for all that are joined.
    void JoinNets() {
        roots_.resize(netlist_.nets.size());
        std::iota(roots_.begin(), roots_.end(), 0);
        for (const auto& [name, part] : parts_) {
            if (part.kind != PartKind::kThrough) continue;
            const int first = Root(part.pins[0].first);
            const int second = Root(part.pins[1].first);
            roots_[static_cast<std::size_t>(std::max(first, second))] = std::min(first, second);
        }
    }

    void MakeNets() {
        places_.resize(netlist_.nets.size());
        for (std::size_t i = 0; i < netlist_.nets.size(); ++i) {
            const NetlistNet& read = netlist_.nets[i];
            const int root = Root(static_cast<int>(i));
            Place& place = places_[i];
            if (root == static_cast<int>(i)) {
                place = {static_cast<int>(board_.nets.size()), 0};
                board_.nets.emplace_back();
                board_.nets.back().name = read.name;
                board_.nets.back().line = read.line;
            } else {
                const int net = places_[static_cast<std::size_t>(root)].net;
                std::vector<std::string>& aliases = At(net).aliases;
                aliases.push_back(read.name);
                place = {net, static_cast<int>(aliases.size())};
            }
            board_.net_by_name.emplace(read.name, place.net);
        }
    }

    BoardNet& At(int net) { return board_.nets[static_cast<std::size_t>(net)]; }

    void PlacePins(const std::string& name, const Part& part) {
        if (part.kind == PartKind::kThrough) return PlaceThrough(name, part);
        for (const auto& [read_net, pin] : part.pins) {
            std::string label = name;
            label.append(".").append(pin);
            const Place place = places_[static_cast<std::size_t>(read_net)];
            switch (part.kind) {
                case PartKind::kDevice:
                    PlaceDevicePin(part.device, pin, place);
                    break;
                case PartKind::kPullUp:
                case PartKind::kPullDown:
                    At(place.net).pulls.push_back(
                        {label, place.segment, part.kind == PartKind::kPullUp});
                    break;
                case PartKind::kForeign:
                    At(place.net).foreign.push_back(label);
                    break;
                default:
                    break;
            }
        }
    }

    void PlaceThrough(const std::string& name, const Part& part) {
        const Place first = places_[static_cast<std::size_t>(part.pins[0].first)];
        const Place second = places_[static_cast<std::size_t>(part.pins[1].first)];
        if (first.segment == second.segment) return;
        At(first.net).through.push_back({name + "." + part.pins[0].second,
                                         name + "." + part.pins[1].second, first.segment,
                                         second.segment});
    }

    void PlaceDevicePin(int device, const std::string& pin, Place place) {
        const DevicePins& pins = devices_[static_cast<std::size_t>(device)];
        BoardDevice& described = board_.devices[static_cast<std::size_t>(device)];
        const std::vector<int> elements = pins.Find(pin);
        BoardPin placed{chain_.Device(device).name, pin, {}, {}, place.net, place.segment};
        BoardNet& net = At(place.net);
        const auto add = [&](ChainPin element) {
            placed.element = element;
            net.pins.push_back(static_cast<int>(board_.pins.size()));
            board_.pins.push_back(placed);
        };
        if (elements.empty()) {
            if (chain_.Device(device).HasModel()) described.lacking.push_back(pin);
            add({});
        }
        for (const int element : elements) {
            const int leader = pins.LeaderOf(element);
            placed.leader = leader >= 0 ? ChainPin{device, leader} : ChainPin();
            add({device, element});
        }
        named_.insert({device, pin});
        const bool in_reach = described.takes_part && !elements.empty() &&
                              std::none_of(elements.begin(), elements.end(), [&](int element) {
                                  return pins.CouldDriveAlone(element);
                              });
        if (!in_reach) net.foreign.push_back(placed.Name());
    }

    void CompareDevice(int device) {
        BoardDevice& described = board_.devices[static_cast<std::size_t>(device)];
        for (const std::string& pin : devices_[static_cast<std::size_t>(device)].All()) {
            if (named_.count({device, pin}) == 0) described.unnamed.push_back(pin);
        }
        if (parts_.count(chain_.Device(device).name) == 0) {
            Refuse("The netlist has no part " + chain_.Device(device).name + ".");
        }
    }

    bool Fits(const BoardNet& net, const Patterns& patterns) const {
        return patterns.Fit(net.name) ||
               std::any_of(net.aliases.begin(), net.aliases.end(),
                           [&](const std::string& alias) { return patterns.Fit(alias); });
    }

    void Classify() {
        const Patterns supply(rules_.supply);
        const Patterns ground(rules_.ground);
        const Patterns quiet(rules_.quiet);
        const Patterns drive(rules_.drive);
        const std::vector<std::optional<bool>> held = HeldLevels();
        for (std::size_t i = 0; i < board_.nets.size(); ++i) {
            BoardNet& net = board_.nets[i];
            const bool is_supply = Fits(net, supply);
            const bool is_ground = Fits(net, ground);
            if (is_supply && is_ground) Refuse("Net " + net.name + " is supply and ground.");
            const bool tap = HasPin(
                net, [](const DevicePins& pins, int element) { return pins.IsTap(element); });
            const std::optional<bool> compliance = ComplianceLevel(net);
            const bool complies = HasPin(net, [](const DevicePins& pins, int element) {
                return pins.IsCompliance(element);
            });
            net.level = held[i] ? held[i] : compliance;
            net.net_class = is_supply                                   ? NetClass::kSupply
                            : is_ground                                 ? NetClass::kGround
                            : tap                                       ? NetClass::kTap
                            : held[i]                                   ? NetClass::kHeld
                            : complies                                  ? NetClass::kCompliance
                            : Fits(net, quiet)                          ? NetClass::kQuiet
                            : !net.foreign.empty() && !Fits(net, drive) ? NetClass::kForeign
                                                                        : NetClass::kSignal;
            CheckLevel(net, held[i], compliance, Fits(net, quiet));
            if (net.net_class <= NetClass::kGround) TellJoined(net);
        }
        TellPulls();
    }

    template <typename Is>
    bool HasPin(const BoardNet& net, Is is) const {
        return std::any_of(net.pins.begin(), net.pins.end(), [&](int pin) {
            const ChainPin element = board_.pins[static_cast<std::size_t>(pin)].element;
            return element.device >= 0 &&
                   is(devices_[static_cast<std::size_t>(element.device)], element.element);
        });
    }

    std::vector<std::optional<bool>> HeldLevels() {
        std::vector<std::optional<bool>> levels(board_.nets.size());
        for (const auto& [pattern, level] : rules_.hold) {
            bool found = false;
            const Patterns patterns({pattern});
            for (std::size_t i = 0; i < board_.nets.size(); ++i) {
                if (!Fits(board_.nets[i], patterns)) continue;
                found = true;
                if (levels[i] && *levels[i] != level) {
                    Refuse("Net " + board_.nets[i].name + " is to be held at 0 and at 1.");
                }
                levels[i] = level;
            }
            if (!found) Refuse("There is no net " + pattern + " that could be held.");
        }
        return levels;
    }

    std::optional<bool> ComplianceLevel(const BoardNet& net) {
        std::optional<bool> level;
        for (const int pin : net.pins) {
            const ChainPin element = board_.pins[static_cast<std::size_t>(pin)].element;
            if (element.device < 0) continue;
            const auto wanted =
                devices_[static_cast<std::size_t>(element.device)].ComplianceLevel(element.element);
            if (!wanted) continue;
            if (level && *level != *wanted) {
                Refuse("Net " + net.name +
                       " would have to be 0 and 1 for the compliance of its "
                       "devices.");
            }
            level = wanted;
        }
        return level;
    }

    void CheckLevel(const BoardNet& net, std::optional<bool> held, std::optional<bool> compliance,
                    bool quiet) {
        if (!held) return;
        if (net.net_class < NetClass::kHeld) {
            Refuse("Net " + net.name + " is to be held and is of class " + NameOf(net.net_class) +
                   ".");
        }
        if (quiet) Refuse("Net " + net.name + " is to be held and never to be driven.");
        if (compliance && *compliance != *held) {
            Refuse("Net " + net.name + " is to be held at another level than compliance demands.");
        }
    }

    // A resistor to a supply that is taken for one in series hides a net.
    void TellJoined(const BoardNet& net) {
        for (const BoardThrough& part : net.through) {
            const std::size_t dot = part.first_pin.rfind('.');
            Note(part.first_pin.substr(0, dot) + " joins nets to " + net.name + " (" +
                 NameOf(net.net_class) + "): if it is a pull, name it so.");
        }
    }

    void TellPulls() {
        for (BoardNet& net : board_.nets) {
            if (net.net_class <= NetClass::kGround) {
                net.pulls.clear();
            } else if (!net.pulls.empty() && !net.PulledTo()) {
                Note("Net " + net.name + " is pulled up and down: its level is not compared.");
            }
        }
        for (const auto& [name, part] : parts_) {
            const bool up = part.kind == PartKind::kPullUp;
            if (!up && part.kind != PartKind::kPullDown) continue;
            const bool reaches =
                std::any_of(part.pins.begin(), part.pins.end(), [&](const auto& pin) {
                    const int net = places_[static_cast<std::size_t>(pin.first)].net;
                    return At(net).net_class == (up ? NetClass::kSupply : NetClass::kGround);
                });
            if (!reaches) {
                Note(name + " pulls, and none of its pins is on a net of class " +
                     NameOf(up ? NetClass::kSupply : NetClass::kGround) + ".");
            }
        }
    }

    const Chain& chain_;
    const std::vector<const Facts*>& facts_;
    const Netlist& netlist_;
    const BoardRules& rules_;
    std::vector<DevicePins> devices_;
    std::map<std::string, Part> parts_;
    std::vector<int> roots_;
    std::vector<Place> places_;
    std::set<std::pair<int, std::string>> named_;
    Board board_;
};

}  // namespace
}  // namespace detail

Board MakeBoard(const Chain& chain, const std::vector<const Facts*>& facts, const Netlist& netlist,
                const BoardRules& rules) {
    Board failed;
    failed.problems.emplace_back("There is not enough memory.");
    if (!netlist.Ok()) {
        failed.problems = {netlist.problem};
        return failed;
    }
    return detail::Guarded([&] { return detail::BoardMaker(chain, facts, netlist, rules).Make(); },
                           failed);
}

std::optional<bool> BoardNet::PulledTo() const {
    if (pulls.empty()) return std::nullopt;
    const bool first = pulls.front().level;
    const bool agree = std::all_of(pulls.begin(), pulls.end(),
                                   [&](const BoardPull& pull) { return pull.level == first; });
    return agree ? std::optional(first) : std::nullopt;
}

const char* NameOf(NetClass net_class) {
    constexpr const char* kWords[] = {"supply",     "ground", "tap",     "held",
                                      "compliance", "quiet",  "foreign", "signal"};
    return kWords[static_cast<std::size_t>(net_class)];
}

}  // namespace bscan
