#include "board/suspects.h"

#include <algorithm>
#include <utility>

namespace bscan::detail {
namespace {

// More nets with one word tell of a supply that broke down rather than of touching nets.
constexpr std::size_t kMostTouchingNets = 12;

Fault ShortOf(std::vector<int> nets, ShortWinner winner) {
    Fault fault;
    fault.kind = FaultKind::kShort;
    fault.nets = std::move(nets);
    fault.winner = winner;
    return fault;
}

// Shorts of the same nets, whoever wins.
void AddAllWinners(const std::vector<int>& nets, std::vector<Suspect>& suspects) {
    suspects.push_back({ShortOf(nets, ShortWinner::kAnd), -1, -1, -1});
    suspects.push_back({ShortOf(nets, ShortWinner::kOr), -1, -1, -1});
    for (std::size_t i = 0; i < nets.size(); ++i) {
        std::vector<int> winner_first = nets;
        std::rotate(winner_first.begin(), winner_first.begin() + static_cast<std::ptrdiff_t>(i),
                    winner_first.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        suspects.push_back({ShortOf(std::move(winner_first), ShortWinner::kOneNet), -1, -1, -1});
    }
}

}  // namespace

SuspectFinder::SuspectFinder(const TestRecord& record)
    : record_(record), shown_(record.groups.size()) {
    for (std::size_t net = 0; net < record.nets.size(); ++net) {
        const int number = static_cast<int>(net);
        net_of_code_.emplace(record.nets[net].code, number);
        bool deviates = false;
        for (std::size_t g = 0; g < record.groups.size(); ++g) {
            const auto sound = SoundWord(record, record.groups[g], number);
            for (const int pin : record.nets[net].pins) {
                const auto p = static_cast<std::size_t>(pin);
                if (!record.pins[p].receives) continue;
                const TestWord seen = record.groups[g].seen[p];
                deviates = deviates || (sound && seen != *sound);
                std::vector<int>& nets = shown_[g][seen];
                if (nets.empty() || nets.back() != number) nets.push_back(number);
            }
        }
        if (deviates) deviating_.push_back(number);
    }
}

std::vector<Suspect> SuspectFinder::SuspectsOf(int net) const {
    std::vector<Suspect> suspects;
    AddOpens(net, suspects);
    for (const bool level : {false, true}) {
        Fault fault;
        fault.kind = FaultKind::kStuck;
        fault.nets = {net};
        fault.level = level;
        suspects.push_back({std::move(fault), -1, -1, -1});
    }
    AddShorts(net, suspects);
    return suspects;
}

// On a net with two ends an open lies between them, wherever it is. Elsewhere the pin that lost
// its net is told, or the part whose loss cuts the net in two.
void SuspectFinder::AddOpens(int net, std::vector<Suspect>& suspects) const {
    const TestNet& described = record_.nets[static_cast<std::size_t>(net)];
    std::vector<std::string> ends;
    for (const int pin : described.pins) {
        ends.push_back(record_.pins[static_cast<std::size_t>(pin)].name);
    }
    for (const TestPull& pull : described.pulls) ends.push_back(pull.pin);
    const auto open = [&](std::vector<std::string> pins) {
        Fault fault;
        fault.nets = {net};
        fault.pins = ends.size() == 2 ? ends : std::move(pins);
        return fault;
    };
    for (const int pin : described.pins) {
        suspects.push_back({open({record_.pins[static_cast<std::size_t>(pin)].name}), pin, -1, -1});
    }
    for (std::size_t i = 0; i < described.pulls.size(); ++i) {
        suspects.push_back({open({described.pulls[i].pin}), -1, static_cast<int>(i), -1});
    }
    for (std::size_t i = 0; i < described.through.size(); ++i) {
        const TestThrough& part = described.through[i];
        suspects.push_back({open({part.first_pin, part.second_pin}), -1, -1, static_cast<int>(i)});
    }
}

void SuspectFinder::AddShorts(int net, std::vector<Suspect>& suspects) const {
    std::set<int> others;
    std::set<std::vector<int>> clusters;
    for (std::size_t g = 0; g < record_.groups.size(); ++g) {
        std::set<TestWord> words;
        for (const int pin : record_.nets[static_cast<std::size_t>(net)].pins) {
            const auto p = static_cast<std::size_t>(pin);
            if (record_.pins[p].receives) words.insert(record_.groups[g].seen[p]);
        }
        for (const TestWord word : words) {
            others.merge(NetsBehindWord(net, word));
            std::set<int> same = NetsWithWord(net, word, g);
            if (same.size() >= 2 && same.size() < kMostTouchingNets) {
                std::vector<int> cluster(same.begin(), same.end());
                cluster.insert(std::lower_bound(cluster.begin(), cluster.end(), net), net);
                clusters.insert(std::move(cluster));
            }
            if (same.size() < kMostTouchingNets) others.merge(std::move(same));
        }
    }
    others.erase(net);
    for (const int other : others) {
        AddAllWinners({std::min(net, other), std::max(net, other)}, suspects);
    }
    for (const std::vector<int>& cluster : clusters) AddAllWinners(cluster, suspects);
}

// Other nets that show the same word and are not alone in doing so by right.
std::set<int> SuspectFinder::NetsWithWord(int net, TestWord word, std::size_t group) const {
    std::set<int> found;
    const auto nets = shown_[group].find(word);
    if (nets == shown_[group].end() || nets->second.size() > 4 * kMostTouchingNets) return found;
    const bool constant = word == 0 || word == record_.AllOnes();
    for (const int other : nets->second) {
        // Released nets that float show a constant word, which tells nothing.
        const bool silent = constant && !SoundWord(record_, record_.groups[group], other);
        if (other != net && !silent) found.insert(other);
    }
    return found;
}

// The other net is known from the word alone: where the net drives the level that yields, the word
// is the other's, and since each code is followed by its complement, each bit yields once.
std::set<int> SuspectFinder::NetsBehindWord(int net, TestWord word) const {
    std::set<int> found;
    AddNetOfCode(word, found);
    const TestWord code = record_.nets[static_cast<std::size_t>(net)].code;
    const int half = record_.vector_count / 2;
    const TestWord low = half >= 64 ? ~TestWord{0} : (TestWord{1} << half) - 1;
    const auto with_complement = [&](TestWord bits) {
        return (bits & low) | ((~bits & low) << half);
    };
    // 0 wins: where the net drives 1, the word shows the other.
    const TestWord upper = word >> half;
    const TestWord code_low = code & low;
    AddNetOfCode(with_complement((word & code_low) | (~upper & ~code_low)), found);
    // 1 wins: where it drives 0.
    AddNetOfCode(with_complement((word & ~code_low) | (~upper & code_low)), found);
    return found;
}

void SuspectFinder::AddNetOfCode(TestWord code, std::set<int>& nets) const {
    const auto found = net_of_code_.find(code);
    if (found != net_of_code_.end()) nets.insert(found->second);
}

}  // namespace bscan::detail
