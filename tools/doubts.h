// Which pins of a device should not be driven or believed, since its file has errors.
#pragma once

#include "device.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace tool {

/// The errors of a file by the pins that they make doubtful.
///
/// An error within the declaration of a port, in the entry of a port in the chosen pin map, or in
/// the entry of a cell, concerns the pins of that port or cell; a cell that controls others, all of
/// them. An error that leaves open how long the boundary register is, or where a cell is in it,
/// concerns all pins. Errors of other statements concern none. Nothing is known of a file that is
/// read by lines.
class Doubts {
public:
    explicit Doubts(const Device& device);

    /// @param element  one of the device.
    /// @return the first error that makes it doubtful; null without one.
    const bscan::Finding* Of(const Element& element) const;

private:
    // A stretch of the text from a place to the next one, and whose declaration it is.
    struct Span {
        int line = 0;
        int column = 0;
        std::vector<std::string> ports;  // in upper case, with an index for one element
        int cell = -1;
    };

    void AddSpan(const bscan::Word& word, std::vector<std::string> ports = {}, int cell = -1);
    void AddPorts(const bscan::Facts& facts);
    void AddPinMaps(const bscan::Facts& facts, const std::string& package);
    void AddCells(const bscan::Facts& facts);
    void AddOthers(const bscan::Facts& facts);
    void SpreadOverControlled(const bscan::Facts& facts);
    void Take(const bscan::Description& description, const bscan::Finding& finding);

    std::vector<Span> spans_;  // in the order of the text
    const bscan::Finding* whole_ = nullptr;
    std::unordered_map<std::string, const bscan::Finding*> ports_;
    std::unordered_map<std::string, const bscan::Finding*> pins_;
    std::unordered_map<int, const bscan::Finding*> cells_;
};

/// Why a pin is doubtful, in one sentence without a full stop.
std::string DoubtText(const bscan::Finding& finding);

}  // namespace tool
