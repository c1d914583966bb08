// The commands of the program, each with its options. Each returns the exit status.
#pragma once

#include "chain_file.h"
#include "device.h"
#include "openocd_link.h"
#include "output.h"
#include "scan_text.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

enum ExitStatus : int {
    kSuccess = 0,
    kProblem = 1,  ///< a file that cannot be read, a request that failed, or a difference
    kUsage = 2,    ///< wrong arguments; for diff every trouble
};

struct ShowOptions {
    DeviceFile file;
    bool pins = false;
    bool cells = false;
    bool instructions = false;
    bool all = false;  ///< the attributes that have no place elsewhere, too
    Format format = Format::kTable;
};
int Show(const ShowOptions& options);

struct DriveOptions {
    DeviceFile file;
    std::vector<std::string> requests;
    CaptureOptions capture;  ///< what to start from instead of safe values
    bool force = false;      ///< drive pins that an error makes doubtful, too
    Format format = Format::kTable;
};
int Drive(const DriveOptions& options);

struct ObserveOptions {
    DeviceFile file;
    CaptureOptions capture;
    bool force = false;  ///< tell pins that an error makes doubtful, too
    Format format = Format::kTable;
};
int Observe(const ObserveOptions& options);

enum class CheckFormat { kTable, kCsv, kJson, kSarif };

struct CheckOptions {
    std::vector<std::string> files;
    std::vector<std::string> rules;     ///< only these; all without one
    std::vector<std::string> no_rules;  ///< but these
    std::string explain;                ///< a rule; the files are not looked at
    bool lines = false;
    bool strict = false;
    int jobs = 0;  ///< 0 for one for each processor
    CheckFormat format = CheckFormat::kTable;
};
int Check(const CheckOptions& options);

struct DiffOptions {
    DeviceFile left;
    DeviceFile right;
    Format format = Format::kTable;
};
int Diff(const DiffOptions& options);

struct DrawOptions {
    DeviceFile file;
    std::string output;
};
int Draw(const DrawOptions& options);

struct FormatOptions {
    std::string file;
    std::string output;
    std::string package;
    bool check = false;
};
int FormatFile(const FormatOptions& options);

struct IdentifyOptions {
    std::vector<std::string> words;  ///< IDCODEs, and files and folders
    int jobs = 0;                    ///< 0 for one for each processor
    Format format = Format::kTable;
};
int Identify(const IdentifyOptions& options);

/// Steps from a file, and behind them those of the command line.
struct StepOptions {
    std::string file;
    std::vector<std::string> steps;  ///< one each
};

enum class LiveAction { kRead, kDrive, kRun, kWatch, kIdentify };

struct LiveOptions {
    ChainOptions chain;
    std::string openocd;  ///< HOST:PORT
    std::string adapter;  ///< a configuration with which to start OpenOCD
    LiveAction action = LiveAction::kRead;
    std::vector<std::string> pins;  ///< or requests
    double hold = 1;                ///< seconds
    StepOptions steps;
    int every = 200;  ///< milliseconds
    long long count = 0;
    std::string vcd;
    std::string library;
    Format format = Format::kTable;
};
int Live(const LiveOptions& options);

struct SimulateOptions {
    ChainOptions chain;
    std::vector<std::string> nets;
    std::vector<std::string> levels;
    std::vector<std::string> pulls;
    std::vector<std::string> opens;
    std::vector<std::string> stuck;
    std::vector<std::string> shorts;
    std::string log;
    std::string adapter_file;
    std::uint16_t port = 0;
    int floating = 0;
    bool once = false;
};
int Simulate(const SimulateOptions& options);

struct SvfOptions {
    ChainOptions chain;
    StepOptions steps;
    std::vector<std::string> samples;
    std::string output;
    double frequency = 0;
    bool no_idcode = false;
};
int Svf(const SvfOptions& options);

struct OpenOcdOptions {
    ChainOptions chain;
    std::string output;
};
int OpenOcd(const OpenOcdOptions& options);

struct NetlistOptions {
    std::string file;
    Format format = Format::kTable;
};
int Netlist(const NetlistOptions& options);

struct BoardOptions {
    std::string file;
    bool devices = false;  ///< the devices alone
    Format format = Format::kTable;
};
int Board(const BoardOptions& options);

enum class ReportFormat { kTable, kJson, kJunit };

struct TestOptions {
    std::string file;
    LinkOptions link;
    std::string svf;            ///< write the vectors there
    double frequency = 0;       ///< of TCK in that file, in hertz
    std::string captures;       ///< diagnose these
    std::string save_captures;  ///< write there what came back
    ReportFormat format = ReportFormat::kTable;
};
int Test(const TestOptions& options);

}  // namespace tool
