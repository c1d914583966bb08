#include "board/groups.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <set>

namespace bscan::detail {
namespace {

// Something that wants its nets for itself in one group: a control that is on, or a net that is
// released.
struct Claim {
    int control = -1;
    std::vector<int> nets;
};

class GroupMaker {
public:
    GroupMaker(const Board& board, const DriverTable& table, const std::vector<bool>& tested)
        : board_(board), table_(table), tested_(tested) {
        for (std::size_t i = 0; i < table.Controls().size(); ++i) {
            AddControl(static_cast<int>(i));
        }
        for (std::size_t net = 0; net < board.nets.size(); ++net) {
            const int number = static_cast<int>(net);
            if (!tested[net] || !board.nets[net].PulledTo() || !table.ReleasedLevel(number)) {
                continue;
            }
            if (table.PermanentDriver(number) < 0) claims_.push_back({-1, {number}});
        }
    }

    std::vector<DriverGroup> Make() {
        std::vector<int> groups = Search();
        const int count = claims_.empty() ? 1 : 1 + *std::max_element(groups.begin(), groups.end());
        std::vector<DriverGroup> made;
        made.reserve(static_cast<std::size_t>(count));
        for (int group = 0; group < count; ++group) made.push_back(Fill(groups, group));
        return made;
    }

private:
    void AddControl(int number) {
        const DriverControl& control = table_.Controls()[static_cast<std::size_t>(number)];
        if (!control.usable || control.permanent) return;
        Claim claim{number, {}};
        bool tests = false;
        for (const int driver : control.drivers) {
            const int net = table_.Drivers()[static_cast<std::size_t>(driver)].net;
            tests = tests || (tested_[static_cast<std::size_t>(net)] && table_.CanTest(driver));
            claim.nets.push_back(net);
        }
        if (tests) claims_.push_back(std::move(claim));
    }

    // No net can be served by fewer groups than it has claims.
    int LowestCount() const {
        std::vector<int> counts(board_.nets.size());
        int highest = 0;
        for (const Claim& claim : claims_) {
            for (const int net : claim.nets) {
                highest = std::max(highest, ++counts[static_cast<std::size_t>(net)]);
            }
        }
        return highest;
    }

    // Gives each claim the first group that has room for it; claims of many nets come first. A
    // second turn over whole groups, in another order, never needs more of them.
    std::vector<int> Search() const {
        std::vector<int> order(claims_.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(),
                         [this](int a, int b) { return SizeOf(a) > SizeOf(b); });
        std::vector<int> best = Assign(order);
        const int lowest = LowestCount();
        for (int turn = 0; turn < kTurns && CountOf(best) > lowest; ++turn) {
            std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
                const int first = best[static_cast<std::size_t>(a)];
                const int second = best[static_cast<std::size_t>(b)];
                return turn % 2 == 0 ? first > second : (first ^ 1) < (second ^ 1);
            });
            best = Assign(order);
        }
        return best;
    }

    static int CountOf(const std::vector<int>& groups) {
        return groups.empty() ? 0 : 1 + *std::max_element(groups.begin(), groups.end());
    }

    std::size_t SizeOf(int claim) const {
        return claims_[static_cast<std::size_t>(claim)].nets.size();
    }

    // The groups that each net is in tell which are taken.
    std::vector<int> Assign(const std::vector<int>& order) const {
        std::vector<std::set<int>> taken(board_.nets.size());
        std::vector<int> groups(claims_.size(), -1);
        for (const int number : order) {
            const Claim& claim = claims_[static_cast<std::size_t>(number)];
            int group = 0;
            bool moved = true;
            while (moved) {
                moved = false;
                for (const int net : claim.nets) {
                    const std::set<int>& of_net = taken[static_cast<std::size_t>(net)];
                    for (auto at = of_net.lower_bound(group); at != of_net.end() && *at == group;
                         ++at) {
                        ++group;
                        moved = true;
                    }
                }
            }
            groups[static_cast<std::size_t>(number)] = group;
            for (const int net : claim.nets) taken[static_cast<std::size_t>(net)].insert(group);
        }
        return groups;
    }

    // Turns on what its group demands, and then all that still has room.
    DriverGroup Fill(const std::vector<int>& groups, int group) const {
        DriverGroup made;
        made.drivers.resize(board_.nets.size());
        std::vector<bool> taken(board_.nets.size());
        for (std::size_t net = 0; net < board_.nets.size(); ++net) {
            made.drivers[net] = table_.PermanentDriver(static_cast<int>(net));
            taken[net] = made.drivers[net] >= 0;
        }
        for (const bool demanded : {true, false}) {
            for (std::size_t i = 0; i < claims_.size(); ++i) {
                if ((groups[i] == group) != demanded) continue;
                if (demanded || HasRoom(claims_[i], taken)) Take(claims_[i], taken, made);
            }
        }
        return made;
    }

    static bool HasRoom(const Claim& claim, const std::vector<bool>& taken) {
        return claim.control >= 0 &&
               std::none_of(claim.nets.begin(), claim.nets.end(),
                            [&](int net) { return taken[static_cast<std::size_t>(net)]; });
    }

    void Take(const Claim& claim, std::vector<bool>& taken, DriverGroup& group) const {
        for (const int net : claim.nets) taken[static_cast<std::size_t>(net)] = true;
        if (claim.control < 0) return;
        group.controls.push_back(claim.control);
        const auto control = static_cast<std::size_t>(claim.control);
        for (const int driver : table_.Controls()[control].drivers) {
            const int net = table_.Drivers()[static_cast<std::size_t>(driver)].net;
            group.drivers[static_cast<std::size_t>(net)] = driver;
        }
    }

    static constexpr int kTurns = 20;

    const Board& board_;
    const DriverTable& table_;
    const std::vector<bool>& tested_;
    std::vector<Claim> claims_;
};

}  // namespace

std::vector<DriverGroup> MakeGroups(const Board& board, const DriverTable& table,
                                    const std::vector<bool>& tested) {
    return GroupMaker(board, table, tested).Make();
}

}  // namespace bscan::detail
