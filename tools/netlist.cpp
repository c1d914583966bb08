// bscan netlist: the nets of a board as they were read.

#include <bscan/board/netlist.h>

#include "board_file.h"
#include "commands.h"
#include "printable.h"
#include "table.h"

#include <fmt/format.h>

namespace tool {
namespace {

Json PinNames(const bscan::NetlistNet& net) {
    Json names = Json::array();
    for (const bscan::NetlistPin& pin : net.pins) names.push_back(pin.part + "." + pin.pin);
    return names;
}

Table NetTable(const bscan::Netlist& netlist) {
    Table table{{{"net", "Net"}, {"pins", "Pins"}}, {}};
    for (const bscan::NetlistNet& net : netlist.nets) {
        table.rows.push_back({net.name, PinNames(net)});
    }
    return table;
}

// As a netlist in CSV, which can be read again.
Table PinRows(const bscan::Netlist& netlist) {
    Table table{{{"net", "Net"}, {"part", "Part"}, {"pin", "Pin"}}, {}};
    for (const bscan::NetlistNet& net : netlist.nets) {
        for (const bscan::NetlistPin& pin : net.pins) {
            table.rows.push_back({net.name, pin.part, pin.pin});
        }
    }
    return table;
}

Json ToJson(const bscan::Netlist& netlist) {
    Json nets = Json::array();
    for (const bscan::NetlistNet& net : netlist.nets) {
        Json pins = Json::array();
        for (const bscan::NetlistPin& pin : net.pins) {
            pins.push_back({{"part", pin.part}, {"pin", pin.pin}});
        }
        nets.push_back({{"name", net.name}, {"line", net.line}, {"pins", std::move(pins)}});
    }
    return {{"nets", std::move(nets)}};
}

}  // namespace

int Netlist(const NetlistOptions& options) {
    const std::optional<std::string> text = ReadWholeFile(options.file);
    if (!text) {
        Write(stderr, fmt::format("bscan netlist: cannot read {}\n", Printable(options.file)));
        return kProblem;
    }
    const bscan::Netlist netlist = bscan::ReadNetlist(*text);
    if (!netlist.Ok()) {
        Write(stderr, fmt::format("bscan netlist: {}:{}: {}\n", Printable(options.file),
                                  netlist.line, Printable(netlist.problem)));
        return kProblem;
    }
    if (options.format == Format::kJson) {
        Print(stdout, ToJson(netlist), 2);
    } else {
        Print(stdout, options.format == Format::kCsv ? PinRows(netlist) : NetTable(netlist),
              options.format);
    }
    return kSuccess;
}

}  // namespace tool
