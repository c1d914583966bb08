// The search for the fewest faults that explain all words.

#include <bscan/board/diagnosis.h>

#include "board/suspects.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace bscan {
namespace detail {
namespace {

// For nets that no single fault explains, so many pairs are tried: of one net, and in all. Where
// that is not enough, the words make no sense, as those of a broken chain.
constexpr std::size_t kMostPairs = 20000;
constexpr std::size_t kMostPairsInAll = 100000;
// So many of the nearest explanations are given when none fits.
constexpr std::size_t kNearestGiven = 4;

using Suspects = std::vector<const Suspect*>;

// Some faults that together explain the words of the nets that they touch.
struct Explanation {
    std::vector<Fault> faults;
    std::vector<int> covers;  // the deviating nets among those
    int coincidence = 0;
};

// Opens are what happens most, then shorts, then supplies.
int Rarity(FaultKind kind) {
    return kind == FaultKind::kOpen ? 0 : kind == FaultKind::kShort ? 1 : 2;
}

auto Likelihood(const Explanation& explanation) {
    const Fault& first = explanation.faults.front();
    return std::tuple(first.nets.size(), Rarity(first.kind), explanation.coincidence);
}

bool LikelierThan(const Explanation& a, const Explanation& b) {
    return Likelihood(a) < Likelihood(b);
}

class Search {
public:
    explicit Search(const TestRecord& record) : record_(record), finder_(record) {
        for (const int net : finder_.DeviatingNets()) open_cases_.insert(net);
    }

    std::vector<DiagnosedFault> Run() {
        ExplainBySingles();
        while (!open_cases_.empty()) ExplainByPairs(*open_cases_.begin());
        std::stable_sort(found_.begin(), found_.end(), [](const auto& a, const auto& b) {
            return std::tuple(!a.certain, a.one_of.size()) <
                   std::tuple(!b.certain, b.one_of.size());
        });
        return std::move(found_);
    }

private:
    std::vector<int> Deviating(const Suspects& suspects) const {
        std::set<int> nets;
        for (const Suspect* suspect : suspects) {
            for (const int net : suspect->fault.nets) {
                const auto& all = finder_.DeviatingNets();
                if (std::binary_search(all.begin(), all.end(), net)) nets.insert(net);
            }
        }
        return {nets.begin(), nets.end()};
    }

    // Takes the fault that explains most nets first, so that a short counts as one fault although
    // each of its nets could be stuck.
    void ExplainBySingles() {
        std::map<std::vector<int>, std::vector<Explanation>> by_nets;
        for (const int net : finder_.DeviatingNets()) {
            for (const Suspect& suspect : finder_.SuspectsOf(net)) {
                const Match match = Compare(record_, {&suspect});
                if (match.wrong > 0) continue;
                std::vector<int> covers = Deviating({&suspect});
                Remember(by_nets[covers], {{suspect.fault}, covers, match.coincidence});
            }
        }
        std::vector<std::vector<Explanation>> alternatives;
        alternatives.reserve(by_nets.size());
        for (auto& entry : by_nets) alternatives.push_back(std::move(entry.second));
        std::stable_sort(alternatives.begin(), alternatives.end(),
                         [](const auto& a, const auto& b) {
                             return a.front().covers.size() > b.front().covers.size();
                         });
        for (std::vector<Explanation>& equal : alternatives) {
            const std::vector<int>& nets = equal.front().covers;
            const bool all_open = std::all_of(
                nets.begin(), nets.end(), [this](int net) { return open_cases_.count(net) != 0; });
            if (all_open) Close(std::move(equal), true);
        }
    }

    // A fault may stand behind several suspects: it is kept once, as likely as the likeliest.
    static void Remember(std::vector<Explanation>& list, Explanation explanation) {
        for (Explanation& known : list) {
            if (known.faults != explanation.faults) continue;
            known.coincidence = std::min(known.coincidence, explanation.coincidence);
            return;
        }
        list.push_back(std::move(explanation));
    }

    void ExplainByPairs(int net) {
        std::vector<Suspect> pool = finder_.SuspectsOf(net);
        const std::size_t own = pool.size();
        std::set<int> neighbours;
        for (const Suspect& suspect : pool) {
            neighbours.insert(suspect.fault.nets.begin(), suspect.fault.nets.end());
        }
        neighbours.erase(net);
        for (const int neighbour : neighbours) {
            const std::vector<Suspect> more = finder_.SuspectsOf(neighbour);
            pool.insert(pool.end(), more.begin(), more.end());
        }
        std::vector<Explanation> explanations;
        std::size_t tried = 0;
        for (std::size_t i = 0; i < own; ++i) {
            for (std::size_t j = i + 1; j < pool.size() && tried < kMostPairs; ++j, ++tried) {
                if (pairs_tried_ + tried >= kMostPairsInAll) break;
                TryPair(pool[i], pool[j], explanations);
            }
        }
        pairs_tried_ += tried;
        if (explanations.empty()) return GiveNearest(net, pool, own);
        Close(BestCovering(std::move(explanations)), true);
    }

    // Those that explain nothing twice, if there are any, and of them those that explain most.
    std::vector<Explanation> BestCovering(std::vector<Explanation> explanations) const {
        const auto rank = [this](const Explanation& e) {
            const bool again = std::any_of(e.covers.begin(), e.covers.end(),
                                           [this](int net) { return open_cases_.count(net) == 0; });
            return std::pair(!again, e.covers.size());
        };
        const auto best = rank(
            *std::max_element(explanations.begin(), explanations.end(),
                              [&](const auto& a, const auto& b) { return rank(a) < rank(b); }));
        explanations.erase(std::remove_if(explanations.begin(), explanations.end(),
                                          [&](const auto& e) { return rank(e) != best; }),
                           explanations.end());
        return explanations;
    }

    void TryPair(const Suspect& first, const Suspect& second,
                 std::vector<Explanation>& explanations) const {
        if (first.fault == second.fault) return;
        const Match match = Compare(record_, {&first, &second});
        if (match.wrong > 0) return;
        Remember(explanations,
                 {{first.fault, second.fault}, Deviating({&first, &second}), match.coincidence});
    }

    // Nothing explains every word of the net: says so, with what comes nearest.
    void GiveNearest(int net, const std::vector<Suspect>& pool, std::size_t own) {
        std::vector<std::pair<int, Fault>> ranked;
        for (std::size_t i = 0; i < own; ++i) {
            ranked.emplace_back(Compare(record_, {&pool[i]}).wrong, pool[i].fault);
        }
        std::stable_sort(ranked.begin(), ranked.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<Explanation> nearest;
        for (const auto& [wrong, fault] : ranked) {
            if (nearest.size() == kNearestGiven) break;
            Remember(nearest, {{fault}, {net}, wrong});
        }
        Close(std::move(nearest), false);
    }

    // Reports explanations of the same nets. A fault that all of them share stands alone.
    void Close(std::vector<Explanation> explanations, bool certain) {
        std::stable_sort(explanations.begin(), explanations.end(), LikelierThan);
        DropLargerShorts(explanations);
        const Explanation& likeliest = explanations.front();
        for (const Fault& fault : likeliest.faults) {
            DiagnosedFault diagnosed{{fault}, certain};
            if (!SharedByAll(fault, explanations)) AddAlternatives(explanations, diagnosed.one_of);
            found_.push_back(std::move(diagnosed));
        }
        for (const int net : likeliest.covers) open_cases_.erase(net);
    }

    // A short of more nets than need to touch explains nothing better.
    static void DropLargerShorts(std::vector<Explanation>& explanations) {
        const Fault& smallest = explanations.front().faults.front();
        if (smallest.kind != FaultKind::kShort) return;
        explanations.erase(std::remove_if(explanations.begin(), explanations.end(),
                                          [&](const Explanation& e) {
                                              const Fault& fault = e.faults.front();
                                              return fault.kind == FaultKind::kShort &&
                                                     fault.nets.size() > smallest.nets.size();
                                          }),
                           explanations.end());
    }

    static bool SharedByAll(const Fault& fault, const std::vector<Explanation>& explanations) {
        return std::all_of(explanations.begin(), explanations.end(), [&](const Explanation& e) {
            return std::find(e.faults.begin(), e.faults.end(), fault) != e.faults.end();
        });
    }

    static void AddAlternatives(const std::vector<Explanation>& explanations,
                                std::vector<Fault>& one_of) {
        for (const Explanation& explanation : explanations) {
            for (const Fault& fault : explanation.faults) {
                if (SharedByAll(fault, explanations)) continue;
                if (std::find(one_of.begin(), one_of.end(), fault) == one_of.end()) {
                    one_of.push_back(fault);
                }
            }
        }
    }

    const TestRecord& record_;
    SuspectFinder finder_;
    std::set<int> open_cases_;  // deviating nets without explanation
    std::size_t pairs_tried_ = 0;
    std::vector<DiagnosedFault> found_;
};

}  // namespace
}  // namespace detail

std::vector<DiagnosedFault> Diagnose(const TestRecord& record) {
    return detail::Search(record).Run();
}

}  // namespace bscan
