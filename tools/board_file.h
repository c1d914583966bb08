// A board as a user describes it: a TOML file, which names a netlist and the devices of a chain.
#pragma once

#include <bscan/board/board.h>

#include "chain_file.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool {

/// What a board file says.
struct BoardFile {
    std::string netlist;  ///< path
    std::vector<ChainEntry> devices;
    bscan::BoardRules rules;
};

/// Reads the text of a board file; paths in it are relative to @p folder.
/// @return what is wrong in a sentence; empty when nothing is.
std::string ParseBoardFile(std::string_view text, const std::string& folder, BoardFile& file);

/// A board and what it is made of.
struct LoadedBoard {
    LoadedChain devices;
    bscan::Board board;
};

/// Reads a board with all its files. Tells on standard error what is wrong, and what the board's
/// user should know, in the name of a command.
/// @return whether the board can be used.
bool LoadBoard(const char* command, const std::string& path, LoadedBoard& loaded);

/// Reads a file. @return nothing when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);

}  // namespace tool
