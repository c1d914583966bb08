// Gives the negative legs of the differential pairs working cells.
//
// A file describes the cells of the positive leg only, and marks the cell of the negative leg with
// a comment that names it. That cell becomes a copy of the positive leg's cell, and the cell in
// front of it a copy of the positive leg's control cell.

#include <bscan/limits.h>
#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"

#include <cstring>
#include <string>
#include <utility>

namespace bscan::detail {

int MainPass::CompletePairs() {
    const bool again = std::exchange(has_register_, true);
    for (CDifferentialPair& pair : parser_.differential_pairs_) {
        // The lookups take time for the length of the names.
        const std::size_t work =
            std::strlen(pair.GetPositiveElement()) + std::strlen(pair.GetNegativeElement());
        if (again && !MayRepeat(static_cast<std::int64_t>(work))) return kRepeatedTooOften;
        if (CompletePair(pair)) continue;
        const std::int64_t ports = parser_.pin_map_->GetNumberOfPins();
        if (again && !MayRepeat(ports)) return kRepeatedTooOften;
        DropPairs();
        break;
    }
    return kOk;
}

// False when the negative leg has no cell, which leaves no pair trustworthy; true otherwise, also
// for a pair that is left as it is.
bool MainPass::CompletePair(CDifferentialPair& pair) {
    BScanPinMap& device = *parser_.pin_map_;
    const LBScanCell* const positive = device.GetBScanCell(pair.GetPositiveElement());
    if (positive == nullptr) return true;
    LBScanCell* const negative = device.GetBScanCellByOriginalName(pair.GetNegativeElement());
    if (negative == nullptr) return false;

    DeviceBuilder builder(device);
    if (!builder.CanCopyCell(*negative, *positive)) return true;
    std::string name = pair.GetNegativeElement();
    LPinNode* const port = device.GetPortwName(name.data());  // turns the name into upper case
    if (port == nullptr) return true;

    pair.SetPositiveBScanPosition(positive->GetBoundaryCellPosition());
    pair.SetNegativeBScanPosition(negative->GetBoundaryCellPosition());
    builder.CopyCell(*negative, *positive, name, pair.GetNegativeElement(), *port);
    return true;
}

void MainPass::DropPairs() {
    const LObjList& pins = *parser_.pin_map_->GetPinListArray();
    for (int i = 0; i < pins.GetCount(); ++i) {
        auto* const node = static_cast<LPinNode*>(pins.GetAt(i));
        if (node == nullptr) continue;
        node->SetPositive(false);
        node->SetNegative(false);
    }
    parser_.differential_pairs_.clear();
}

}  // namespace bscan::detail
