/// @file
/// A board as a test sees it: the nets between the pins of a scan chain, and what may be done to
/// them.
#pragma once

#include <bscan/board/netlist.h>
#include <bscan/chain.h>
#include <bscan/export.h>
#include <bscan/facts.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bscan {

/// What a netlist does not tell. Parts and nets are named by patterns, in which '*' stands for any
/// text and '?' for any character; letter case counts.
struct BoardRules {
    std::vector<std::string> through;    ///< two-pin parts that join their nets
    std::vector<std::string> pull_up;    ///< resistors to a supply; they win over `through`
    std::vector<std::string> pull_down;  ///< resistors to ground; they win over `through`
    std::vector<std::string> passive;    ///< parts that drive nothing and join nothing
    std::vector<std::string> supply;     ///< nets
    std::vector<std::string> ground;     ///< nets
    std::vector<std::string> quiet;      ///< nets that are never driven
    std::vector<std::string> drive;      ///< nets that are driven in spite of foreign parts
    std::vector<std::pair<std::string, bool>> hold;  ///< nets and the levels to keep
};

/// @return whether a name fits a pattern. Time grows with the product of both lengths at most.
BSCAN_EXPORT bool FitsPattern(std::string_view pattern, std::string_view name);

/// What a net is, which decides whether it is tested. The first that applies counts.
enum class NetClass {
    kSupply,
    kGround,
    kTap,         ///< a pin of a test access port is on it
    kHeld,        ///< keeps a level
    kCompliance,  ///< a pin is on it that makes test logic work
    kQuiet,       ///< is never driven
    kForeign,     ///< a part is on it that could drive and is not under control
    kSignal,      ///< may be tested
};

/// A pin of a device of the chain, on a net.
struct BoardPin {
    std::string part;
    std::string pin;   ///< designator
    ChainPin element;  ///< its port element; none where the package lacks the pin
    ChainPin leader;   ///< of the negative leg of a differential pair: the leg it drives with
    int net = -1;
    int segment = 0;  ///< which of the net's joined parts it is on

    /// @return PART.PIN
    std::string Name() const { return part + "." + pin; }
};

/// A resistor from a net to a supply.
struct BoardPull {
    std::string pin;  ///< PART.PIN of its end on the net
    int segment = 0;
    bool level = false;
};

/// A part that joins two segments of a net.
struct BoardThrough {
    std::string first_pin, second_pin;  ///< PART.PIN
    int first_segment = 0, second_segment = 0;
};

/// One net, with those that through parts join to it.
struct BoardNet {
    std::string name;                  ///< that which comes first in the netlist
    std::vector<std::string> aliases;  ///< the other names, each of a segment from 1 on
    int line = 0;                      ///< of the netlist
    NetClass net_class = NetClass::kSignal;
    std::vector<int> pins;  ///< of Board::pins
    std::vector<BoardPull> pulls;
    std::vector<BoardThrough> through;
    std::vector<std::string> foreign;  ///< pins that could drive and are not under control
    std::optional<bool> level;         ///< to hold, or that compliance demands

    /// @return the level that the pulls give it; nothing without one, or when they disagree.
    BSCAN_EXPORT std::optional<bool> PulledTo() const;
};

/// A device of the chain as the board has it.
struct BoardDevice {
    std::vector<std::string> lacking;  ///< pins of the netlist that the package lacks
    std::vector<std::string> unnamed;  ///< pins of the package that the netlist does not name
    /// Whether the test drives and sees its pins; otherwise it stays in BYPASS.
    bool takes_part = false;
};

struct Board {
    std::vector<std::string> problems;  ///< sentences; without any the board can be used
    std::vector<std::string> notes;     ///< sentences that people should know
    std::vector<BoardDevice> devices;   ///< as in the chain
    std::vector<BoardPin> pins;
    std::vector<BoardNet> nets;                        ///< in the order of the netlist
    std::unordered_map<std::string, int> net_by_name;  ///< aliases too

    bool Ok() const { return problems.empty(); }
};

/// Puts chain, netlist and rules together. Devices are the parts of the same names.
///
/// @param chain  has a model of each device, or the length of its instruction register.
/// @param facts  what the file of each device says; null where there is none.
/// @param netlist  one that could be read.
/// @param rules  what it does not tell.
BSCAN_EXPORT Board MakeBoard(const Chain& chain, const std::vector<const Facts*>& facts,
                             const Netlist& netlist, const BoardRules& rules);

/// @return the word for a class, such as "signal".
BSCAN_EXPORT const char* NameOf(NetClass net_class);

}  // namespace bscan
