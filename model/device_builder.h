// Filling a device pin map, for its own public operations and for the readers.
#pragma once

#include <bscan/device_pin_map.h>

#include "model/cell_fields.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace bscan::detail {

// Its operations throw when memory is exhausted; the device is sound then, and holds what it held.
class DeviceBuilder {
public:
    explicit DeviceBuilder(BScanPinMap& device) : device_(device) {}

    // Whether the device had memory for its index, without which it takes nothing in.
    bool Usable() const { return device_.index_ != nullptr; }

    // Appends elements of one port, with vector indexes from 0 upward or down to 0.
    void AddPorts(std::optional<std::string_view> name, std::string_view mode, std::int64_t count,
                  bool ascending);

    // Appends the names of a declaration of mode "inout".
    void AddIoNames(std::string_view names) { device_.io_names_.emplace_back(names); }

    // The k-th element of a port, by its exact name; null without one.
    LPinNode* Element(std::string_view port, int k);
    // Gives an element its package pin.
    static void SetPinName(LPinNode& node, std::string_view pin);

    // Starts a fresh boundary register.
    void AllocateCells(int length);
    // Fills a cell; 0 or -1 as BScanPinMap::AddNewRegister.
    int AddCell(const CellFields& fields);

    // Makes a cell the copy of another, position and names included.
    static void CopyCell(LBScanCell& to, const LBScanCell& from);
    // The same, but both its names are another.
    static void CopyCell(LBScanCell& to, const LBScanCell& from, std::string_view name) {
        to.CopyFrom(from, name, name);
    }
    // Finds the port of a cell by its pin name, which the lookup turns into upper case.
    LPinNode* PortOfPinName(LBScanCell& cell);

private:
    LPinNode* MakeNode(std::optional<std::string_view> name, PortType mode, int vector_index);
    void EmptyCellLists();

    BScanPinMap& device_;
};

}  // namespace bscan::detail
