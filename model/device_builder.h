// Filling a device pin map, for its own public operations and for the readers.
#pragma once

#include <bscan/device_pin_map.h>

#include "model/cell_fields.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
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
    // The same for a cell of an element that is known; null for none.
    int AddCell(const CellFields& fields, LPinNode* node);
    // Leaves the names of the first elements in upper case, as finding the last of them does.
    void FindElements(int count);

    // Whether a cell can serve a port as another cell serves its own: it needs a cell in front of
    // it, to be controlled by.
    bool CanFollow(const LBScanCell& cell, const LBScanCell& leader) const;
    // Makes a cell of a port the copy of another, and the cell in front of it the copy of that
    // one's control cell.
    void Follow(LBScanCell& cell, const LBScanCell& leader, std::string_view pin_name,
                std::string_view original_name, LPinNode& port);

private:
    LPinNode* MakeNode(std::optional<std::string_view> name, PortType mode,
                       std::size_t vector_index);
    void EmptyCellLists();
    bool Takes(const CellFields& fields) const;

    BScanPinMap& device_;
};

}  // namespace bscan::detail
