// The port elements of a device beside what its file declares them to be.
#pragma once

#include <bscan/facts.h>
#include <bscan/parser.h>

#include <optional>
#include <string>
#include <vector>

namespace bscan::drawing {

/// A port element of the model and the declaration that made it.
struct DeclaredElement {
    LPinNode* node = nullptr;
    const Port* port = nullptr;
    std::optional<int> index;  ///< as the file declares it; none for a port without range
    std::string pin;           ///< designator of its package pin; empty without one

    /// The name by which people ask for it, such as TDI or D(3).
    std::string Label() const;
};

/// The elements of a device, by their positions in its list of elements.
///
/// @param facts  those of the description that filled the device; the result refers to them.
/// @param device  null for a device without ports.
std::vector<DeclaredElement> DeclaredElements(const Facts& facts, const BScanPinMap* device);

/// The cells that serve a port element, in the order of their association.
std::vector<LBScanCell*> CellsOf(const LPinNode& node);

/// A name as names are compared: in upper case.
std::string UpperCased(std::string_view name);

/// Whether two names are the same, letter case ignored.
bool SameName(std::string_view left, std::string_view right);

/// Whether a name of the file, such as a TAP port, means this element. A port of one element may be
/// named without index.
bool Means(const ElementName& name, const DeclaredElement& element);

}  // namespace bscan::drawing
