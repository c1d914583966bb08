#include "parser/package_pass.h"

#include <bscan/result.h>

#include "model/pin_sort.h"
#include "parser/constant_text.h"
#include "parser/pin_map_text.h"
#include "support/list_access.h"
#include "support/text_view.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace bscan::detail {
namespace {

// What the search gives when the file ends without a pin map; no code of the library.
constexpr int kNoPinMapInFile = 1;

}  // namespace

int PackagePass::Read() {
    std::string first_line;
    std::string statement;
    int result = FindPinMap(first_line, statement);
    if (result != kOk) return result == kNoPinMapInFile ? static_cast<int>(kOk) : result;
    std::string value;
    // What the value holds on a further line of the statement is not taken: only the first counts.
    result = reader_.ReadStringValue(ValueStart(first_line), Comments::kDrop, value);
    if (result != kOk) return result;
    std::vector<PIN_NAME> pins;
    if (!CollectPins(value, pins)) return kOk;
    // A pass that follows another adds to its pins.
    if (const PackagePinMap* const known = parser_.GetPackageMap(0); known != nullptr) {
        for (const std::string& pin : known->pins_) pins.push_back(SplitDesignator(pin));
    }
    std::string package(ConstantName(statement));
    LowerCase(package);
    Publish(std::move(package), pins);
    return kOk;
}

int PackagePass::FindPinMap(std::string& first_line, std::string& statement) {
    for (;;) {
        std::string_view line;
        if (reader_.NextLineWith("constant", line) != kOk) return kNoPinMapInFile;
        first_line.assign(line);
        statement.assign(line);
        const int result = reader_.Complete(statement, Terminator::Text(":="));
        if (result != kOk) return result;
        if (Contains(statement, kPinMapString) &&
            TypeWord(statement, kPinMapString) == kPinMapString) {
            return kOk;
        }
    }
}

// Fills an empty list. False when there is no pin, or the first one has no letter: then designators
// are numbers already.
bool PackagePass::CollectPins(std::string_view value, std::vector<PIN_NAME>& pins) {
    PinMapCutter cutter(value);
    for (PinMapEntry entry; cutter.Next(entry);) {
        for (std::string_view pin; TakePin(entry.pins, pin);) {
            if (pins.empty() && std::none_of(pin.begin(), pin.end(), IsLetter)) return false;
            pins.push_back(SplitDesignator(pin));
        }
    }
    return !pins.empty();
}

void PackagePass::Publish(std::string package, const std::vector<PIN_NAME>& pins) {
    auto map = std::make_unique<PackagePinMap>();
    map->name_ = std::move(package);
    SortedPins sorted = SortPins(pins);
    map->pins_ = std::move(sorted.designators);
    map->order_ = std::move(sorted.places);
    auto maps = std::make_unique<LObjList>();
    ListAccess::Objects(*maps).push_back(map.get());

    static_cast<void>(map.release());  // the list has it now
    parser_.DestroyPackageMaps();
    parser_.package_maps_ = std::move(maps);
}

}  // namespace bscan::detail
