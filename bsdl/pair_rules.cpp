// Rules about differential pairs.

#include "bsdl/checks.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

class PairCheck {
public:
    explicit PairCheck(Checks& checks) : checks_(checks) {}

    void Check(const PortPair& pair) {
        const int positive = checks_.ports.Resolve(pair.positive, kPairSubject);
        const int negative = checks_.ports.Resolve(pair.negative, kPairSubject);
        // A pair that stands twice is told once.
        if (CheckUnique(pair.positive, positive)) CheckUnique(pair.negative, negative);
        if (positive == PortReferences::kNone || negative == PortReferences::kNone) return;
        if (CheckShape(pair, positive, negative)) CheckModes(pair, positive, negative);
    }

private:
    // How many elements a leg has.
    int CountOf(const ElementName& leg, int port) const {
        const std::optional<IndexRange>& range = checks_.ports.At(port).range;
        return range && !leg.index ? range->Count() : 1;
    }

    bool CheckShape(const PortPair& pair, int positive, int negative) {
        const int left = CountOf(pair.positive, positive);
        const int right = CountOf(pair.negative, negative);
        if (left == right) return true;
        checks_.found.Add(
            Rule::kPairShape, pair.negative.port,
            Quoted(pair.positive) + " has " + Counted(static_cast<std::size_t>(left), "element") +
                ", its negative leg " + Quoted(pair.negative) + " " + std::to_string(right));
        return false;
    }

    void CheckModes(const PortPair& pair, int positive, int negative) {
        const Port& one = checks_.ports.At(positive);
        const Port& other = checks_.ports.At(negative);
        // Makers often declare the leg without a cell as linkage.
        const bool unknown = one.mode == PortMode::kUnknown || other.mode == PortMode::kUnknown;
        if (unknown || one.mode == other.mode) return;
        if (!told_modes_.Has(one.name.text)) {
            told_modes_.Add(one.name.text);
            checks_.found.Add(Rule::kPairModes, pair.negative.port,
                              "the mode of " + Quoted(pair.positive) + " is " +
                                  Quoted(one.mode_word) + ", that of its negative leg " +
                                  Quoted(pair.negative) + " is " + Quoted(other.mode_word));
        }
    }

    bool CheckUnique(const ElementName& leg, int port) {
        if (port == PortReferences::kNone) return true;
        std::string name(leg.port.text);
        if (leg.index) name += "(" + std::to_string(*leg.index) + ")";
        const auto number = static_cast<std::size_t>(legs_.Add(name));
        if (number == places_.size()) {
            places_.push_back(&leg);
            return true;
        }
        checks_.found.Add(Rule::kPairLegTwice, leg.port,
                          Quoted(leg) + " is a leg of a pair in line " +
                              std::to_string(places_[number]->port.line) + " already");
        return false;
    }

    Checks& checks_;
    NameIndex legs_;
    std::vector<const ElementName*> places_;  // by number in legs_
    NameIndex told_modes_;
};

}  // namespace

void CheckPairs(Checks& checks) {
    PairCheck check(checks);
    for (const PortPair& pair : checks.facts.pairs) check.Check(pair);
}

}  // namespace bscan::detail
