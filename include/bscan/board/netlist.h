/// @file
/// The nets of a board, as layout programs write them.
#pragma once

#include <bscan/export.h>

#include <string>
#include <string_view>
#include <vector>

namespace bscan {

/// A pin of a part of the board.
struct NetlistPin {
    std::string part;  ///< reference, such as U1
    std::string pin;   ///< designator, such as B3
};

struct NetlistNet {
    std::string name;
    int line = 0;  ///< where it is named first, from 1
    std::vector<NetlistPin> pins;
};

/// What a netlist says, or why it says nothing.
struct Netlist {
    std::vector<NetlistNet> nets;  ///< in the order of the text; each pin is on one net
    std::string problem;           ///< what is wrong in a sentence; empty when nothing is
    int line = 0;                  ///< where, from 1

    bool Ok() const { return problem.empty(); }
};

/// Longest netlist that is read, in bytes.
inline constexpr std::size_t kMaxNetlistLength = std::size_t{256} << 20;

/// Reads the S-expressions that KiCad exports: (export ... (nets (net (name "A") (node (ref "U1")
/// (pin "B3"))))). Other lists are passed over. Time is linear in the text.
BSCAN_EXPORT Netlist ReadKicadNetlist(std::string_view text);

/// Reads comma-separated values. The first line names the columns; those called net, part and pin
/// count, in any order and letter case. A field may be quoted, a quote in it is doubled. Empty
/// lines are passed over. Time is linear in the text.
BSCAN_EXPORT Netlist ReadCsvNetlist(std::string_view text);

/// Reads either: a text that begins with a parenthesis is KiCad's.
BSCAN_EXPORT Netlist ReadNetlist(std::string_view text);

}  // namespace bscan
