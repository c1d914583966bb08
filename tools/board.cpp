// bscan board: what is known of a board, and what a test of it would see.

#include <bscan/board/board_test.h>

#include "board_file.h"
#include "commands.h"
#include "printable.h"
#include "table.h"
#include "terminal.h"

#include <fmt/format.h>

#include <map>

namespace tool {
namespace {

using bscan::PinCoverage;
using bscan::Untested;

const char* ReasonText(const PinCoverage& pin, const bscan::Board& board) {
    const auto net = static_cast<std::size_t>(board.pins[static_cast<std::size_t>(pin.pin)].net);
    switch (pin.reason) {
        case Untested::kNo:
            return nullptr;
        case Untested::kClass:
            return bscan::NameOf(board.nets[net].net_class);
        case Untested::kOnePin:
            return "one-pin";
        case Untested::kNoDriver:
            return "no-driver";
        case Untested::kControl:
            return "control";
        case Untested::kNoReceiver:
            return "no-receiver";
        case Untested::kNoCell:
            return "no-cell";
    }
    return nullptr;
}

Json TextOrNull(const char* text) { return text == nullptr ? Json() : Json(text); }

class BoardReport {
public:
    BoardReport(const LoadedBoard& loaded, const bscan::BoardTest& test)
        : chain_(loaded.devices.chain),
          board_(loaded.board),
          test_(test),
          coverage_(bscan::CoverBoard(loaded.board, test)) {}

    Table DeviceTable() const {
        Table table{{{"part", "Device"},
                     {"component", "Component"},
                     {"package", "Package"},
                     {"tested", "Tested"},
                     {"lacking", "Pins that the package lacks"},
                     {"unnamed", "Pins that the netlist lacks"}},
                    {}};
        for (std::size_t i = 0; i < board_.devices.size(); ++i) {
            const bscan::ChainDevice& device = chain_.Device(static_cast<int>(i));
            table.rows.push_back({device.name, device.component, device.package,
                                  board_.devices[i].takes_part, board_.devices[i].lacking,
                                  board_.devices[i].unnamed});
        }
        return table;
    }

    Table ClassTable() const {
        std::map<bscan::NetClass, std::vector<std::string>> names;
        for (const bscan::BoardNet& net : board_.nets) names[net.net_class].push_back(net.name);
        Table table{{{"class", "Class"}, {"count", "Nets"}, {"names", "Names"}}, {}};
        for (const auto& [net_class, nets] : names) {
            table.rows.push_back({bscan::NameOf(net_class), nets.size(), nets});
        }
        return table;
    }

    Table CoverageTable() const {
        Table table{{{"net", "Net"},
                     {"class", "Class"},
                     {"part", "Part"},
                     {"pin", "Pin"},
                     {"port", "Port"},
                     {"open", "Open"},
                     {"stuck", "Stuck"},
                     {"short", "Short"},
                     {"reason", "Reason"}},
                    {}};
        for (const bscan::BoardNet& net : board_.nets) {
            for (const int pin : net.pins) {
                const bscan::BoardPin& placed = board_.pins[static_cast<std::size_t>(pin)];
                const PinCoverage& seen = coverage_[static_cast<std::size_t>(pin)];
                table.rows.push_back({net.name, bscan::NameOf(net.net_class), placed.part,
                                      placed.pin, PortOf(placed), seen.open, seen.stuck,
                                      seen.short_, TextOrNull(ReasonText(seen, board_))});
            }
        }
        return table;
    }

    Json CoverageJson() const {
        Json nets = Json::array();
        for (const bscan::BoardNet& net : board_.nets) {
            Json pins = Json::array();
            for (const int pin : net.pins) {
                const bscan::BoardPin& placed = board_.pins[static_cast<std::size_t>(pin)];
                const PinCoverage& seen = coverage_[static_cast<std::size_t>(pin)];
                pins.push_back({{"part", placed.part},
                                {"pin", placed.pin},
                                {"port", PortOf(placed)},
                                {"open", seen.open},
                                {"stuck", seen.stuck},
                                {"short", seen.short_},
                                {"reason", TextOrNull(ReasonText(seen, board_))}});
            }
            nets.push_back({{"name", net.name},
                            {"class", bscan::NameOf(net.net_class)},
                            {"pins", std::move(pins)}});
        }
        return {{"nets", std::move(nets)}, {"totals", Totals()}};
    }

    // Pins on supplies and ground have nothing to test, and are not counted.
    Json Totals() const {
        int pins = 0;
        int open = 0;
        int stuck = 0;
        int touch = 0;
        for (const PinCoverage& seen : coverage_) {
            const auto net =
                static_cast<std::size_t>(board_.pins[static_cast<std::size_t>(seen.pin)].net);
            if (board_.nets[net].net_class <= bscan::NetClass::kGround) continue;
            ++pins;
            open += seen.open ? 1 : 0;
            stuck += seen.stuck ? 1 : 0;
            touch += seen.short_ ? 1 : 0;
        }
        const auto percent = [&](int part) {
            return pins == 0 ? 0.0 : static_cast<int>(part * 1000.0 / pins) / 10.0;
        };
        return {{"nets", board_.nets.size()},
                {"tested_nets", test_.record.nets.size()},
                {"pins", pins},
                {"open", open},
                {"stuck", stuck},
                {"short", touch},
                {"open_percent", percent(open)},
                {"stuck_percent", percent(stuck)},
                {"short_percent", percent(touch)},
                {"groups", test_.record.groups.size()},
                {"vectors", test_.CaptureCount()}};
    }

private:
    Json PortOf(const bscan::BoardPin& pin) const {
        const std::string label = chain_.Label(pin.element);
        return label.empty() ? Json() : Json(label.substr(pin.part.size() + 1));
    }

    const bscan::Chain& chain_;
    const bscan::Board& board_;
    const bscan::BoardTest& test_;
    std::vector<PinCoverage> coverage_;
};

void PrintTotals(const Json& totals) {
    Write(stdout,
          fmt::format("\n{} of {} nets are tested, in {} vectors of {} groups. Of {} pins:\n",
                      totals["tested_nets"].get<int>(), totals["nets"].get<int>(),
                      totals["vectors"].get<int>(), totals["groups"].get<int>(),
                      totals["pins"].get<int>()));
    for (const char* const kind : {"open", "stuck", "short"}) {
        Write(stdout, fmt::format("  {:<6} {:>6} {:>6.1f} %\n", kind, totals[kind].get<int>(),
                                  totals[std::string(kind) + "_percent"].get<double>()));
    }
}

void PrintForPeople(const BoardReport& report) {
    Print(stdout, report.DeviceTable(), Format::kTable);
    Write(stdout, "\n");
    Print(stdout, report.ClassTable(), Format::kTable);
    Write(stdout, "\n");
    Print(stdout, report.CoverageTable(), Format::kTable);
    PrintTotals(report.Totals());
}

}  // namespace

int Board(const BoardOptions& options) {
    LoadedBoard loaded;
    if (!LoadBoard("board", options.file, loaded)) return kUsage;
    const bscan::BoardTest test = bscan::PlanBoardTest(loaded.devices.chain, loaded.board);
    const BoardReport report(loaded, test);
    if (options.devices) {
        if (options.format == Format::kJson) {
            Print(stdout, Json{{"devices", ToJson(report.DeviceTable())}}, 2);
        } else {
            Print(stdout, report.DeviceTable(), options.format);
        }
    } else if (options.format == Format::kJson) {
        Print(stdout, report.CoverageJson(), 2);
    } else if (options.format == Format::kCsv) {
        Print(stdout, report.CoverageTable(), Format::kCsv);
    } else {
        PrintForPeople(report);
    }
    for (const std::string& problem : test.problems) {
        Write(stderr, fmt::format("bscan board: it cannot be tested: {}\n", Printable(problem)));
    }
    return test.Ok() ? kSuccess : kUsage;
}

}  // namespace tool
