// bscan simulate: a chain of devices to try things on without hardware.

#include "chain_file.h"
#include "commands.h"
#include "interrupt.h"
#include "printable.h"
#include "simulation/bitbang_server.h"
#include "simulation/simulated_board.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

namespace tool {
namespace {

int Complain(const std::string& message, int status) {
    Write(stderr, fmt::format("bscan simulate: {}\n", Printable(message)));
    return status;
}

std::optional<bool> ParseBit(std::string_view text) {
    if (text == "0") return false;
    if (text == "1") return true;
    return std::nullopt;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

// WHERE=LEVEL, each handed to an operation of the board. @return what is wrong.
using LevelOperation = std::string (SimulatedBoard::*)(std::string_view, bool);
std::string ApplyLevels(SimulatedBoard& board, const std::vector<std::string>& texts,
                        LevelOperation operation) {
    for (const std::string& text : texts) {
        const std::size_t equals = text.rfind('=');
        const auto level =
            equals == std::string::npos ? std::nullopt : ParseBit(text.substr(equals + 1));
        if (!level) return fmt::format("'{}' is not of the form PIN=0 or PIN=1", text);
        std::string problem = (board.*operation)(text.substr(0, equals), *level);
        if (!problem.empty()) return problem;
    }
    return {};
}

std::string JoinNets(SimulatedBoard& board, const std::vector<std::string>& nets) {
    for (const std::string& text : nets) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos) return fmt::format("'{}' is not NET=PIN,PIN", text);
        for (const std::string& pin : Split(text.substr(equals + 1), ',')) {
            std::string problem = board.Join(text.substr(0, equals), pin);
            if (!problem.empty()) return problem;
        }
    }
    return {};
}

// A,B or A,B:KIND; a ':' may be in the name of a pin, too, as in U1.pin:7.
std::string MakeShorts(SimulatedBoard& board, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        const std::size_t colon = text.rfind(':');
        std::string kind = colon == std::string::npos ? "" : text.substr(colon + 1);
        const bool has_kind = kind == "and" || kind == "or" || kind == "first";
        const std::vector<std::string> nets = Split(has_kind ? text.substr(0, colon) : text, ',');
        if (!has_kind) kind = "and";
        if (nets.size() != 2) {
            return fmt::format("'{}' is not NET,NET or NET,NET:and, :or or :first", text);
        }
        std::string problem = board.Short(nets[0], nets[1],
                                          kind == "and"  ? ShortKind::kAnd
                                          : kind == "or" ? ShortKind::kOr
                                                         : ShortKind::kFirstWins);
        if (!problem.empty()) return problem;
    }
    return {};
}

std::string SetUp(SimulatedBoard& board, const SimulateOptions& options) {
    board.SetFloating(options.floating == 1);
    std::string problem = JoinNets(board, options.nets);
    if (problem.empty()) problem = ApplyLevels(board, options.pulls, &SimulatedBoard::SetPull);
    if (problem.empty()) problem = ApplyLevels(board, options.levels, &SimulatedBoard::SetLevel);
    if (problem.empty()) problem = ApplyLevels(board, options.stuck, &SimulatedBoard::StickAt);
    if (problem.empty()) problem = MakeShorts(board, options.shorts);
    for (const std::string& pin : options.opens) {
        if (problem.empty()) problem = board.BreakOpen(pin);
    }
    return problem;
}

// A device of the chain as its file describes it.
void AddDevice(SimulatedBoard& board, const ChainEntry& entry, const ChainModel* model) {
    if (model == nullptr) {
        board.Add({entry.name, entry.instruction_length});
    } else {
        board.Add({entry.name, model->description.GetFacts()});
    }
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The configuration with which OpenOCD reaches the simulation.
std::string AdapterText(std::uint16_t port) {
    return fmt::format(
        "adapter driver remote_bitbang\n"
        "remote_bitbang host 127.0.0.1\n"
        "remote_bitbang port {}\n"
        "transport select jtag\n",
        port);
}

int Serve(SimulatedBoard& board, const SimulateOptions& options) {
    CatchInterrupts();
    BitbangServer server(options.port);
    if (!server.problem().empty()) {
        return Complain(fmt::format("cannot listen on port {}: {}", options.port, server.problem()),
                        kProblem);
    }
    if (!options.adapter_file.empty()) {
        const File file(std::fopen(options.adapter_file.c_str(), "w"));
        if (file == nullptr) {
            return Complain("cannot write " + options.adapter_file, kProblem);
        }
        Write(file.get(), AdapterText(server.port()));
    }
    Write(stdout, fmt::format("# {} on 127.0.0.1:{}; for OpenOCD:\n{}",
                              board.devices().size() == 1 ? "one device" : "a chain", server.port(),
                              AdapterText(server.port())));
    std::fflush(stdout);
    while (server.ServeOne(board)) {
        if (options.once) break;
    }
    return kSuccess;
}

}  // namespace

int Simulate(const SimulateOptions& options) {
    LoadedChain loaded;
    if (!LoadChain("simulate", options.chain, loaded)) return kProblem;
    File log_file;
    if (!options.log.empty()) {
        log_file.reset(std::fopen(options.log.c_str(), "w"));
        if (log_file == nullptr) return Complain("cannot write " + options.log, kProblem);
        // A test that waits for a line sees it at once.
        std::setvbuf(log_file.get(), nullptr, _IOLBF, BUFSIZ);
    }
    SimulatedBoard board(loaded.chain, [&log_file](std::uint64_t tck, std::string_view text) {
        if (log_file != nullptr) Write(log_file.get(), fmt::format("{} {}\n", tck, text));
    });
    for (std::size_t i = 0; i < loaded.entries.size(); ++i) {
        AddDevice(board, loaded.entries[i], loaded.models[i].get());
    }
    const std::string problem = SetUp(board, options);
    if (!problem.empty()) return Complain(problem, kUsage);
    board.Reset();
    return Serve(board, options);
}

}  // namespace tool
