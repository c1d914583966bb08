// Gives the negative legs of the differential pairs working cells.
//
// A file describes the cells of the positive leg only, and marks the cell of the negative leg with
// a comment that names it. That cell becomes a copy of the positive leg's cell, and the cell in
// front of it a copy of the positive leg's control cell.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"

#include <cstring>
#include <new>

namespace bscan::detail {

void MainPass::CompletePairs() {
    for (CDifferentialPair& pair : parser_.differential_pairs_) {
        const std::size_t text =
            std::strlen(pair.GetPositiveElement()) + std::strlen(pair.GetNegativeElement());
        if (!ChargeExtraWork(static_cast<std::int64_t>(text))) return;
        if (!CompletePair(pair)) return DropPairs();
    }
}

// False when the negative leg has no cell, which leaves no pair trustworthy.
bool MainPass::CompletePair(CDifferentialPair& pair) {
    BScanPinMap& device = *parser_.pin_map_;
    const LBScanCell* const positive = device.GetBScanCell(pair.GetPositiveElement());
    if (positive == nullptr) return true;
    LBScanCell* const negative = device.GetBScanCellByOriginalName(pair.GetNegativeElement());
    if (negative == nullptr) return false;

    const int position = negative->GetBoundaryCellPosition();
    LBScanCell* const control = position < 1 ? nullptr : device.GetBScanCell(position - 1);
    if (control == nullptr || positive->GetControlCell() == nullptr) return true;
    std::string name = pair.GetNegativeElement();
    if (device.GetPortwName(name.data()) == nullptr) return true;

    pair.SetPositiveBScanPosition(positive->GetBoundaryCellPosition());
    pair.SetNegativeBScanPosition(position);
    DeviceBuilder::CopyCell(*negative, *positive, pair.GetNegativeElement());
    negative->SetBoundaryCellPosition(position);
    DeviceBuilder::CopyCell(*control, *negative->GetControlCell());
    control->SetBoundaryCellPosition(position - 1);
    negative->SetControlCell(control);

    LPinNode* const port = DeviceBuilder(device).PortOfPinName(*negative);
    negative->SetPinNode(port);
    // A port that does not take the cell goes without it.
    if (port != nullptr && port->AssociateBScanCell(negative) == kOutOfMemory) {
        throw std::bad_alloc();
    }
    return true;
}

void MainPass::DropPairs() {
    const LObjList& pins = *parser_.pin_map_->GetPinListArray();
    ChargeExtraWork(pins.GetCount());
    for (int i = 0; i < pins.GetCount(); ++i) {
        auto* const node = static_cast<LPinNode*>(pins.GetAt(i));
        if (node == nullptr) continue;
        node->SetPositive(false);
        node->SetNegative(false);
    }
    parser_.differential_pairs_.clear();
}

}  // namespace bscan::detail
