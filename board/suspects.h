// Which faults could be behind the deviating words of a net.
#pragma once

#include "board/prediction.h"

#include <set>
#include <unordered_map>
#include <vector>

namespace bscan::detail {

class SuspectFinder {
public:
    explicit SuspectFinder(const TestRecord& record);

    // The nets of which a receiver saw another word than on a sound board.
    const std::vector<int>& DeviatingNets() const { return deviating_; }

    // Everything that could be wrong with a net, likely or not.
    std::vector<Suspect> SuspectsOf(int net) const;

private:
    // The nets that show one word in a group.
    using NetsByWord = std::unordered_map<TestWord, std::vector<int>>;

    void AddOpens(int net, std::vector<Suspect>& suspects) const;
    void AddShorts(int net, std::vector<Suspect>& suspects) const;
    std::set<int> NetsWithWord(int net, TestWord word, std::size_t group) const;
    std::set<int> NetsBehindWord(int net, TestWord word) const;
    void AddNetOfCode(TestWord code, std::set<int>& nets) const;

    const TestRecord& record_;
    std::vector<int> deviating_;
    std::unordered_map<TestWord, int> net_of_code_;
    std::vector<NetsByWord> shown_;  // by group
};

}  // namespace bscan::detail
