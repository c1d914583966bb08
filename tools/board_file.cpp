#include "board_file.h"

#include "output.h"
#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <toml++/toml.h>

namespace tool {
namespace {

void Complain(const char* command, const std::string& message) {
    Write(stderr, fmt::format("bscan {}: {}\n", command, Printable(message)));
}

// A key that is misspelt would change what is driven.
std::string CheckKeys(const toml::table& table, std::initializer_list<std::string_view> known) {
    for (const auto& [key, value] : table) {
        const std::string_view name(key);
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        return fmt::format("line {}: '{}' is no key of a board file", value.source().begin.line,
                           name);
    }
    return {};
}

std::string ReadTexts(const toml::table& table, const char* key, std::vector<std::string>& texts) {
    const toml::node* const node = table.get(key);
    if (node == nullptr) return {};
    const toml::array* const list = node->as_array();
    const auto line = node->source().begin.line;
    if (list == nullptr) return fmt::format("line {}: '{}' is a list of texts", line, key);
    for (const toml::node& item : *list) {
        const auto text = item.value<std::string>();
        if (!item.is_string() || !text) {
            return fmt::format("line {}: '{}' is a list of texts", line, key);
        }
        texts.push_back(*text);
    }
    return {};
}

std::string ReadHold(const toml::table& nets, bscan::BoardRules& rules) {
    const toml::node* const node = nets.get("hold");
    if (node == nullptr) return {};
    const toml::table* const levels = node->as_table();
    if (levels == nullptr) {
        return fmt::format("line {}: 'hold' is a table of nets and levels",
                           node->source().begin.line);
    }
    for (const auto& [net, value] : *levels) {
        const auto level = value.is_integer() ? value.value<std::int64_t>() : std::nullopt;
        if (!level || *level < 0 || *level > 1) {
            return fmt::format("line {}: a net is held at 0 or 1", value.source().begin.line);
        }
        rules.hold.emplace_back(std::string(std::string_view(net)), *level == 1);
    }
    return {};
}

std::string ReadParts(const toml::table& parts, bscan::BoardRules& rules) {
    std::string trouble = CheckKeys(parts, {"through", "pull_up", "pull_down", "passive"});
    if (trouble.empty()) trouble = ReadTexts(parts, "through", rules.through);
    if (trouble.empty()) trouble = ReadTexts(parts, "pull_up", rules.pull_up);
    if (trouble.empty()) trouble = ReadTexts(parts, "pull_down", rules.pull_down);
    if (trouble.empty()) trouble = ReadTexts(parts, "passive", rules.passive);
    return trouble;
}

std::string ReadNets(const toml::table& nets, bscan::BoardRules& rules) {
    std::string trouble = CheckKeys(nets, {"supply", "ground", "hold", "quiet", "drive"});
    if (trouble.empty()) trouble = ReadTexts(nets, "supply", rules.supply);
    if (trouble.empty()) trouble = ReadTexts(nets, "ground", rules.ground);
    if (trouble.empty()) trouble = ReadTexts(nets, "quiet", rules.quiet);
    if (trouble.empty()) trouble = ReadTexts(nets, "drive", rules.drive);
    return trouble.empty() ? ReadHold(nets, rules) : trouble;
}

using TableReader = std::string (*)(const toml::table&, bscan::BoardRules&);

std::string ReadTable(const toml::table& board, const char* key, TableReader read,
                      bscan::BoardRules& rules) {
    const toml::node* const node = board.get(key);
    if (node == nullptr) return {};
    const toml::table* const table = node->as_table();
    if (table == nullptr) {
        return fmt::format("line {}: '{}' is a table", node->source().begin.line, key);
    }
    return read(*table, rules);
}

std::string ReadBoardTable(const toml::table& board, const std::string& folder, BoardFile& file) {
    std::string trouble = CheckKeys(board, {"netlist", "device", "parts", "nets"});
    if (!trouble.empty()) return trouble;
    const auto netlist = board["netlist"].value<std::string>();
    if (!netlist || netlist->empty()) return "it names no netlist";
    file.netlist = std::filesystem::path(folder) / *netlist;
    trouble = ReadTable(board, "parts", ReadParts, file.rules);
    return trouble.empty() ? ReadTable(board, "nets", ReadNets, file.rules) : trouble;
}

// Reads the netlist and makes the board.
std::string MakeLoadedBoard(const BoardFile& file, LoadedBoard& loaded) {
    const std::optional<std::string> text = ReadWholeFile(file.netlist);
    if (!text) return fmt::format("cannot read {}", file.netlist);
    const bscan::Netlist netlist = bscan::ReadNetlist(*text);
    if (!netlist.Ok()) {
        return fmt::format("{}:{}: {}", file.netlist, netlist.line, netlist.problem);
    }
    std::vector<const bscan::Facts*> facts;
    for (const auto& model : loaded.devices.models) {
        facts.push_back(model == nullptr ? nullptr : &model->description.GetFacts());
    }
    loaded.board = bscan::MakeBoard(loaded.devices.chain, facts, netlist, file.rules);
    return {};
}

}  // namespace

std::optional<std::string> ReadWholeFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    return stream ? std::optional(std::move(text)) : std::nullopt;
}

std::string ParseBoardFile(std::string_view text, const std::string& folder, BoardFile& file) {
    std::string trouble = ParseChainFile(text, folder, file.devices);
    if (!trouble.empty()) return trouble;
    try {
        return ReadBoardTable(toml::parse(text), folder, file);
    } catch (const toml::parse_error& error) {
        return fmt::format("line {}: {}", error.source().begin.line, error.description());
    }
}

bool LoadBoard(const char* command, const std::string& path, LoadedBoard& loaded) {
    const std::optional<std::string> text = ReadWholeFile(path);
    if (!text) {
        Complain(command, fmt::format("cannot read {}", path));
        return false;
    }
    BoardFile file;
    const std::string folder = std::filesystem::path(path).parent_path();
    std::string trouble = ParseBoardFile(*text, folder, file);
    if (!trouble.empty()) {
        Complain(command, fmt::format("{}: {}", path, trouble));
        return false;
    }
    loaded.devices.entries = std::move(file.devices);
    if (!LoadDevices(command, loaded.devices)) return false;
    trouble = MakeLoadedBoard(file, loaded);
    if (!trouble.empty()) Complain(command, trouble);
    for (const std::string& problem : loaded.board.problems) Complain(command, problem);
    for (const std::string& note : loaded.board.notes) Complain(command, "note: " + note);
    return trouble.empty() && loaded.board.Ok();
}

}  // namespace tool
