// Boards with known faults, played through vector by vector, and what the diagnosis says of them.

#include <bscan/board/diagnosis.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>

namespace bscan {
namespace {

// A board of nets with two to four pins, some with pulls, some cut by a through part.
TestRecord RandomBoard(std::mt19937& random, int nets) {
    TestRecord record;
    int bits = 1;
    while ((1 << bits) < nets + 2) ++bits;
    record.vector_count = 2 * bits;
    std::vector<std::vector<int>> drivers(static_cast<std::size_t>(nets));
    const auto chance = [&](int percent) { return static_cast<int>(random() % 100) < percent; };
    for (int n = 0; n < nets; ++n) {
        TestNet net;
        net.name = "N" + std::to_string(n);
        const auto code = static_cast<TestWord>(n + 1);
        net.code = code | ((~code & ((TestWord{1} << bits) - 1)) << bits);
        const int count = 2 + static_cast<int>(random() % 3);
        const bool cut = chance(20);
        for (int p = 0; p < count; ++p) {
            TestPin pin;
            pin.name = "U" + std::to_string(p) + ".P" + std::to_string(n);
            pin.net = n;
            pin.segment = cut && p >= count / 2 ? 1 : 0;
            const bool drives = p == 0 || chance(30);
            pin.receives = !drives || chance(50);
            const int number = static_cast<int>(record.pins.size());
            if (drives) drivers[static_cast<std::size_t>(n)].push_back(number);
            net.pins.push_back(number);
            record.pins.push_back(pin);
        }
        record.pins.back().receives = true;
        if (cut) net.through.push_back({"R" + net.name + ".1", "R" + net.name + ".2", 0, 1});
        if (chance(20)) net.pulls.push_back({"RP" + net.name + ".1", 0, chance(50)});
        record.nets.push_back(net);
    }
    for (std::size_t g = 0; g < 4; ++g) {
        TestGroup group;
        for (const std::vector<int>& choice : drivers) {
            const bool released = g == 3 || g >= choice.size();
            group.drivers.push_back(released ? (g == 3 ? -1 : choice.front()) : choice[g]);
        }
        group.seen.resize(record.pins.size());
        record.groups.push_back(group);
    }
    return record;
}

// One vector of one group on a board with faults. Nodes are the segments and pins of all nets.
class Board {
public:
    Board(const TestRecord& record, const std::vector<Fault>& faults, int floating)
        : record_(record), faults_(faults), floating_(floating) {}

    bool Level(const TestGroup& group, int vector, int pin) const {
        const TestPin& described = record_.pins[static_cast<std::size_t>(pin)];
        const int driver = group.drivers[static_cast<std::size_t>(described.net)];
        if (LostItsNet(pin)) {
            return pin == driver ? Bit(described.net, vector) : floating_ != 0;
        }
        const int own = Lone(group, vector, described.net, described.segment);
        if (!TouchesOthers(described.net, described.segment)) return Known(own);
        for (const Fault& fault : faults_) {
            if (fault.kind != FaultKind::kShort || !Has(fault.nets, described.net)) continue;
            return Known(Touching(group, vector, fault));
        }
        return Known(own);
    }

private:
    // Levels: -1 floats, 0 and 1 pulled, 2 and 3 driven, 4 and 5 stuck.
    bool Known(int level) const { return level < 0 ? floating_ != 0 : (level & 1) != 0; }
    static bool Has(const std::vector<int>& nets, int net) {
        return std::find(nets.begin(), nets.end(), net) != nets.end();
    }
    bool Bit(int net, int vector) const {
        return (record_.nets[static_cast<std::size_t>(net)].code >> vector & 1) != 0;
    }
    bool IsOpen(const std::string& pin) const {
        return std::any_of(faults_.begin(), faults_.end(), [&](const Fault& fault) {
            return fault.kind == FaultKind::kOpen && fault.pins.front() == pin;
        });
    }
    bool LostItsNet(int pin) const {
        return IsOpen(record_.pins[static_cast<std::size_t>(pin)].name);
    }
    bool TouchesOthers(int net, int segment) const { return Joined(net, segment, 0); }
    bool Joined(int net, int a, int b) const {
        const TestNet& described = record_.nets[static_cast<std::size_t>(net)];
        return a == b || !IsOpen(described.through.front().first_pin);
    }

    int Lone(const TestGroup& group, int vector, int net, int segment) const {
        const TestNet& described = record_.nets[static_cast<std::size_t>(net)];
        for (const Fault& fault : faults_) {
            if (fault.kind == FaultKind::kStuck && fault.nets.front() == net) {
                return fault.level ? 5 : 4;
            }
        }
        const int driver = group.drivers[static_cast<std::size_t>(net)];
        if (driver >= 0 && !LostItsNet(driver) &&
            Joined(net, record_.pins[static_cast<std::size_t>(driver)].segment, segment)) {
            return Bit(net, vector) ? 3 : 2;
        }
        for (const TestPull& pull : described.pulls) {
            if (!IsOpen(pull.pin) && Joined(net, pull.segment, segment)) return pull.level ? 1 : 0;
        }
        return -1;
    }

    int Touching(const TestGroup& group, int vector, const Fault& fault) const {
        std::vector<int> levels;
        for (const int net : fault.nets) levels.push_back(Lone(group, vector, net, 0));
        const int strongest = *std::max_element(levels.begin(), levels.end()) / 2;
        if (*std::max_element(levels.begin(), levels.end()) < 0) return -1;
        if (fault.winner == ShortWinner::kOneNet && levels.front() >= 0 &&
            levels.front() / 2 == strongest) {
            return levels.front();
        }
        int result = -1;
        for (const int level : levels) {
            if (level < 0 || level / 2 != strongest) continue;
            const bool first = result < 0;
            const bool wins = fault.winner == ShortWinner::kOr ? level > result : level < result;
            if (first || wins) result = level;
        }
        return result;
    }

    const TestRecord& record_;
    const std::vector<Fault>& faults_;
    int floating_;
};

void Play(TestRecord& record, const std::vector<Fault>& faults, int floating) {
    const Board board(record, faults, floating);
    for (TestGroup& group : record.groups) {
        for (std::size_t pin = 0; pin < record.pins.size(); ++pin) {
            group.seen[pin] = 0;
            for (int v = 0; v < record.vector_count; ++v) {
                const bool level = board.Level(group, v, static_cast<int>(pin));
                group.seen[pin] |= static_cast<TestWord>(level ? 1 : 0) << v;
            }
        }
    }
}

std::vector<TestWord> SeenBy(const TestRecord& record) {
    std::vector<TestWord> words;
    for (const TestGroup& group : record.groups) {
        for (std::size_t pin = 0; pin < record.pins.size(); ++pin) {
            if (record.pins[pin].receives) words.push_back(group.seen[pin]);
        }
    }
    return words;
}

std::vector<Fault> SingleFaults(const TestRecord& record, std::mt19937& random) {
    std::vector<Fault> faults;
    for (int net = 0; net < static_cast<int>(record.nets.size()); ++net) {
        const TestNet& described = record.nets[static_cast<std::size_t>(net)];
        const auto open = [&](const std::string& pin) {
            Fault fault;
            fault.nets = {net};
            fault.pins = {pin};
            faults.push_back(fault);
        };
        for (const int pin : described.pins) {
            open(record.pins[static_cast<std::size_t>(pin)].name);
        }
        for (const TestPull& pull : described.pulls) open(pull.pin);
        // An open in a part between the only two pins lies between those, and is told so.
        const bool two_ends = described.pins.size() + described.pulls.size() == 2;
        for (const TestThrough& part : described.through) {
            if (!two_ends) open(part.first_pin);
        }
        Fault stuck;
        stuck.kind = FaultKind::kStuck;
        stuck.nets = {net};
        faults.push_back(stuck);
        stuck.level = true;
        faults.push_back(stuck);
        Fault touch;
        touch.kind = FaultKind::kShort;
        const int other = static_cast<int>(random() % record.nets.size());
        if (other == net) continue;
        for (const auto winner : {ShortWinner::kAnd, ShortWinner::kOr, ShortWinner::kOneNet}) {
            touch.winner = winner;
            touch.nets = {std::min(net, other), std::max(net, other)};
            if (winner == ShortWinner::kOneNet && random() % 2 == 0) {
                std::swap(touch.nets[0], touch.nets[1]);
            }
            faults.push_back(touch);
        }
    }
    return faults;
}

std::string Text(const Fault& fault) {
    constexpr const char* kWinners[] = {"and", "or", "first"};
    std::string text = fault.kind == FaultKind::kOpen ? "open" : "stuck";
    if (fault.kind == FaultKind::kStuck) text += fault.level ? " 1" : " 0";
    if (fault.kind == FaultKind::kShort) text = kWinners[static_cast<int>(fault.winner)];
    for (const int net : fault.nets) text += " N" + std::to_string(net);
    for (const std::string& pin : fault.pins) text += " " + pin;
    return text;
}

std::string Text(const std::vector<DiagnosedFault>& found) {
    std::string text;
    for (const DiagnosedFault& diagnosed : found) {
        text += "\n  one of";
        for (const Fault& fault : diagnosed.one_of) text += "; " + Text(fault);
    }
    return text;
}

// Whether a reported fault is the injected one: of an open, one of its pins suffices.
bool Names(const Fault& reported, const Fault& injected) {
    if (reported.kind != injected.kind || reported.nets != injected.nets) return false;
    if (reported.kind == FaultKind::kStuck) return reported.level == injected.level;
    if (reported.kind == FaultKind::kShort) return reported.winner == injected.winner;
    return std::find(reported.pins.begin(), reported.pins.end(), injected.pins.front()) !=
           reported.pins.end();
}

TEST(Diagnosis, FindsNothingOnASoundBoard) {
    std::mt19937 random(1);
    for (int board = 0; board < 20; ++board) {
        TestRecord record = RandomBoard(random, 30);
        Play(record, {}, board % 2);
        EXPECT_TRUE(Diagnose(record).empty());
    }
}

TEST(Diagnosis, NamesEverySingleFaultOrGivesItAmongOthers) {
    std::mt19937 random(2);
    int alone = 0;
    int unique = 0;
    for (int board = 0; board < 12; ++board) {
        TestRecord record = RandomBoard(random, 25);
        const int floating = board % 2;
        Play(record, {}, floating);
        const std::vector<TestWord> sound = SeenBy(record);
        const std::vector<Fault> faults = SingleFaults(record, random);
        std::map<std::vector<TestWord>, int> how_often;
        for (const Fault& fault : faults) {
            for (const int level : {0, 1}) {
                Play(record, {fault}, level);
                ++how_often[SeenBy(record)];
            }
        }
        for (std::size_t i = 0; i < faults.size(); ++i) {
            SCOPED_TRACE("board " + std::to_string(board) + ", fault " + std::to_string(i));
            Play(record, {faults[i]}, floating);
            const std::vector<TestWord> seen = SeenBy(record);
            const std::vector<DiagnosedFault> found = Diagnose(record);
            if (seen == sound || found.empty()) continue;
            ASSERT_EQ(found.size(), 1u);
            EXPECT_TRUE(std::any_of(found[0].one_of.begin(), found[0].one_of.end(),
                                    [&](const Fault& fault) { return Names(fault, faults[i]); }))
                << Text(faults[i]) << Text(found);
            EXPECT_TRUE(found[0].certain);
            if (how_often[seen] > 1) continue;
            ++unique;
            alone += found[0].one_of.size() == 1 ? 1 : 0;
        }
    }
    EXPECT_GT(unique, 100);
    EXPECT_GE(alone * 100, unique * 95) << alone << " of " << unique;
}

TEST(Diagnosis, FindsBothOfTwoFaults) {
    std::mt19937 random(3);
    int both = 0;
    constexpr int kRuns = 300;
    for (int run = 0; run < kRuns; ++run) {
        TestRecord record = RandomBoard(random, 25);
        const std::vector<Fault> faults = SingleFaults(record, random);
        const Fault& first = faults[random() % faults.size()];
        const Fault& second = faults[random() % faults.size()];
        Play(record, {}, 0);
        const std::vector<TestWord> sound = SeenBy(record);
        Play(record, {first, second}, 0);
        const std::vector<DiagnosedFault> found = Diagnose(record);
        int named = 0;
        for (const Fault* fault : {&first, &second}) {
            named += std::any_of(found.begin(), found.end(), [&](const DiagnosedFault& diagnosed) {
                return std::any_of(diagnosed.one_of.begin(), diagnosed.one_of.end(),
                                   [&](const Fault& f) { return Names(f, *fault); });
            });
        }
        both += named == 2 ? 1 : 0;
    }
    EXPECT_GE(both * 100, kRuns * 90) << both << " of " << kRuns;
}

// Words without any sense: a broken chain, a wrong capture file.
TEST(Diagnosis, EndsOnRandomWords) {
    std::mt19937 random(4);
    for (int board = 0; board < 5; ++board) {
        TestRecord record = RandomBoard(random, 40);
        for (TestGroup& group : record.groups) {
            for (TestWord& word : group.seen) word = random() & record.AllOnes();
        }
        for (const DiagnosedFault& diagnosed : Diagnose(record)) {
            EXPECT_FALSE(diagnosed.one_of.empty());
        }
    }
}

}  // namespace
}  // namespace bscan
