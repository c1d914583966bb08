// The differential pairs of the PORT_GROUPING attribute.

#include <bscan/result.h>

#include "parser/main_pass.h"
#include "parser/port_group_text.h"
#include "support/text_view.h"

#include <algorithm>
#include <vector>

namespace bscan::detail {

int MainPass::ReadPortGrouping(std::string& statement) {
    const int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    if (parser_.pin_map_ == nullptr) return kFailed;
    statement.resize(statement.find(';'));
    if (const std::size_t quote = statement.find('"'); quote != std::string::npos) {
        statement.erase(0, quote);
    }
    // What joins the quoted pieces becomes white space.
    std::replace_if(
        statement.begin(), statement.end(), [](char c) { return c == '"' || c == '&'; }, ' ');

    std::vector<std::string_view> groups;
    if (!CutPortGroups(Trim(statement), groups)) return kFailed;
    for (const std::string_view group : groups) {
        if (AddPairs(group) != kOk) return kFailed;
    }
    return parser_.differential_pairs_.empty() ? kFailed : kOk;
}

int MainPass::AddPairs(std::string_view group) {
    std::string_view pairs;
    if (!PairsOfGroup(group, pairs)) return kFailed;
    for (;;) {
        PairNames names;
        switch (TakePair(pairs, names)) {
            case TakenPair::kEnd:
                return kOk;
            case TakenPair::kError:
                return kFailed;
            case TakenPair::kPair:
                AddPair(names.positive, names.negative);
                break;
        }
    }
}

void MainPass::AddPair(std::string_view positive, std::string_view negative) {
    CDifferentialPair pair;
    pair.positive_element_.assign(positive);
    pair.negative_element_.assign(negative);
    // The lookups turn the names into upper case, in which the pair keeps them.
    LPinNode* const positive_node = parser_.pin_map_->GetPortwName(pair.positive_element_.data());
    LPinNode* const negative_node = parser_.pin_map_->GetPortwName(pair.negative_element_.data());
    parser_.differential_pairs_.push_back(pair);
    if (positive_node != nullptr) positive_node->SetPositive(true);
    if (negative_node != nullptr) negative_node->SetNegative(true);
}

}  // namespace bscan::detail
