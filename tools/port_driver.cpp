#include "port_driver.h"

#include "words.h"

#include <fmt/format.h>

#include <unordered_set>

namespace tool {
namespace {

bool CanDrive(const LBScanCell& cell) {
    const CellFunction function = cell.GetFunction();
    return function == OUTPUT2 || function == OUTPUT3 || function == BIDIR || function == BIDIR_OUT;
}

std::string CellText(const LBScanCell* cell) {
    return fmt::format("cell {} = {}", cell->GetBoundaryCellPosition(), Word(cell->cellValue));
}

// The cells of the driver, as they are after a request.
std::string CellTexts(const Driver& driver) {
    if (!driver.Exists()) return "it has no driver";
    if (driver.control == nullptr || driver.control == driver.output) {
        return CellText(driver.output);
    }
    return fmt::format("{}, control {}", CellText(driver.output), CellText(driver.control));
}

std::string WhileOff(const Driver& driver) {
    return fmt::format("{} ({})", Word(driver.output->disableResult), CellTexts(driver));
}

}  // namespace

bool Driver::IsOn() const {
    return control == nullptr || control->cellValue != output->disableValue;
}

// The library drives through the first cell that can and turns it on through the control cell of
// the last.
Driver DriverOf(const Element& element) {
    Driver driver;
    for (LBScanCell* cell : CellsOf(*element.node)) {
        if (!CanDrive(*cell)) continue;
        if (driver.output == nullptr) driver.output = cell;
        driver.control = cell->GetControlCell();
    }
    return driver;
}

PortDriver::PortDriver(const Device& device) : device_(device) {}

DriveResult PortDriver::Request(const Element& element, eSignal level) {
    DriveResult result = level == SIG_Z ? Release(element) : DriveTo(element, level);
    if (result.done) requests_[&element] = level;
    return result;
}

DriveResult PortDriver::DriveTo(const Element& element, eSignal level) {
    const PortType mode = element.node->GetPortType();
    if (mode == PORT_IN || mode == PORT_NONE) {
        return {false, fmt::format("a port of mode {} cannot be driven", Word(mode))};
    }
    const Driver driver = DriverOf(element);
    if (!driver.Exists()) return {false, "no cell drives this port"};
    if (driver.control == nullptr && mode == PORT_INOUT) {
        return {false, "the port has no cell that turns its driver on"};
    }
    if (driver.control == nullptr) {
        driver.output->cellValue = level;
    } else {  // fails without an input cell, when the driver has its values all the same
        device_.map().setPort(device_.Number(element), PORT_OUT, level);
    }
    device_.map().UpdateBScanBitArray(element.node);
    if (!driver.IsOn()) return {true, "lets go, the pin shows " + WhileOff(driver)};
    return {true, fmt::format("drives {} ({})", Word(level), CellTexts(driver))};
}

DriveResult PortDriver::Release(const Element& element) {
    const PortType mode = element.node->GetPortType();
    const Driver driver = DriverOf(element);
    if (mode == PORT_NONE) return {false, "a port of mode linkage has no driver"};
    if (mode == PORT_IN) return {true, "receives; it has no driver"};
    if (driver.control == nullptr) return {false, "the port has no cell that turns it off"};
    device_.map().setPort(device_.Number(element), PORT_IN, SIG_Z);
    // The driver stays on when the port cannot receive, or receives through an observing cell.
    if (driver.IsOn()) driver.control->cellValue = driver.output->disableValue;
    device_.map().UpdateBScanBitArray(element.node);
    return {true, "released, the pin shows " + WhileOff(driver)};
}

bool PortDriver::IsRequested(const Element& element, bool driven) const {
    const auto request = requests_.find(&element);
    return request != requests_.end() && (request->second != SIG_Z) == driven;
}

std::vector<const Element*> PortDriver::AlsoDriven() const {
    std::unordered_set<const LBScanCell*> controls;
    for (const auto& [element, level] : requests_) controls.insert(DriverOf(*element).control);
    std::vector<const Element*> found;
    for (const Element& element : device_.elements()) {
        const Driver driver = DriverOf(element);
        if (driver.control == nullptr || controls.count(driver.control) == 0) continue;
        if (driver.IsOn() && !IsRequested(element, true)) found.push_back(&element);
    }
    return found;
}

std::vector<const Element*> PortDriver::NoLongerDriven() const {
    std::vector<const Element*> found;
    for (const Element& element : device_.elements()) {
        const Driver driver = DriverOf(element);
        const bool shared = driver.control != nullptr && driver.control != driver.output;
        if (shared && !driver.IsOn() && IsRequested(element, true)) found.push_back(&element);
    }
    return found;
}

}  // namespace tool
