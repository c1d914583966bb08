/// @file
/// Gives tests a model for a text, and texts for a model.
#pragma once

#include <bscan/bscan.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::test {

/// A directory of its own, removed with its files afterwards.
class TempDir {
public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    std::string Path(std::string_view name) const { return path_ / name; }
    /// Writes a file and returns its path.
    std::string Write(std::string_view name, std::string_view bytes) const;

private:
    std::filesystem::path path_;
};

/// A text where an operation wants a writable one.
class Text {
public:
    Text(std::string_view text) : text_(text) {}
    operator char*() { return text_.data(); }
    const std::string& str() const { return text_; }

private:
    std::string text_;
};

/// A text as an open stream.
class Stream {
public:
    explicit Stream(std::string_view text);
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { std::fclose(file_); }

    operator FILE*() const { return file_; }

private:
    std::string text_;
    FILE* file_;
};

/// A parser that has read a text as a file, and closed it again.
class ReadDevice {
public:
    explicit ReadDevice(std::string_view text) : ReadDevice(text, {}, nullptr) {}
    /// Stores a capture first, one byte a cell; the mask, when given, is as long.
    ReadDevice(std::string_view text, std::vector<unsigned char> capture,
               const std::vector<unsigned char>* mask = nullptr);

    /// The result of Initialize() when that failed, of Read() otherwise.
    int result() const { return result_; }
    BScanPinMap& map() { return *parser.GetPinMap(); }

    BScanParser parser;

private:
    int result_;
};

/// Wraps statements into an entity with a generic clause for the package "PKG".
std::string Entity(std::string_view statements);

/// The ports of a device in order, each as name:mode:vector index.
std::string Ports(const BScanPinMap* map);
/// The ports in order, each as name=pin name/pin number.
std::string Pins(const BScanPinMap* map);
/// The positions of the cells that a port element lists.
std::string CellsOf(const LPinNode* node);
/// One cell in a line: type, function, port, names, values and control link.
std::string Describe(const LBScanCell& cell);
/// The differential pairs, each as positive/negative@position,position.
std::string Pairs(const BScanParser& parser);
/// The instructions or registers of a description, each as name(item,item).
std::string Instructions(const CInstrRegisterDesc* description);
std::string Registers(const CRegisterAccessDesc* description);

/// The whole model as text, one object a line. It goes by reading accessors alone, so it leaves
/// names and lookups as they are.
std::string DumpModel(BScanParser& parser);

/// Says what in a model contradicts itself; empty for a sound one, which is left with every port's
/// bits brought up to date.
std::string FindFault(BScanParser& parser);

/// The repository's folder, from the build.
std::filesystem::path SourceDir();
/// Where device files of manufacturers lie on machines that have some.
std::filesystem::path ManufacturersDevices();
std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder);
std::string Contents(const std::filesystem::path& file);

}  // namespace bscan::test
