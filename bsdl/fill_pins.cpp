// The package pins of the elements, and their numbers.

#include "bsdl/model_filler.h"
#include "model/device_builder.h"
#include "model/pin_sort.h"
#include "support/list_access.h"
#include "support/text_view.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <tuple>
#include <utility>

namespace bscan::detail {

// The numbers are those that BScanParser::Read gives, when each of them can be looked up. When one
// cannot, all pins are numbered anew in the order of lettered packages.
void ModelFiller::BondPins() {
    if (package_ == nullptr) return;
    CollectBonds();
    if (!HasLetteredPins()) {
        NumberByValue();
    } else if (package_ == &facts_.pin_maps.front()) {
        NumberByPackage();
    }
    if (!IsEachNumberFound()) NumberByOrder();
    for (const Bond& bond : bonds_) Element(bond.place).SetPinNumber(bond.number);
    if (!pins_.empty()) PublishPackage();
}

// An element that two entries name keeps the pin of the first.
void ModelFiller::CollectBonds() {
    bonds_.clear();
    std::size_t coming = 0;
    const auto bond = [&](int place, std::string_view pin, std::size_t at) {
        if (place < 0 || PinName(Element(place)) != nullptr) return;
        DeviceBuilder::SetPinName(Element(place), pin);
        bonds_.push_back({place, pin, at, 0});
    };
    for (const PinMapEntry& entry : package_->entries) {
        const PlacedPort* const port = elements_.Find(entry.port.port.text);
        const auto count = static_cast<int>(entry.pins.size());
        if (port != nullptr && entry.port.index) {
            if (count > 0) bond(port->PlaceOf(entry.port.index), entry.pins[0].text, coming);
        } else if (port != nullptr) {
            for (int k = 0; k < std::min(count, port->count); ++k) {
                const auto at = static_cast<std::size_t>(k);
                bond(port->first + k, entry.pins[at].text, coming + at);
            }
        }
        coming += entry.pins.size();
    }
}

// The first pin of the map decides for all.
bool ModelFiller::HasLetteredPins() const {
    for (const PinMapEntry& entry : package_->entries) {
        if (entry.pins.empty()) continue;
        const std::string_view pin = entry.pins.front().text;
        return std::any_of(pin.begin(), pin.end(), IsLetter);
    }
    return false;
}

void ModelFiller::NumberByValue() {
    for (Bond& bond : bonds_) bond.number = DecimalValue(bond.pin);
}

// A pin that is not written as the package writes it has no number.
void ModelFiller::NumberByPackage() {
    std::vector<PIN_NAME> pins;
    for (const PinMapEntry& entry : package_->entries) {
        for (const Word& pin : entry.pins) pins.push_back(SplitDesignator(pin.text));
    }
    SortedPins sorted = SortPins(pins);
    pins_ = std::move(sorted.designators);
    for (Bond& bond : bonds_) {
        const std::size_t place = sorted.places[bond.coming];
        if (pins_[place] == bond.pin) bond.number = static_cast<int>(place) + 1;
    }
}

bool ModelFiller::IsEachNumberFound() const {
    const int most = parser_.pin_map_->GetNumberOfPins();
    return std::all_of(bonds_.begin(), bonds_.end(), [most](const Bond& bond) {
        return bond.number >= 1 && bond.number <= most;
    });
}

// Pins that only differ in what the order leaves out, such as leading zeros, follow each other.
void ModelFiller::NumberByOrder() {
    std::vector<PIN_NAME> pins;
    for (const Bond& bond : bonds_) pins.push_back(SplitDesignator(bond.pin));
    const std::vector<std::size_t> places = SortPins(pins).places;
    std::vector<std::size_t> order(bonds_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return std::tie(places[left], bonds_[left].pin) <
               std::tie(places[right], bonds_[right].pin);
    });
    pins_.clear();
    for (const std::size_t i : order) {
        Bond& bond = bonds_[i];
        if (pins_.empty() || pins_.back() != bond.pin) pins_.emplace_back(bond.pin);
        bond.number = static_cast<int>(pins_.size());
    }
}

// The package's pins, of which the place is the number.
void ModelFiller::PublishPackage() {
    auto map = std::make_unique<PackagePinMap>();
    map->name_ = LowerCased(package_->name.text);
    map->pins_ = std::move(pins_);
    auto maps = std::make_unique<LObjList>();
    ListAccess::Objects(*maps).push_back(map.get());
    static_cast<void>(map.release());  // the list has it now
    parser_.package_maps_ = std::move(maps);
}

}  // namespace bscan::detail
