// Gathers a netlist pin by pin.
#pragma once

#include <bscan/board/netlist.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace bscan::detail {

// Keeps the first fault; what comes after it is of no use.
class NetlistBuilder {
public:
    bool Ok() const { return netlist_.problem.empty(); }

    void Fail(int line, std::string problem);

    // The net of that name, made where there is none. A name must not be empty.
    int Net(std::string_view name, int line);
    // Puts a pin on a net. It may be named there again, and on no other net.
    void Add(int net, std::string_view part, std::string_view pin, int line);

    Netlist Take() { return std::move(netlist_); }

private:
    Netlist netlist_;
    std::unordered_map<std::string, int> by_name_;
    std::unordered_map<std::string, int> net_of_pin_;
};

// The text behind a byte order mark.
std::string_view WithoutMark(std::string_view text);

}  // namespace bscan::detail
