/// @file
/// Takes any text as the netlist of a board, and holds its test against what hardware relies on.

#include <bscan/board/board_test.h>
#include <bscan/board/diagnosis.h>

#include "fuzz/input.h"
#include "support/chain_device.h"

#include <set>

using namespace bscan;
using bscan::fuzz::Require;

namespace {

struct Devices {
    Devices() {
        chain.Add("U1", first.parser, &first.description.GetFacts());
        chain.Add("X", 3);
        chain.Add("U2", second.parser, &second.description.GetFacts());
        facts = {&first.description.GetFacts(), nullptr, &second.description.GetFacts()};
        rules.through = {"R*"};
        rules.pull_up = {"RU*"};
        rules.pull_down = {"RD*"};
        rules.passive = {"C*", "?"};
        rules.supply = {"VCC*"};
        rules.ground = {"GND*"};
        rules.quiet = {"Q*"};
    }

    test::DescribedDevice first;
    test::DescribedDevice second;
    Chain chain;
    std::vector<const Facts*> facts;
    BoardRules rules;
};

void CheckNetlist(const Netlist& netlist) {
    std::set<std::pair<std::string, std::string>> pins;
    for (const NetlistNet& net : netlist.nets) {
        Require(!net.name.empty() && net.line > 0, "a net has a name and a place");
        for (const NetlistPin& pin : net.pins) {
            Require(pins.insert({pin.part, pin.pin}).second, "a pin is on one net");
        }
    }
}

// The drivers that are on in a scan, counted from its bits: one for each net at most.
void CheckDrivers(const Chain& chain, const Board& board, const ScanBits& bits) {
    std::set<int> driven;
    for (const BoardPin& pin : board.pins) {
        const PinDriver* const driver = chain.Driver(pin.element.device);
        if (driver == nullptr) continue;
        const PinCells cells = driver->Cells(pin.element.element);
        if (cells.output == nullptr) continue;
        const auto bit = [&](const LBScanCell* cell) {
            return bits.Get(chain.BitOf(pin.element.device, cell->GetBoundaryCellPosition()));
        };
        const bool off =
            cells.control != nullptr && bit(cells.control) == (cells.output->disableValue == SIG_1);
        if (off) continue;
        const NetClass net_class = board.nets[static_cast<std::size_t>(pin.net)].net_class;
        Require(net_class == NetClass::kSignal, "only signals are driven");
        Require(driven.insert(pin.net).second, "no net has two drivers");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Devices devices;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const Netlist netlist = ReadNetlist(text);
    Require(netlist.Ok() == (netlist.line == 0), "a fault has a place");
    if (!netlist.Ok()) return 0;
    CheckNetlist(netlist);
    const Board board = MakeBoard(devices.chain, devices.facts, netlist, devices.rules);
    if (!board.Ok()) return 0;
    BoardTest test = PlanBoardTest(devices.chain, board);
    Require(CoverBoard(board, test).size() == board.pins.size(), "every pin is told of");
    if (!test.Ok()) return 0;
    for (const ScanOperation& operation : test.program.operations) {
        if (operation.kind != OperationKind::kDataScan || operation.fields == nullptr) continue;
        if (operation.step < 0) continue;
        CheckDrivers(devices.chain, board, operation.out);
        TakeCapture(test, operation.step, operation.wanted);
        Require(operation.wanted.Size() == test.scan_length, "captures are as long as scans");
    }
    Require(Diagnose(test.record).empty(), "what is wanted is sound");
    return 0;
}
