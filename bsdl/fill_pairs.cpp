// The differential pairs.

#include "bsdl/model_filler.h"
#include "model/device_builder.h"

#include <algorithm>
#include <utility>

namespace bscan::detail {

// Vectors make a pair of each element of one and the element of the other in its place.
void ModelFiller::AddPairs() {
    // More pairs than elements say the same thing again and again.
    int most = parser_.pin_map_->GetNumberOfPins();
    for (const PortPair& pair : facts_.pairs) {
        const PlacedPort* const positive = OpenVector(pair.positive);
        const PlacedPort* const negative = OpenVector(pair.negative);
        const int count = std::min(positive != nullptr ? positive->count : 1,
                                   negative != nullptr ? negative->count : 1);
        for (int k = 0; k < count && (count == 1 || most > 0); ++k, --most) {
            AddPair(LegOf(pair.positive, positive, k), LegOf(pair.negative, negative, k));
        }
    }
}

// The vector that a leg names as a whole; null when it names something else.
const PlacedPort* ModelFiller::OpenVector(const ElementName& name) const {
    const PlacedPort* const port = name.index ? nullptr : elements_.Find(name.port.text);
    return port != nullptr && port->port->range ? port : nullptr;
}

ModelFiller::Leg ModelFiller::LegOf(const ElementName& name, const PlacedPort* vector, int k) {
    return LegOf({name.port, vector == nullptr ? name.index : vector->IndexOf(k)});
}

ModelFiller::Leg ModelFiller::LegOf(const ElementName& name) {
    Leg leg;
    leg.name = UpperCased(name.port.text);
    leg.cell_name = leg.name;
    leg.place = PlaceOf(name);
    if (!name.index) return leg;
    const std::string index = std::to_string(*name.index);
    leg.name.append("(").append(index).append(")");
    if (*name.index != 0) leg.cell_name.append(index);
    return leg;
}

void ModelFiller::AddPair(const Leg& positive, const Leg& negative) {
    CDifferentialPair& pair = parser_.differential_pairs_.emplace_back();
    pair.positive_element_ = positive.name;
    pair.negative_element_ = negative.name;
    if (positive.place >= 0) Element(positive.place).SetPositive(true);
    if (negative.place >= 0) Element(negative.place).SetNegative(true);
    CompletePair(pair, positive, negative);
}

// Where a remark of the register names the negative leg, its cell follows the positive leg's. A
// pair for which that cannot be done stays without positions.
void ModelFiller::CompletePair(CDifferentialPair& pair, const Leg& positive, const Leg& negative) {
    BScanPinMap& device = *parser_.pin_map_;
    LBScanCell* const follower = device.GetBScanCellByOriginalName(negative.name.c_str());
    if (follower == nullptr) {
        pair.positive_position_ = OwnCell(positive);
        pair.negative_position_ = OwnCell(negative);
        return;
    }
    const LBScanCell* const leader = device.GetBScanCell(OwnCell(positive));
    DeviceBuilder builder(device);
    if (leader == nullptr || negative.place < 0 || !builder.CanCopyCell(*follower, *leader)) return;
    pair.positive_position_ = leader->GetBoundaryCellPosition();
    pair.negative_position_ = follower->GetBoundaryCellPosition();
    builder.CopyCell(*follower, *leader, negative.cell_name, negative.name,
                     Element(negative.place));
}

int ModelFiller::OwnCell(const Leg& leg) const {
    return leg.place < 0 ? -1 : own_cells_[static_cast<std::size_t>(leg.place)];
}

}  // namespace bscan::detail
