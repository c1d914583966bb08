// From a board to the vectors that test it.

#include <bscan/board/board_test.h>
#include <bscan/limits.h>

#include "board/drivers.h"
#include "board/groups.h"
#include "board/integrity.h"
#include "support/border.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace bscan {
namespace detail {
namespace {

class TestPlanner {
public:
    TestPlanner(Chain& chain, const Board& board) : chain_(chain), board_(board) {}

    BoardTest Plan() {
        if (chain_.DeviceCount() == 0) return Refused("The chain has no devices.");
        if (!board_.Ok()) return Refused(board_.problems.front());
        SelectExtest();
        const DriverTable table(chain_, board_);
        test_.problems = table.Problems();
        ChooseNets(table);
        AddNets(table);
        AddPins(table);
        const std::vector<DriverGroup> groups = test_.record.nets.empty()
                                                    ? std::vector<DriverGroup>()
                                                    : MakeGroups(board_, table, tested_);
        for (const DriverGroup& group : groups) AddGroup(table, group);
        if (test_.Ok()) AddProgram(table, groups);
        return std::move(test_);
    }

private:
    BoardTest Refused(const std::string& problem) {
        test_.problems = {problem};
        return std::move(test_);
    }

    // Drivers that nobody asked for are off.
    void SelectExtest() {
        for (int device = 0; device < chain_.DeviceCount(); ++device) {
            PinDriver* const driver = chain_.Driver(device);
            if (driver == nullptr) continue;
            driver->Preset();
            if (!board_.devices[static_cast<std::size_t>(device)].takes_part) continue;
            extest_.push_back({device, "EXTEST"});
            const bool preload = chain_.CanSelect(device, "PRELOAD").Ok();
            preload_.push_back({device, preload ? "PRELOAD" : "SAMPLE"});
        }
        chain_.Select(extest_);
        rest_ = chain_.DataBits();
        test_.scan_length = rest_.Size();
    }

    void ChooseNets(const DriverTable& table) {
        const std::size_t count = board_.nets.size();
        tested_.assign(count, false);
        test_.reasons.assign(count, Untested::kClass);
        for (std::size_t net = 0; net < count; ++net) {
            if (board_.nets[net].net_class != NetClass::kSignal) continue;
            test_.reasons[net] = ReasonOf(table, static_cast<int>(net));
            tested_[net] = test_.reasons[net] == Untested::kNo;
        }
    }

    static Untested ReasonOf(const DriverTable& table, const BoardNet& net,
                             const std::vector<int>& drivers) {
        const bool receives = std::any_of(net.pins.begin(), net.pins.end(),
                                          [&](int pin) { return table.Receives(pin); });
        const bool steered = std::all_of(drivers.begin(), drivers.end(), [&](int driver) {
            return table.Drivers()[static_cast<std::size_t>(driver)].can_code;
        });
        const bool drives = std::any_of(drivers.begin(), drivers.end(),
                                        [&](int driver) { return table.CanTest(driver); });
        if (receives && drives && steered) return Untested::kNo;
        if (net.pins.size() < 2) return Untested::kOnePin;
        if (drivers.empty()) return Untested::kNoDriver;
        return drives && steered ? Untested::kNoReceiver : Untested::kControl;
    }
    Untested ReasonOf(const DriverTable& table, int net) const {
        return ReasonOf(table, board_.nets[static_cast<std::size_t>(net)], table.DriversOf(net));
    }

    void AddNets(const DriverTable& table) {
        test_.tested_as.assign(board_.nets.size(), -1);
        for (std::size_t net = 0; net < board_.nets.size(); ++net) {
            if (!tested_[net]) continue;
            test_.tested_as[net] = static_cast<int>(test_.net_of.size());
            test_.net_of.push_back(static_cast<int>(net));
        }
        TestRecord& record = test_.record;
        const std::size_t count = test_.net_of.size();
        int bits = 0;
        while ((std::size_t{1} << bits) < count + 2) ++bits;
        if (count > 0) record.vector_count = 2 * bits;
        for (std::size_t i = 0; i < count; ++i) {
            const BoardNet& net = board_.nets[static_cast<std::size_t>(test_.net_of[i])];
            TestNet& made = record.nets.emplace_back();
            made.name = net.name;
            const auto code = static_cast<TestWord>(i + 1);
            made.code = code | ((~code & ((TestWord{1} << bits) - 1)) << bits);
            if (net.PulledTo() && table.ReleasedLevel(test_.net_of[i])) {
                for (const BoardPull& pull : net.pulls) {
                    made.pulls.push_back({pull.pin, pull.segment, pull.level});
                }
            }
            for (const BoardThrough& part : net.through) {
                made.through.push_back(
                    {part.first_pin, part.second_pin, part.first_segment, part.second_segment});
            }
        }
    }

    // The pins that drive or receive in the test.
    void AddPins(const DriverTable& table) {
        record_pin_.assign(board_.pins.size(), -1);
        for (std::size_t i = 0; i < test_.net_of.size(); ++i) {
            const int net = test_.net_of[i];
            for (const int pin : board_.nets[static_cast<std::size_t>(net)].pins) {
                const std::vector<int>& drivers = table.DriversOf(net);
                const bool drives = std::any_of(drivers.begin(), drivers.end(), [&](int driver) {
                    return table.Drivers()[static_cast<std::size_t>(driver)].pin == pin &&
                           table.CanTest(driver);
                });
                if (!drives && !table.Receives(pin)) continue;
                const BoardPin& placed = board_.pins[static_cast<std::size_t>(pin)];
                const int number = static_cast<int>(test_.record.pins.size());
                record_pin_[static_cast<std::size_t>(pin)] = number;
                test_.record.nets[i].pins.push_back(number);
                test_.record.pins.push_back({placed.Name(), static_cast<int>(i), placed.segment,
                                             table.Receives(pin), LetsGoAt(table, net, pin)});
                test_.pin_of.push_back(pin);
                test_.receiver_bits.push_back(table.ReceiverBit(pin));
            }
        }
    }

    static std::optional<bool> LetsGoAt(const DriverTable& table, int net, int pin) {
        for (const int number : table.DriversOf(net)) {
            const NetDriver& driver = table.Drivers()[static_cast<std::size_t>(number)];
            if (driver.pin == pin) return driver.lets_go_at;
        }
        return std::nullopt;
    }

    void AddGroup(const DriverTable& table, const DriverGroup& group) {
        TestGroup& made = test_.record.groups.emplace_back();
        made.seen.resize(test_.record.pins.size());
        for (const int net : test_.net_of) {
            const int driver = group.drivers[static_cast<std::size_t>(net)];
            made.drivers.push_back(driver < 0 ? -1 : RecordPinOf(table, driver));
        }
    }

    int RecordPinOf(const DriverTable& table, int driver) const {
        const int pin = table.Drivers()[static_cast<std::size_t>(driver)].pin;
        return record_pin_[static_cast<std::size_t>(pin)];
    }

    // Each scan brings out what the one before it drove, so each group takes one scan more than it
    // has vectors, and with that one its drivers go off.
    void AddProgram(const DriverTable& table, const std::vector<DriverGroup>& groups) {
        AddIntegrityScans(chain_, preload_, test_.program);
        SetFixed(table, rest_);
        const std::size_t scans =
            groups.size() * static_cast<std::size_t>(test_.record.vector_count);
        if (scans * static_cast<std::size_t>(test_.scan_length) * 3 > kMaxProgramBits) {
            test_.problems.emplace_back("The vectors have too many bits together.");
            return;
        }
        for (std::size_t g = 0; g < groups.size(); ++g) AddVectors(table, groups[g], g);
        Comment("End: back to reset, the pins are free");
        Push(OperationKind::kReset, {});
        if (!test_.program.result.Ok()) test_.problems.push_back(test_.program.result.reason);
    }

    static void SetFixed(const DriverTable& table, ScanBits& bits) {
        for (const FixedBit& fixed : table.FixedBits()) bits.Set(fixed.bit, fixed.level);
    }

    void AddVectors(const DriverTable& table, const DriverGroup& group, std::size_t number) {
        const int count = test_.record.vector_count;
        const auto name = [&](int vector) {
            return "Group " + std::to_string(number + 1) + " of " +
                   std::to_string(test_.record.groups.size()) + ", vector " +
                   std::to_string(vector + 1) + " of " + std::to_string(count);
        };
        if (number == 0) {
            Comment(name(0) + ", preloaded");
            Push(OperationKind::kDataScan, Vector(table, group, number, 0));
            AddInstructionScan(chain_, extest_, test_.program);
        } else {
            Comment(name(0));
            Push(OperationKind::kDataScan, Vector(table, group, number, 0));
        }
        for (int vector = 0; vector < count; ++vector) {
            const bool last = vector + 1 == count;
            Comment(last ? "The drivers go off; what vector " + std::to_string(count) + " showed"
                         : name(vector + 1));
            ScanOperation& scan = Push(OperationKind::kDataScan,
                                       last ? rest_ : Vector(table, group, number, vector + 1));
            scan.step = static_cast<int>(number) * count + vector;
            Expect(scan, number, vector);
        }
    }

    ScanBits Vector(const DriverTable& table, const DriverGroup& group, std::size_t number,
                    int vector) const {
        ScanBits bits = rest_;
        for (const int control : group.controls) {
            const DriverControl& turned_on = table.Controls()[static_cast<std::size_t>(control)];
            bits.Set(turned_on.bit, turned_on.on_level);
        }
        const TestGroup& described = test_.record.groups[number];
        for (std::size_t i = 0; i < test_.net_of.size(); ++i) {
            if (described.drivers[i] < 0) continue;
            const auto net = static_cast<std::size_t>(test_.net_of[i]);
            const auto driver = static_cast<std::size_t>(group.drivers[net]);
            bits.Set(table.Drivers()[driver].output_bit, CodeBit(i, vector));
        }
        return bits;
    }

    bool CodeBit(std::size_t net, int vector) const {
        return (test_.record.nets[net].code >> vector & 1) != 0;
    }

    // A net that is released without a pull may show anything.
    void Expect(ScanOperation& scan, std::size_t group, int vector) const {
        scan.wanted = ScanBits(scan.out.Size());
        scan.mask = ScanBits(scan.out.Size());
        for (std::size_t pin = 0; pin < test_.record.pins.size(); ++pin) {
            const int bit = test_.receiver_bits[pin];
            const auto net = static_cast<std::size_t>(test_.record.pins[pin].net);
            const TestNet& described = test_.record.nets[net];
            const bool driven = test_.record.groups[group].drivers[net] >= 0;
            if (bit < 0 || (!driven && described.pulls.empty())) continue;
            const bool level = driven ? CodeBit(net, vector) : described.pulls.front().level;
            scan.mask.Set(bit, true);
            scan.wanted.Set(bit, level);
            const BoardPin& placed = board_.pins[static_cast<std::size_t>(test_.pin_of[pin])];
            scan.checks.push_back({placed.element, bit, level ? SIG_1 : SIG_0});
        }
    }

    ScanOperation& Push(OperationKind kind, ScanBits bits) {
        ScanOperation& made = test_.program.operations.emplace_back();
        made.kind = kind;
        made.out = std::move(bits);
        if (kind == OperationKind::kDataScan) made.fields = chain_.DataFields();
        return made;
    }

    void Comment(std::string text) { Push(OperationKind::kComment, {}).text = std::move(text); }

    Chain& chain_;
    const Board& board_;
    std::vector<InstructionChoice> preload_;
    std::vector<InstructionChoice> extest_;
    ScanBits rest_;  // what is shifted while the drivers of the test are off
    std::vector<bool> tested_;
    std::vector<int> record_pin_;  // by pin of the board
    BoardTest test_;
};

}  // namespace
}  // namespace detail

BoardTest PlanBoardTest(Chain& chain, const Board& board) {
    BoardTest failed;
    failed.problems.emplace_back("There is not enough memory.");
    return detail::Guarded([&] { return detail::TestPlanner(chain, board).Plan(); },
                           std::move(failed));
}

void TakeCapture(BoardTest& test, int number, const ScanBits& captured) {
    if (number < 0 || number >= test.CaptureCount()) return;
    TestGroup& group =
        test.record.groups[static_cast<std::size_t>(number / test.record.vector_count)];
    const TestWord bit = TestWord{1} << (number % test.record.vector_count);
    for (std::size_t pin = 0; pin < test.receiver_bits.size(); ++pin) {
        if (test.receiver_bits[pin] < 0) continue;
        const bool level = captured.Get(test.receiver_bits[pin]);
        group.seen[pin] = level ? group.seen[pin] | bit : group.seen[pin] & ~bit;
    }
}

}  // namespace bscan
