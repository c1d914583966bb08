#include <bscan/board/netlist.h>

#include "board/netlist_builder.h"
#include "support/border.h"

namespace bscan {
namespace detail {
namespace {

// Text of a file in a message.
std::string Quoted(std::string_view text) {
    constexpr std::size_t kMost = 60;
    return "'" + std::string(text.substr(0, kMost)) + "'";
}

}  // namespace

void NetlistBuilder::Fail(int line, std::string problem) {
    if (!Ok()) return;
    netlist_.problem = std::move(problem);
    netlist_.line = line;
}

int NetlistBuilder::Net(std::string_view name, int line) {
    if (name.empty()) Fail(line, "A net has no name.");
    const int next = static_cast<int>(netlist_.nets.size());
    const auto [found, is_new] = by_name_.emplace(name, next);
    if (is_new) netlist_.nets.push_back({std::string(name), line, {}});
    return found->second;
}

void NetlistBuilder::Add(int net, std::string_view part, std::string_view pin, int line) {
    if (part.empty()) return Fail(line, "A pin names no part.");
    if (pin.empty()) return Fail(line, "A pin of " + Quoted(part) + " has no designator.");
    // The length keeps A.B + C and A + B.C apart.
    std::string key = std::to_string(part.size()) + ' ';
    key.append(part).append(pin);
    NetlistNet& joined = netlist_.nets[static_cast<std::size_t>(net)];
    const auto [found, is_new] = net_of_pin_.emplace(std::move(key), net);
    if (is_new) {
        joined.pins.push_back({std::string(part), std::string(pin)});
    } else if (found->second != net) {
        const auto other = static_cast<std::size_t>(found->second);
        Fail(line, "Pin " + Quoted(pin) + " of " + Quoted(part) + " is on the nets " +
                       Quoted(netlist_.nets[other].name) + " and " + Quoted(joined.name) + ".");
    }
}

std::string_view WithoutMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.substr(0, kMark.size()) == kMark ? text.substr(kMark.size()) : text;
}

}  // namespace detail

Netlist ReadNetlist(std::string_view text) {
    const std::size_t first = detail::WithoutMark(text).find_first_not_of(" \t\r\n");
    const bool kicad = first != std::string_view::npos && detail::WithoutMark(text)[first] == '(';
    return kicad ? ReadKicadNetlist(text) : ReadCsvNetlist(text);
}

}  // namespace bscan
