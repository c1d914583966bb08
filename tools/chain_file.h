// The devices of a chain as a user gives them: as arguments or in a TOML file.
#pragma once

#include <bscan/bscan.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Where the devices of a chain come from; one of the two is empty.
struct ChainOptions {
    std::vector<std::string> devices;  ///< [NAME=]FILE or [NAME=]ir:LENGTH each, from TDI to TDO
    std::string file;                  ///< a TOML file
};

/// One device as the user names it.
struct ChainEntry {
    std::string name;
    std::string file;  ///< empty for a length alone
    std::string package;
    int instruction_length = 0;
};

/// A device's file and the model that it gave.
struct ChainModel {
    explicit ChainModel(const std::string& file)
        : description(bscan::Description::Read(file.c_str())) {}

    bscan::Description description;
    BScanParser parser;
};

/// A chain and what it refers to.
struct LoadedChain {
    std::vector<ChainEntry> entries;
    std::vector<std::unique_ptr<ChainModel>> models;  ///< null for a length alone
    bscan::Chain chain;
};

/// Tells which devices a user means. Those without a name are called U1, U2, ... by their place.
/// @return what is wrong in a sentence; empty when nothing is.
std::string ParseChain(const ChainOptions& options, std::vector<ChainEntry>& entries);

/// The same for the text of a TOML file; paths in it are relative to @p folder.
std::string ParseChainFile(std::string_view text, const std::string& folder,
                           std::vector<ChainEntry>& entries);

/// Reads the files of the entries that are there already, as LoadChain().
bool LoadDevices(const char* command, LoadedChain& loaded);

/// Reads all files of a chain. Tells on standard error what is wrong, in the name of a command.
/// @return whether the chain is there.
bool LoadChain(const char* command, const ChainOptions& options, LoadedChain& loaded);

}  // namespace tool
