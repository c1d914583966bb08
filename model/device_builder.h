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
    // Turns the names of the first elements into upper case, as a lookup that finds the last of
    // them does.
    void UpperCaseNames(int count);

    // Whether CopyCell can be done: the model has a control cell, and the cell one in front of it,
    // which becomes the copy of that.
    bool CanCopyCell(const LBScanCell& cell, const LBScanCell& model) const;
    // Makes a cell the copy of a model, but under these names and for this port, and the cell in
    // front of it the copy of the model's control cell.
    void CopyCell(LBScanCell& cell, const LBScanCell& model, std::string_view pin_name,
                  std::string_view original_name, LPinNode& port);

private:
    LPinNode* MakeNode(std::optional<std::string_view> name, PortType mode,
                       std::size_t vector_index);
    void EmptyCellLists();
    bool Takes(const CellFields& fields) const;

    BScanPinMap& device_;
};

}  // namespace bscan::detail
