// What came of a request on a pin, in words.

#include <bscan/pin_driver.h>

#include <iterator>

namespace bscan {
namespace {

const char* Text(eSignal level) {
    constexpr const char* kTexts[] = {"0", "1", "X", "Z", "PULL0", "PULL1", "WEAK0", "WEAK1"};
    const auto index = static_cast<std::size_t>(level);
    return index < std::size(kTexts) ? kTexts[index] : "unknown";
}

const char* Text(PortType mode) {
    constexpr const char* kTexts[] = {"in", "out", "inout", "buffer", "linkage"};
    const auto index = static_cast<std::size_t>(mode);
    return index < std::size(kTexts) ? kTexts[index] : "unknown";
}

std::string CellText(const LBScanCell& cell) {
    return "cell " + std::to_string(cell.GetBoundaryCellPosition()) + " = " + Text(cell.cellValue);
}

// The cells of a driver; it has an output cell.
std::string CellTexts(const PinCells& cells) {
    std::string text = CellText(*cells.output);
    const bool apart = cells.control != nullptr && cells.control != cells.output;
    return apart ? text + ", control " + CellText(*cells.control) : text;
}

std::string WhileOff(const PinCells& cells) {
    return std::string(", the pin shows ") + Text(cells.output->disableResult) + " (" +
           CellTexts(cells) + ")";
}

}  // namespace

std::string PinDriver::Explain(int element, DriveCode code) const {
    const Element* const asked = At(element);
    if (asked == nullptr) return "the device has no such port element";
    const PinCells& cells = asked->cells;
    switch (code) {
        case DriveCode::kDrives:
            if (cells.output == nullptr) break;
            return std::string("drives ") + Text(cells.output->cellValue) + " (" +
                   CellTexts(cells) + ")";
        case DriveCode::kLetsGo:
            if (cells.output != nullptr) return "lets go" + WhileOff(cells);
            break;
        case DriveCode::kReleased:
            if (cells.output != nullptr) return "released" + WhileOff(cells);
            break;
        case DriveCode::kReceives:
            return "receives; it has no driver";
        case DriveCode::kWrongMode:
            return std::string("a port of mode ") + Text(asked->node->GetPortType()) +
                   " cannot be driven";
        case DriveCode::kNoDriver:
            if (asked->node->GetPortType() != PORT_NONE) break;
            return "a port of mode linkage has no driver";
        case DriveCode::kNoTurnOn:
            return "the port has no cell that turns its driver on";
        case DriveCode::kNoTurnOff:
            return "the port has no cell that turns it off";
        case DriveCode::kWrongLevel:
            return "a pin is driven to 0 or 1, or released with Z";
        case DriveCode::kNoElement:
            return "the device has no such port element";
    }
    return "no cell drives this port";
}

}  // namespace bscan
