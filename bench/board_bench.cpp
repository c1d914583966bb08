// Time for the test of a board of 1,250 to 10,000 nets on the devices of ../shared/devices: its
// vectors, its coverage, and the diagnosis of 20 faults.

#include <bscan/board/board_test.h>
#include <bscan/board/diagnosis.h>
#include <bscan/description.h>

#include "files.h"
#include "stopwatch.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

namespace {

using namespace bscan;
using bscan::bench::Seconds;

struct Model {
    explicit Model(const std::string& path) : description(Description::Read(path.c_str())) {
        filled = description.Result() == kOk && description.Fill(parser) == kOk;
    }

    Description description;
    BScanParser parser;
    bool filled = false;
};

// A board whose nets have two pins, every fourth three.
struct GeneratedBoard {
    explicit GeneratedBoard(int nets) {
        const std::vector<std::string> files = bench::DeviceFilesIn(BSCAN_DEVICES_DIR).paths;
        std::vector<NetlistPin> pins;
        const std::size_t wanted = static_cast<std::size_t>(nets) * 9 / 4 + 1;
        std::size_t before = 0;
        for (std::size_t i = 0; pins.size() < wanted && !files.empty(); ++i) {
            if (i % files.size() == 0 && i > 0) {
                if (pins.size() == before) return;
                before = pins.size();
            }
            AddDevice(files[i % files.size()], pins);
        }
        if (pins.size() < wanted) return;
        std::shuffle(pins.begin(), pins.end(), std::mt19937(1));
        for (int n = 0; n < nets; ++n) {
            NetlistNet& net = netlist.nets.emplace_back();
            net.name = "N" + std::to_string(n);
            net.line = n + 1;
            for (int p = 0; p < (n % 4 == 0 ? 3 : 2); ++p) {
                net.pins.push_back(pins.back());
                pins.pop_back();
            }
        }
    }

    // Takes the pins that drive and receive, when there are many.
    void AddDevice(const std::string& path, std::vector<NetlistPin>& pins) {
        constexpr std::size_t kFewest = 200;
        auto model = std::make_unique<Model>(path);
        const std::string name = "U" + std::to_string(chain.DeviceCount() + 1);
        if (!model->filled) return;
        const PinDriver driver(*model->parser.GetPinMap());
        std::vector<NetlistPin> found;
        for (int element = 0; element < driver.ElementCount(); ++element) {
            const PinCells cells = driver.Cells(element);
            const char* const pin = PinName(*driver.Node(element));
            if (cells.receiver == nullptr || cells.control == nullptr || pin == nullptr) continue;
            if (driver.SharedWith(element).size() == 1) found.push_back({name, pin});
        }
        if (found.size() < kFewest) return;
        const Facts& about = model->description.GetFacts();
        if (!chain.Add(name, model->parser, &about).Ok()) return;
        pins.insert(pins.end(), found.begin(), found.end());
        facts.push_back(&about);
        models.push_back(std::move(model));
    }

    std::vector<std::unique_ptr<Model>> models;
    std::vector<const Facts*> facts;
    Chain chain;
    Netlist netlist;
};

// What a sound board shows, with every 20th part of the nets stuck, short or open.
void PlayFaults(BoardTest& test) {
    for (const ScanOperation& operation : test.program.operations) {
        if (operation.step >= 0) TakeCapture(test, operation.step, operation.wanted);
    }
    constexpr std::size_t kFaults = 20;
    const std::size_t nets = test.record.nets.size();
    for (std::size_t fault = 0; fault < kFaults; ++fault) {
        const TestNet& net = test.record.nets[fault * nets / kFaults];
        const TestNet& other = test.record.nets[fault * nets / kFaults + 1];
        for (TestGroup& group : test.record.groups) {
            for (const int pin : net.pins) {
                TestWord& seen = group.seen[static_cast<std::size_t>(pin)];
                if (fault % 2 == 0) seen = 0;
                if (fault % 2 == 1) seen = net.code & other.code;
            }
            for (const int pin : other.pins) {
                if (fault % 2 == 1) {
                    group.seen[static_cast<std::size_t>(pin)] = net.code & other.code;
                }
            }
        }
    }
}

}  // namespace

int main() {
    std::printf("%8s %8s %8s %12s %12s %12s %8s\n", "nets", "devices", "vectors", "vectors s",
                "coverage s", "diagnosis s", "faults");
    for (const int nets : {1250, 2500, 5000, 10000}) {
        GeneratedBoard made(nets);
        if (made.netlist.nets.empty()) {
            std::puts("the devices are not there: skipped");
            return 0;
        }
        BoardTest test;
        Board board;
        const double vectors = Seconds([&] {
            board = MakeBoard(made.chain, made.facts, made.netlist, {});
            test = PlanBoardTest(made.chain, board);
        });
        if (!board.Ok() || !test.Ok()) {
            std::puts(board.Ok() ? test.problems.front().c_str() : board.problems.front().c_str());
            return 1;
        }
        const double coverage = Seconds([&] { CoverBoard(board, test); });
        PlayFaults(test);
        std::size_t faults = 0;
        const double diagnosis = Seconds([&] { faults = Diagnose(test.record).size(); });
        std::printf("%8d %8d %8d %12.3f %12.3f %12.3f %8zu\n", nets, made.chain.DeviceCount(),
                    test.CaptureCount(), vectors, coverage, diagnosis, faults);
    }
    return 0;
}
