// Boards of made-up devices, whose test is played through with every single fault in turn.

#include <bscan/board/board_test.h>
#include <bscan/board/diagnosis.h>

#include "support/chain_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace bscan {
namespace {

constexpr const char* kNets = R"(net,part,pin
A,U1,A5
A,U2,A5
A,U3,A5
B,U1,A6
B,U2,A6
B,U3,A6
C,U1,7
C,R1,1
C_FAR,R1,2
C_FAR,U2,7
C_FAR,U3,7
D,U1,8
D,U2,11
E,U2,8
E,U3,11
F,U3,8
F,U1,12
G,U1,9
G,U2,12
G,RP,1
H,U1,10
H,U3,12
I,U2,10
I,U1,11
J,U3,10
J,X1,1
TCK,U1,3
TCK,U2,3
VDD,RP,2
VDD,U1,13
)";

BoardRules Rules() {
    BoardRules rules;
    rules.through = {"R*"};
    rules.pull_up = {"RP"};
    rules.supply = {"VDD"};
    return rules;
}

struct TestBoard {
    explicit TestBoard(const std::string& nets = kNets, const BoardRules& rules = Rules()) {
        std::vector<const Facts*> facts;
        for (int i = 0; i < 3; ++i) {
            chain.Add("U" + std::to_string(i + 1), devices[i].parser,
                      &devices[i].description.GetFacts());
            facts.push_back(&devices[i].description.GetFacts());
        }
        board = MakeBoard(chain, facts, ReadCsvNetlist(nets), rules);
        test = PlanBoardTest(chain, board);
    }

    int Net(const std::string& name) const {
        return test.tested_as[static_cast<std::size_t>(board.net_by_name.at(name))];
    }
    std::string Problem() const {
        return !board.Ok() ? board.problems.front() : test.Ok() ? "" : test.problems.front();
    }

    test::DescribedDevice devices[3];
    Chain chain;
    Board board;
    BoardTest test;
};

// What is broken: by numbers of the board.
struct Broken {
    int open_pin = -1;
    int stuck_net = -1;
    bool stuck_level = false;
    int first = -1;  // nets that touch
    int second = -1;
    ShortWinner winner = ShortWinner::kAnd;
};

// The board as hardware: pins under EXTEST, the nets between them, and what is broken.
class Player {
public:
    Player(TestBoard& board, const Broken& broken, bool floating)
        : b_(board), broken_(broken), floating_(floating) {}

    // Plays the program and takes its captures. Tells where two drivers met.
    std::set<std::string> Play() {
        ScanBits held;
        bool extest = false;
        for (const ScanOperation& operation : b_.test.program.operations) {
            if (operation.kind == OperationKind::kReset) extest = false;
            if (operation.kind == OperationKind::kInstructionScan) {
                extest = operation.out == ScanBits(operation.out.Size());
                if (extest) Settle(held);
            }
            if (operation.kind != OperationKind::kDataScan) continue;
            if (operation.step >= 0) Capture(operation.step);
            held = operation.out;
            if (extest) Settle(held);
        }
        EXPECT_FALSE(extest) << "the pins are free at the end";
        return fights_;
    }

private:
    enum Strength { kOff, kWeak, kStrong };
    struct Level {
        Strength strength = kOff;
        bool high = false;
    };

    Level DriveOf(const BoardPin& pin, const ScanBits& bits) const {
        const PinDriver* const driver = b_.chain.Driver(pin.element.device);
        if (driver == nullptr) return {};
        const PinCells cells = driver->Cells(pin.element.element);
        if (cells.output == nullptr) return {};
        const auto bit = [&](const LBScanCell* cell) {
            return bits.Get(b_.chain.BitOf(pin.element.device, cell->GetBoundaryCellPosition()));
        };
        const bool off =
            cells.control != nullptr && bit(cells.control) == (cells.output->disableValue == SIG_1);
        if (!off) return {kStrong, bit(cells.output)};
        const eSignal result = cells.output->disableResult;
        const bool pulls = result == SIG_WEAK1 || result == SIG_PULL1;
        return {pulls ? kWeak : kOff, pulls};
    }

    void Settle(const ScanBits& bits) {
        levels_.assign(b_.board.nets.size(), {});
        for (std::size_t net = 0; net < levels_.size(); ++net) {
            const auto pulled = b_.board.nets[net].PulledTo();
            if (pulled) levels_[net] = {kWeak, *pulled};
            int strong = 0;
            for (const int pin : b_.board.nets[net].pins) {
                const Level drive = DriveOf(b_.board.pins[static_cast<std::size_t>(pin)], bits);
                strong += drive.strength == kStrong ? 1 : 0;
                alone_[pin] = drive;
                if (pin != broken_.open_pin && drive.strength > levels_[net].strength) {
                    levels_[net] = drive;
                }
            }
            if (strong > 1) fights_.insert(b_.board.nets[net].name);
        }
        if (broken_.first >= 0) Touch();
        if (broken_.stuck_net >= 0) {
            levels_[static_cast<std::size_t>(broken_.stuck_net)] = {kStrong, broken_.stuck_level};
        }
    }

    void Touch() {
        Level& a = levels_[static_cast<std::size_t>(broken_.first)];
        Level& b = levels_[static_cast<std::size_t>(broken_.second)];
        Level both = a.strength >= b.strength ? a : b;
        if (a.strength == b.strength) {
            both.high = broken_.winner == ShortWinner::kAnd  ? a.high && b.high
                        : broken_.winner == ShortWinner::kOr ? a.high || b.high
                                                             : a.high;
        }
        a = b = both;
    }

    void Capture(int number) {
        ScanBits captured(b_.test.scan_length);
        for (std::size_t i = 0; i < b_.test.pin_of.size(); ++i) {
            const int pin = b_.test.pin_of[i];
            const auto net =
                static_cast<std::size_t>(b_.board.pins[static_cast<std::size_t>(pin)].net);
            const Level level = pin == broken_.open_pin ? alone_[pin] : levels_[net];
            const bool seen = level.strength == kOff ? floating_ : level.high;
            captured.Set(b_.test.receiver_bits[i], seen);
        }
        TakeCapture(b_.test, number, captured);
    }

    TestBoard& b_;
    Broken broken_;
    bool floating_;
    std::vector<Level> levels_;
    std::map<int, Level> alone_;
    std::set<std::string> fights_;
};

bool Holds(const std::vector<DiagnosedFault>& found, const Broken& broken, const TestBoard& b) {
    const auto names = [&](const Fault& fault) {
        if (broken.open_pin >= 0) {
            const std::string pin = b.board.pins[static_cast<std::size_t>(broken.open_pin)].Name();
            return fault.kind == FaultKind::kOpen &&
                   std::count(fault.pins.begin(), fault.pins.end(), pin) == 1;
        }
        const auto tested = [&](int net) {
            return b.test.tested_as[static_cast<std::size_t>(net)];
        };
        if (broken.stuck_net >= 0) {
            return fault.kind == FaultKind::kStuck && fault.level == broken.stuck_level &&
                   fault.nets.front() == tested(broken.stuck_net);
        }
        return fault.kind == FaultKind::kShort && fault.winner == broken.winner &&
               std::count(fault.nets.begin(), fault.nets.end(), tested(broken.first)) == 1 &&
               std::count(fault.nets.begin(), fault.nets.end(), tested(broken.second)) == 1;
    };
    return std::any_of(found.begin(), found.end(), [&](const DiagnosedFault& diagnosed) {
        return std::any_of(diagnosed.one_of.begin(), diagnosed.one_of.end(), names);
    });
}

TEST(BoardTest, PlansForEveryKindOfDriver) {
    const TestBoard b;
    ASSERT_EQ(b.Problem(), "");
    // A and B share controls, and C has three drivers.
    EXPECT_EQ(b.test.record.groups.size(), 3u);
    // Codes of nine nets and their complements.
    EXPECT_EQ(b.test.record.nets.size(), 9u);
    EXPECT_EQ(b.test.record.vector_count, 2 * 4);
    EXPECT_EQ(b.board.nets[static_cast<std::size_t>(b.board.net_by_name.at("C_FAR"))].name, "C");
    EXPECT_EQ(b.Net("J"), -1);
    EXPECT_EQ(b.Net("TCK"), -1);
    for (const TestGroup& group : b.test.record.groups) {
        for (const char* const net : {"A", "B", "C", "D", "E", "F", "H", "I"}) {
            EXPECT_GE(group.drivers[static_cast<std::size_t>(b.Net(net))], 0) << net;
        }
    }
    // The pulled net is seen released, too.
    EXPECT_TRUE(std::any_of(
        b.test.record.groups.begin(), b.test.record.groups.end(),
        [&](const TestGroup& g) { return g.drivers[static_cast<std::size_t>(b.Net("G"))] < 0; }));
}

TEST(BoardTest, FindsEverySingleFaultThatIsCovered) {
    TestBoard b;
    const std::vector<PinCoverage> coverage = CoverBoard(b.board, b.test);
    std::vector<Broken> faults;
    for (const PinCoverage& seen : coverage) {
        Broken fault;
        fault.open_pin = seen.pin;
        if (seen.open) faults.push_back(fault);
    }
    EXPECT_EQ(faults.size(), 21u);
    for (const int net : b.test.net_of) {
        Broken fault;
        fault.stuck_net = net;
        faults.push_back(fault);
        fault.stuck_level = true;
        faults.push_back(fault);
        for (const int other : b.test.net_of) {
            if (other == net) continue;
            Broken touch;
            touch.first = net;
            touch.second = other;
            for (const auto winner : {ShortWinner::kAnd, ShortWinner::kOr, ShortWinner::kOneNet}) {
                touch.winner = winner;
                faults.push_back(touch);
            }
        }
    }
    for (const bool floating : {false, true}) {
        EXPECT_TRUE(Player(b, {}, floating).Play().empty());
        EXPECT_TRUE(Diagnose(b.test.record).empty());
        for (const Broken& fault : faults) {
            SCOPED_TRACE(std::to_string(fault.open_pin) + " " + std::to_string(fault.stuck_net) +
                         " " + std::to_string(fault.first) + " " + std::to_string(fault.second));
            EXPECT_TRUE(Player(b, fault, floating).Play().empty());
            EXPECT_TRUE(Holds(Diagnose(b.test.record), fault, b));
        }
    }
}

TEST(BoardTest, ComparesOnlyWhatIsKnown) {
    const TestBoard b;
    for (const ScanOperation& operation : b.test.program.operations) {
        if (operation.step < 0) continue;
        EXPECT_EQ(operation.mask.Size(), operation.out.Size());
        EXPECT_EQ(Compare(operation, operation.wanted).size(), 0u);
        for (const PinCheck& check : operation.checks) EXPECT_TRUE(operation.mask.Get(check.bit));
    }
}

TEST(BoardTest, TellsABrokenChain) {
    TestBoard b;
    int judged = 0;
    for (const ScanOperation& operation : b.test.program.operations) {
        if (operation.fields == nullptr || operation.mask.Empty() || operation.step >= 0) continue;
        if (operation.kind != OperationKind::kDataScan) continue;
        ++judged;
        const int size = operation.out.Size();
        EXPECT_EQ(JudgeIntegrity(b.chain, operation, operation.wanted), "");
        for (const bool level : {false, true}) {
            EXPECT_NE(JudgeIntegrity(b.chain, operation, ScanBits(size, level)), "");
        }
        ScanBits early = operation.wanted.Slice(1, size - 1);
        early.Append(ScanBits(1));
        EXPECT_NE(JudgeIntegrity(b.chain, operation, early).find("missing"), std::string::npos);
        ScanBits late(1);
        late.Append(operation.wanted.Slice(0, size - 1));
        EXPECT_NE(JudgeIntegrity(b.chain, operation, late), "");
    }
    EXPECT_EQ(judged, 3);
}

struct Refusal {
    const char* nets;  // behind kNets
    void (*change)(BoardRules&);
    const char* problem;
};

TEST(BoardTest, RefusesWhatWouldFightOrCannotHold) {
    const Refusal cases[] = {
        {"", [](BoardRules& r) { r.quiet = {"D"}; },
         "U1.8 always drives under EXTEST, and net D must not be driven (quiet)."},
        {"K,U1,8\n", [](BoardRules&) {}, "Pin '8' of 'U1' is on the nets 'D' and 'K'."},
        {"D,X2,5\n", [](BoardRules&) {},
         "U1.8 always drives under EXTEST, and net D must not be driven (foreign)."},
        {"D,X2,5\n", [](BoardRules& r) { r.drive = {"?"}; }, ""},
        {"",
         [](BoardRules& r) {
             r.hold = {{"J", true}};
         },
         ""},
        {"",
         [](BoardRules& r) {
             r.hold = {{"TCK", true}};
         },
         "Net TCK is to be held and is of class tap."},
        {"",
         [](BoardRules& r) {
             r.hold = {{"Z", true}};
         },
         "There is no net Z that could be held."},
        {"K,U2,12\nK,X,1\n", [](BoardRules&) {}, "Pin '12' of 'U2' is on the nets 'G' and 'K'."},
        {"K,X,1\n",
         [](BoardRules& r) {
             r.hold = {{"K", false}};
         },
         "No pin can hold net K at 0."},
        {"",
         [](BoardRules& r) {
             r.hold = {{"A", true}};
             r.quiet = {"A"};
         },
         "Net A is to be held and never to be driven."},
    };
    for (const Refusal& c : cases) {
        BoardRules rules = Rules();
        c.change(rules);
        EXPECT_EQ(TestBoard(std::string(kNets) + c.nets, rules).Problem(), c.problem) << c.nets;
    }
    const std::string one_net = "net,part,pin\nD,U1,8\nD,U2,8\nD,U3,11\n";
    EXPECT_EQ(TestBoard(one_net).Problem(),
              "U1.8 and U2.8 always drive under EXTEST, and both are on net D.");
}

// The control of IO turns on both of its pins, so neither is driven when one must not be.
TEST(BoardTest, LeavesControlsOffThatReachTooFar) {
    BoardRules rules = Rules();
    rules.quiet = {"B"};
    TestBoard b(kNets, rules);
    EXPECT_EQ(b.Problem(), "");
    EXPECT_EQ(b.Net("A"), -1);
    EXPECT_EQ(b.test.reasons[static_cast<std::size_t>(b.board.net_by_name.at("A"))],
              Untested::kControl);
    EXPECT_TRUE(Player(b, {}, false).Play().empty());

    // A held net keeps the shared control on in every group, and the others of its nets off.
    rules = Rules();
    rules.hold = {{"B", true}};
    TestBoard held(kNets, rules);
    EXPECT_EQ(held.Problem(), "");
    std::set<int> drivers;
    for (const TestGroup& group : held.test.record.groups) {
        drivers.insert(group.drivers[static_cast<std::size_t>(held.Net("A"))]);
    }
    EXPECT_EQ(drivers.size(), 1u);
    EXPECT_TRUE(Player(held, {}, false).Play().empty());
}

}  // namespace
}  // namespace bscan
