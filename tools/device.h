// One device, read from its file, in the form that the commands work with.
#pragma once

#include <bscan/bscan.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tool {

/// A file with a device, and how a user wants it to be read.
struct DeviceFile {
    std::string path;       ///< - for standard input
    std::string package;    ///< one of the file's packages; empty for the one that it names itself
    bool by_lines = false;  ///< with BScanParser::Read; otherwise with bscan::Description
};

/// One element of one port, as the file describes it.
struct Element {
    LPinNode* node = nullptr;
    std::string port;          ///< name as declared
    std::optional<int> index;  ///< of an element of a vector: as declared; read by lines, from 0
    std::string pin;           ///< designator of its package pin; empty without one
    int number = -1;           ///< package pin number; below 1 when the package has no such pin

    /// The name by which people ask for it, such as TDI or D(3).
    std::string Label() const;
};

/// What was captured: one byte for each cell, 0 or 1, and a mask byte of 0 where it is unknown.
struct Capture {
    std::vector<unsigned char> data;
    std::vector<unsigned char> mask;
    bool is_hexadecimal = false;  ///< then up to 7 bits may stand behind the last cell
};

/// A BSDL file and the model that was read from it.
///
/// The library answers questions about a pin by its package number. In real files numbers can be
/// missing, doubled or out of reach, as when the file's first pin map is for another package.
/// So a device that has been read numbers its elements anew, and each can be asked about.
class Device {
public:
    explicit Device(DeviceFile file);

    /// Reads the file. @return bscan::kOk or the code of the failure.
    int Read(const Capture* capture);

    /// The path as the user gave it.
    const std::string& path() const { return file_.path; }
    const DeviceFile& file() const { return file_; }
    const BScanParser& parser() const { return parser_; }
    /// What was read; null when the file is read by lines.
    const bscan::Description* description() const { return description_.get(); }
    /// What the file says; empty when it is read by lines.
    const bscan::Facts& facts() const;
    /// The model; empty when the file failed before its ports.
    BScanPinMap& map() const;
    /// In the order of declaration, as PinDriver and PinNames count them.
    const std::vector<Element>& elements() const { return elements_; }
    const bscan::PinNames& names() const { return names_; }
    std::string ComponentName() const;
    std::string PackageName() const;
    std::vector<CDifferentialPair> Pairs() const;

    /// The number by which the library knows an element of this device.
    int Number(const Element& element) const;
    /// The element that a cell serves; null for a cell of no port.
    const Element* Find(const LPinNode* node) const;
    /// The element of that name; null when the file declares none.
    const Element* Find(const bscan::ElementName& name) const;

private:
    int ReadByLines();
    int ReadDescription();
    void CollectElements();

    DeviceFile file_;
    std::unique_ptr<bscan::Description> description_;
    mutable BScanParser parser_;
    mutable BScanPinMap without_ports_;
    bscan::PinNames names_;
    std::vector<Element> elements_;
    std::unordered_map<const LPinNode*, std::size_t> positions_;
};

/// The cells that serve a port element, in the order of their association.
std::vector<LBScanCell*> CellsOf(const LPinNode& node);

/// The cells of the boundary register, from position 0.
std::vector<LBScanCell*> CellsOf(const BScanPinMap& map);

}  // namespace tool
