#include "board/prediction.h"

#include <algorithm>
#include <numeric>

namespace bscan::detail {
namespace {

// What a piece of a net carries, the weakest first.
enum class Force { kFloats, kPulled, kDriven, kStuck };

struct Value {
    Force force = Force::kFloats;
    TestWord word = 0;
    TestWord weak = 0;  // while it is driven: vectors in which its driver lets go
};

// The pieces into which opens cut a net: a piece is told by a segment that belongs to it, a pin
// that has lost its net by itself.
class Pieces {
public:
    Pieces(const TestRecord& record, int net, const std::vector<const Suspect*>& suspects)
        : record_(record), net_(record.nets[static_cast<std::size_t>(net)]) {
        for (const Suspect* suspect : suspects) {
            if (suspect->fault.kind == FaultKind::kOpen && suspect->fault.nets.front() == net) {
                opens_.push_back(suspect);
            }
        }
        JoinSegments();
    }

    bool IsOff(int pin) const {
        return std::any_of(opens_.begin(), opens_.end(),
                           [&](const Suspect* open) { return open->open_pin == pin; });
    }
    int PieceOf(int pin) const { return Root(record_.pins[static_cast<std::size_t>(pin)].segment); }
    // The piece at which a short or a supply touches the net.
    int MainPiece() const { return Root(0); }

    // What a piece carries by itself.
    Value OwnValue(int piece, int driver) const {
        if (driver >= 0 && !IsOff(driver) && PieceOf(driver) == piece) {
            return {Force::kDriven, net_.code, WeakBits(driver)};
        }
        for (std::size_t i = 0; i < net_.pulls.size(); ++i) {
            if (IsPullOff(static_cast<int>(i)) || Root(net_.pulls[i].segment) != piece) continue;
            return {Force::kPulled, net_.pulls[i].level ? record_.AllOnes() : 0, 0};
        }
        return {};
    }

private:
    TestWord WeakBits(int driver) const {
        const auto& level = record_.pins[static_cast<std::size_t>(driver)].lets_go_at;
        if (!level) return 0;
        return *level ? net_.code : record_.AllOnes() & ~net_.code;
    }
    bool IsPullOff(int pull) const {
        return std::any_of(opens_.begin(), opens_.end(),
                           [&](const Suspect* open) { return open->open_pull == pull; });
    }
    bool IsThroughOff(int part) const {
        return std::any_of(opens_.begin(), opens_.end(),
                           [&](const Suspect* open) { return open->open_through == part; });
    }

    void JoinSegments() {
        int segments = 1;
        for (const TestThrough& part : net_.through) {
            segments = std::max({segments, part.first_segment + 1, part.second_segment + 1});
        }
        parents_.resize(static_cast<std::size_t>(segments));
        std::iota(parents_.begin(), parents_.end(), 0);
        for (std::size_t i = 0; i < net_.through.size(); ++i) {
            if (IsThroughOff(static_cast<int>(i))) continue;
            const int first = Root(net_.through[i].first_segment);
            const int second = Root(net_.through[i].second_segment);
            parents_[static_cast<std::size_t>(std::max(first, second))] = std::min(first, second);
        }
    }
    int Root(int segment) const {
        while (parents_[static_cast<std::size_t>(segment)] != segment) {
            segment = parents_[static_cast<std::size_t>(segment)];
        }
        return segment;
    }

    const TestRecord& record_;
    const TestNet& net_;
    std::vector<const Suspect*> opens_;
    std::vector<int> parents_;
};

// All that the suspects touch, in one group.
class Play {
public:
    Play(const TestRecord& record, const std::vector<const Suspect*>& suspects)
        : record_(record), suspects_(suspects) {
        for (const Suspect* suspect : suspects) {
            for (const int net : suspect->fault.nets) {
                if (IndexOf(net) < 0) nets_.push_back(net);
            }
        }
        for (const int net : nets_) pieces_.emplace_back(record, net, suspects);
    }

    Match Run() {
        for (const TestGroup& group : record_.groups) {
            for (std::size_t i = 0; i < nets_.size(); ++i) CompareNet(group, i);
        }
        return match_;
    }

private:
    int IndexOf(int net) const {
        const auto found = std::find(nets_.begin(), nets_.end(), net);
        return found == nets_.end() ? -1 : static_cast<int>(found - nets_.begin());
    }

    int DriverOf(const TestGroup& group, int net) const {
        return group.drivers[static_cast<std::size_t>(net)];
    }

    // The value of a net's main piece before other nets touch it.
    Value AloneAt(const TestGroup& group, std::size_t index) const {
        const int net = nets_[index];
        for (const Suspect* suspect : suspects_) {
            if (suspect->fault.kind == FaultKind::kStuck && suspect->fault.nets.front() == net) {
                return {Force::kStuck, suspect->fault.level ? record_.AllOnes() : 0, 0};
            }
        }
        return pieces_[index].OwnValue(pieces_[index].MainPiece(), DriverOf(group, net));
    }

    Value Combined(const TestGroup& group, const Fault& touching) const {
        std::vector<Value> values;
        for (const int net : touching.nets) {
            values.push_back(AloneAt(group, static_cast<std::size_t>(IndexOf(net))));
        }
        const Force force = std::max_element(values.begin(), values.end(), [](auto& a, auto& b) {
                                return a.force < b.force;
                            })->force;
        if (force == Force::kDriven) return Fight(values, touching.winner);
        const bool one_wins = touching.winner == ShortWinner::kOr;
        Value result = {force, one_wins ? 0 : record_.AllOnes(), 0};
        TestWord lowest = record_.AllOnes();
        TestWord highest = 0;
        for (const Value& value : values) {
            if (value.force != force) continue;
            lowest &= value.word;
            highest |= value.word;
        }
        // Two pulls against each other give no level that could be told.
        if (force == Force::kPulled && lowest != highest) return {};
        result.word = one_wins ? highest : lowest;
        return result;
    }

    // Drivers that meet, vector by vector: one that lets go yields to any that drives.
    Value Fight(const std::vector<Value>& values, ShortWinner winner) const {
        const TestWord all = record_.AllOnes();
        TestWord driven = 0;
        TestWord lowest = all;
        TestWord highest = 0;
        TestWord pulled = all;
        for (const Value& value : values) {
            if (value.force == Force::kFloats) continue;
            const TestWord strong = value.force == Force::kDriven ? all & ~value.weak : 0;
            driven |= strong;
            lowest &= value.word | ~strong;
            highest |= value.word & strong;
            pulled &= value.word | strong;
        }
        TestWord word = winner == ShortWinner::kOr ? highest : lowest;
        const Value& first = values.front();
        if (winner == ShortWinner::kOneNet && first.force == Force::kDriven) {
            word = (word & first.weak) | (first.word & ~first.weak);
        }
        return {Force::kDriven, (word & driven) | (pulled & ~driven & all), 0};
    }

    // What a net's main piece carries with all that touches it.
    Value MainValue(const TestGroup& group, std::size_t index) const {
        for (const Suspect* suspect : suspects_) {
            const Fault& fault = suspect->fault;
            if (fault.kind != FaultKind::kShort) continue;
            const bool touched =
                std::find(fault.nets.begin(), fault.nets.end(), nets_[index]) != fault.nets.end();
            if (touched) return Combined(group, fault);
        }
        return AloneAt(group, index);
    }

    void CompareNet(const TestGroup& group, std::size_t index) {
        const int net = nets_[index];
        const Pieces& pieces = pieces_[index];
        const int driver = DriverOf(group, net);
        const bool sound = SoundlyReleased(group, index);
        const Value main = MainValue(group, index);
        for (const int pin : record_.nets[static_cast<std::size_t>(net)].pins) {
            if (!record_.pins[static_cast<std::size_t>(pin)].receives) continue;
            Value value = main;
            if (pieces.IsOff(pin)) {
                value = pin == driver ? Value{Force::kDriven,
                                              record_.nets[static_cast<std::size_t>(net)].code, 0}
                                      : Value{};
            } else if (pieces.PieceOf(pin) != pieces.MainPiece()) {
                value = pieces.OwnValue(pieces.PieceOf(pin), driver);
            }
            CompareWord(value, group.seen[static_cast<std::size_t>(pin)], sound);
        }
    }

    // A net that is released without a fault of its own may show anything.
    bool SoundlyReleased(const TestGroup& group, std::size_t index) const {
        return DriverOf(group, nets_[index]) < 0 &&
               record_.nets[static_cast<std::size_t>(nets_[index])].pulls.empty();
    }

    void CompareWord(const Value& value, TestWord seen, bool may_be_anything) {
        if (value.force != Force::kFloats) {
            if (seen != value.word) ++match_.wrong;
            return;
        }
        const bool constant = seen == 0 || seen == record_.AllOnes();
        if (!may_be_anything) ++match_.coincidence;
        if (!constant) ++(may_be_anything ? match_.coincidence : match_.wrong);
    }

    const TestRecord& record_;
    const std::vector<const Suspect*>& suspects_;
    std::vector<int> nets_;
    std::vector<Pieces> pieces_;
    Match match_;
};

}  // namespace

Match Compare(const TestRecord& record, const std::vector<const Suspect*>& suspects) {
    return Play(record, suspects).Run();
}

std::optional<TestWord> SoundWord(const TestRecord& record, const TestGroup& group, int net) {
    const TestNet& described = record.nets[static_cast<std::size_t>(net)];
    if (group.drivers[static_cast<std::size_t>(net)] >= 0) return described.code;
    if (described.pulls.empty()) return std::nullopt;
    return described.pulls.front().level ? record.AllOnes() : 0;
}

}  // namespace bscan::detail
