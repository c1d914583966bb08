// One device, read from its file, in the form that the commands work with.
#pragma once

#include <bscan/bscan.h>

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tool {

/// One element of one port, as the file describes it.
struct Element {
    LPinNode* node = nullptr;
    std::string port;          ///< name as declared
    std::optional<int> index;  ///< for an element of a vector; 0 is the lowest index of its range
    std::string pin;           ///< designator of its package pin; empty without one
    int number = -1;           ///< package pin number; below 1 when the package has no such pin

    /// The name by which people ask for it, such as TDI or D(3).
    std::string Label() const;
};

/// What was captured: one byte for each cell, 0 or 1, and a mask byte of 0 where it is unknown.
struct Capture {
    std::vector<unsigned char> data;
    std::vector<unsigned char> mask;
};

/// A BSDL file and the model that was read from it.
///
/// The library answers questions about a pin by its package number. In real files numbers can be
/// missing, doubled or out of reach, as when the file's first pin map is for another package.
/// So a device that has been read numbers its elements anew, and each can be asked about.
class Device {
public:
    explicit Device(std::string path);

    /// Reads the file. @return bscan::kOk or the code of the failure.
    int Read(const Capture* capture);

    const std::string& path() const { return path_; }
    const BScanParser& parser() const { return parser_; }
    /// The model; empty when the file failed before its ports.
    BScanPinMap& map() const;
    const std::vector<Element>& elements() const { return elements_; }
    std::string ComponentName() const;
    std::string PackageName() const;
    std::vector<CDifferentialPair> Pairs() const;

    /// The number by which the library knows an element of this device.
    int Number(const Element& element) const;
    /// The element that a cell serves; null for a cell of no port.
    const Element* Find(const LPinNode* node) const;

private:
    void CollectElements();

    std::string path_;
    mutable BScanParser parser_;
    mutable BScanPinMap without_ports_;
    std::vector<Element> elements_;
    std::unordered_map<const LPinNode*, std::size_t> positions_;
};

/// The cells that serve a port element, in the order of their association.
std::vector<LBScanCell*> CellsOf(const LPinNode& node);

/// The cells of the boundary register, from position 0.
std::vector<LBScanCell*> CellsOf(const BScanPinMap& map);

}  // namespace tool
