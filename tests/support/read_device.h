/// @file
/// Gives tests and fuzz targets a model for a text, and texts for a model.
#pragma once

#include <bscan/bscan.h>
#include <bscan/text.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace bscan::test {

/// What a test is tried with, one row after the other.
template <class... Columns>
using Rows = std::vector<std::tuple<Columns...>>;

/// A directory of its own, removed with its files afterwards.
class TempDir {
public:
    TempDir();
    ~TempDir();

    std::string Path(std::string_view name) const { return path_ / name; }
    /// Writes a file and returns its path.
    std::string Write(std::string_view name, std::string_view bytes) const;

private:
    std::filesystem::path path_;
};

/// A text where an operation wants a writable one, with the room that the reading operations are
/// promised; null for null.
class Text {
public:
    Text(const char* text) : Text(std::string_view(text ? text : "")) { null_ = !text; }
    Text(std::string_view text) : bytes_(std::max<std::size_t>(text.size() + 1, 1024)) {
        text.copy(bytes_.data(), text.size());
    }
    operator char*() { return null_ ? nullptr : bytes_.data(); }

private:
    std::vector<char> bytes_;
    bool null_ = false;
};

/// A text as an open stream.
class Stream {
public:
    explicit Stream(std::string_view text);
    ~Stream() { std::fclose(file_); }

    operator FILE*() const { return file_; }

private:
    std::string text_;
    FILE* file_;
};

/// A parser that has read a text as a file, and closed it again.
class ReadDevice {
public:
    /// Stores a capture first, when there is one, one byte a cell; a mask is as long.
    explicit ReadDevice(std::string_view text, std::vector<unsigned char> capture = {},
                        std::vector<unsigned char> mask = {});

    /// The result of Initialize() when that failed, of Read() otherwise.
    int result() const { return result_; }
    BScanPinMap& map() { return *parser.GetPinMap(); }
    LPinNode* Port(const char* name) { return map().GetPortwName(Text(name)); }

    BScanParser parser;

private:
    int result_;
};

/// A device that uses every kind of statement, in few bytes.
const std::string& SmallDevice();
/// Wraps statements into an entity with a generic clause for the package "PKG".
std::string Entity(std::string_view statements);

LPinNode* NodeAt(const BScanPinMap& map, int index);
/// Whether a cell's bit of the scan vector is set.
bool BitAt(BScanPinMap& map, int cell);

/// The ports of a device in order, each as name:mode:vector index.
std::string Ports(const BScanPinMap* map);
/// The ports in order, each as name=pin name/pin number.
std::string Pins(const BScanPinMap* map);
/// The ports in order, '+' for a positive leg, '-' for a negative one, '.' for others.
std::string Legs(const BScanPinMap* map);
/// The positions of the cells that a port element lists.
std::string CellsOf(const LPinNode* node);
/// One cell in a line: type, function, port, names, values and control link.
std::string Describe(const LBScanCell& cell);
/// The differential pairs, each as positive/negative@position,position.
std::string Pairs(BScanParser& parser);
/// The instructions or registers of a description, each as name(item,item).
std::string Instructions(const CInstrRegisterDesc* description);
std::string Registers(const CRegisterAccessDesc* description);

/// The whole model as text, one object a line. It goes by reading accessors alone, so it leaves
/// names and lookups as they are.
std::string DumpModel(BScanParser& parser);

std::filesystem::path SourceDir();
std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder);
std::string Contents(const std::filesystem::path& file);

}  // namespace bscan::test
