#include "chain_file.h"

#include "output.h"
#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <toml++/toml.h>

namespace tool {
namespace {

constexpr std::string_view kLengthPrefix = "ir:";

bool IsNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_' ||
           character == '-';
}

// Whether a text can name a device; the names become names of TAPs too.
bool IsName(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsNameCharacter);
}

std::optional<int> ParseLength(std::string_view text) {
    int length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return length > 0 && length <= bscan::kMaxBoundaryLength ? std::optional(length) : std::nullopt;
}

// [NAME=]FILE or [NAME=]ir:LENGTH. A '=' behind what is no name belongs to the path.
std::string ParseArgument(std::string_view text, ChainEntry& entry) {
    const std::size_t equals = text.find('=');
    if (equals != std::string_view::npos && IsName(text.substr(0, equals))) {
        entry.name = text.substr(0, equals);
        text.remove_prefix(equals + 1);
    }
    if (text.substr(0, kLengthPrefix.size()) != kLengthPrefix) {
        entry.file = text;
        return text.empty() ? fmt::format("{} has no file", entry.name) : std::string();
    }
    const std::optional<int> length = ParseLength(text.substr(kLengthPrefix.size()));
    entry.instruction_length = length.value_or(0);
    return length ? std::string()
                  : fmt::format("'{}' has no length of an instruction register", Printable(text));
}

std::string ReadDeviceTable(const toml::table& table, const std::filesystem::path& folder,
                            ChainEntry& entry) {
    entry.name = table["name"].value_or(table["part"].value_or(std::string()));
    entry.package = table["package"].value_or(std::string());
    const std::string file = table["file"].value_or(std::string());
    if (!file.empty()) entry.file = folder / file;
    const auto length = table["ir"].value<std::int64_t>();
    if (file.empty() == !length) return "a device needs either 'file' or 'ir'";
    if (!length) return {};
    if (*length < 1 || *length > bscan::kMaxBoundaryLength) {
        return fmt::format("{} is no length of an instruction register", *length);
    }
    entry.instruction_length = static_cast<int>(*length);
    return {};
}

std::string NameAll(std::vector<ChainEntry>& entries) {
    std::set<std::string> names;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::string& name = entries[i].name;
        if (name.empty()) name = fmt::format("U{}", i + 1);
        if (!IsName(name)) {
            return fmt::format("'{}' is no name: letters, digits, '_' and '-' may be in one",
                               Printable(name));
        }
        if (!names.insert(name).second) return fmt::format("two devices are called {}", name);
    }
    return entries.empty() ? "name the devices of the chain, from TDI to TDO" : "";
}

void Complain(const char* command, const std::string& message) {
    Write(stderr, fmt::format("bscan {}: {}\n", command, message));
}

bool LoadModel(const char* command, const ChainEntry& entry, ChainModel& model) {
    int code = model.description.Result();
    if (code == bscan::kOk) {
        code = entry.package.empty() ? model.description.Fill(model.parser)
                                     : model.description.Fill(model.parser, entry.package);
    }
    if (code == bscan::kOk) return true;
    Complain(command, fmt::format("{}: {}", Printable(entry.file), bscan::Describe(code)));
    return false;
}

// A fact in doubt may drive the wrong pin.
void TellErrors(const char* command, const ChainEntry& entry, const ChainModel& model) {
    const auto& findings = model.description.Findings();
    const auto errors = std::count_if(findings.begin(), findings.end(), [](const auto& finding) {
        return finding.severity == bscan::Severity::kError;
    });
    if (errors == 0) return;
    Complain(command, fmt::format("{0} has {1} error{2}: 'bscan check' tells more",
                                  Printable(entry.file), errors, errors == 1 ? "" : "s"));
}

bool AddDevice(const char* command, const ChainEntry& entry, LoadedChain& loaded) {
    bscan::ChainResult result;
    if (entry.file.empty()) {
        loaded.models.push_back(nullptr);
        result = loaded.chain.Add(entry.name, entry.instruction_length);
    } else {
        loaded.models.push_back(std::make_unique<ChainModel>(entry.file));
        ChainModel& model = *loaded.models.back();
        if (!LoadModel(command, entry, model)) return false;
        TellErrors(command, entry, model);
        result = loaded.chain.Add(entry.name, model.parser, &model.description.GetFacts());
    }
    if (!result.Ok()) Complain(command, Printable(result.reason));
    return result.Ok();
}

std::string ReadChainTable(const toml::table& chain, const std::string& folder,
                           std::vector<ChainEntry>& entries) {
    const toml::array* const devices = chain["device"].as_array();
    if (devices == nullptr) return "it has no [[device]]";
    for (const toml::node& node : *devices) {
        const toml::table* const table = node.as_table();
        if (table == nullptr) return "each device is a [[device]]";
        ChainEntry& entry = entries.emplace_back();
        const std::string trouble = ReadDeviceTable(*table, folder, entry);
        if (!trouble.empty()) {
            return fmt::format("line {}: {}", table->source().begin.line, trouble);
        }
    }
    return NameAll(entries);
}

}  // namespace

std::string ParseChainFile(std::string_view text, const std::string& folder,
                           std::vector<ChainEntry>& entries) {
    try {
        return ReadChainTable(toml::parse(text), folder, entries);
    } catch (const toml::parse_error& error) {
        return fmt::format("line {}: {}", error.source().begin.line, error.description());
    }
}

std::string ParseChain(const ChainOptions& options, std::vector<ChainEntry>& entries) {
    if (options.file.empty()) {
        for (const std::string& text : options.devices) {
            std::string trouble = ParseArgument(text, entries.emplace_back());
            if (!trouble.empty()) return trouble;
        }
        return NameAll(entries);
    }
    if (!options.devices.empty()) return "give the devices as arguments or with --chain, not both";
    std::ifstream stream(options.file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream) return fmt::format("cannot read {}", Printable(options.file));
    const std::string folder = std::filesystem::path(options.file).parent_path();
    const std::string trouble = ParseChainFile(text, folder, entries);
    return trouble.empty() ? trouble : fmt::format("{}: {}", Printable(options.file), trouble);
}

bool LoadDevices(const char* command, LoadedChain& loaded) {
    return std::all_of(loaded.entries.begin(), loaded.entries.end(),
                       [&](const ChainEntry& entry) { return AddDevice(command, entry, loaded); });
}

bool LoadChain(const char* command, const ChainOptions& options, LoadedChain& loaded) {
    const std::string trouble = ParseChain(options, loaded.entries);
    if (!trouble.empty()) Complain(command, trouble);
    return trouble.empty() && LoadDevices(command, loaded);
}

}  // namespace tool
