// The command line of bscan.

#include "commands.h"
#include "printable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <functional>
#include <map>

namespace tool {
namespace {

struct Options {
    ShowOptions show;
    DriveOptions drive;
    ObserveOptions observe;
    CheckOptions check;
    DiffOptions diff;
    DrawOptions draw;
};

using Command = std::function<int()>;

CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& purpose,
                     const std::string& example) {
    CLI::App* command = app.add_subcommand(name, purpose);
    command->group("Commands");
    command->footer("Example:\n  " + example);
    return command;
}

void AddFile(CLI::App* command, const std::string& name, std::string& value,
             const std::string& purpose) {
    command->add_option(name, value, purpose)->required()->type_name("");
}

Format ParseFormat(const std::string& name) {
    static const std::map<std::string, Format> kNames = {
        {"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};
    const auto found = kNames.find(name);
    if (found == kNames.end()) {
        throw CLI::ValidationError("--format", "is table, csv or json, not " + name);
    }
    return found->second;
}

void AddFormat(CLI::App* command, Format& format) {
    const auto set = [&format](const std::string& name) { format = ParseFormat(name); };
    command->add_option_function<std::string>("--format", set, "table, csv or json")
        ->type_name("FORMAT");
    command->add_flag_callback(
        "--json", [&format] { format = Format::kJson; }, "The same as --format json");
}

void AddShow(CLI::App& app, ShowOptions& options) {
    CLI::App* command = AddCommand(app, "show", "Print what a file says about its device",
                                   "bscan show device.bsd --pins --cells");
    AddFile(command, "FILE", options.file, "The BSDL file");
    command->add_flag("--pins", options.pins, "Print the ports with their pins and cells");
    command->add_flag("--cells", options.cells, "Print the boundary register");
    command->add_flag("--instructions", options.instructions, "Print the instructions");
    AddFormat(command, options.format);
}

void AddDrive(CLI::App& app, DriveOptions& options) {
    CLI::App* command = AddCommand(app, "drive", "Print the scan vector that drives pins",
                                   "bscan drive device.bsd A1=0 'D(3)=1' READY=Z\n"
                                   "\n"
                                   "A pin is looked for by designator (B3), then by port (D(3), or "
                                   "D for all of D), then\n"
                                   "by number; pin:, port: or number: in front asks for one of "
                                   "these alone.");
    AddFile(command, "FILE", options.file, "The BSDL file");
    command->add_option("PIN=LEVEL", options.requests, "A pin, and 0, 1, or Z to release it")
        ->required()
        ->type_name("");
    AddFormat(command, options.format);
}

void AddObserve(CLI::App& app, ObserveOptions& options) {
    CLI::App* command = AddCommand(app, "observe", "Print what the ports show in a capture",
                                   "bscan observe device.bsd --capture 0110x01");
    AddFile(command, "FILE", options.file, "The BSDL file");
    CLI::Option* bits = command->add_option("--capture", options.capture,
                                            "The captured bits: 0, 1 and x, cell 0 first");
    CLI::Option* file = command->add_option("--capture-file", options.capture_file,
                                            "A text file with them; - for standard input");
    bits->type_name("BITS")->excludes(file);
    file->type_name("PATH");
    AddFormat(command, options.format);
}

void AddCheck(CLI::App& app, CheckOptions& options) {
    CLI::App* command = AddCommand(app, "check", "Tell which files can be read, and why not",
                                   "bscan check --jobs 4 devices/ other.bsdl");
    command->add_option("FILE", options.files, "Files, and folders to be searched for BSDL files")
        ->required()
        ->type_name("");
    command->add_option("-j,--jobs", options.jobs, "Files to read at a time (one per processor)")
        ->check(CLI::Range(1, 256).description(""))
        ->type_name("N");
    AddFormat(command, options.format);
}

void AddDiff(CLI::App& app, DiffOptions& options) {
    CLI::App* command = AddCommand(app, "diff", "Print how the devices of two files differ",
                                   "bscan diff rev_a.bsd rev_b.bsd");
    AddFile(command, "A", options.left, "A BSDL file");
    AddFile(command, "B", options.right, "Another one");
    AddFormat(command, options.format);
}

void AddDraw(CLI::App& app, DrawOptions& options) {
    CLI::App* command = AddCommand(app, "draw", "Draw the package, coloured by port mode",
                                   "bscan draw device.bsd device.svg");
    AddFile(command, "FILE", options.file, "The BSDL file");
    AddFile(command, "OUT.svg", options.output, "The drawing to write; - for standard output");
}

std::string FailureMessage(const CLI::App* app, const CLI::Error& error) {
    const bool without_command =
        app->get_subcommands().empty() &&
        error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    return fmt::format("bscan: {}\nRun with --help for more information.\n",
                       without_command ? "name a command: show, drive, observe, check, diff or draw"
                                       : Printable(error.what()));
}

void Describe(CLI::App& app) {
    app.require_subcommand(1);
    app.failure_message(FailureMessage);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("REQUIRED", "");
    app.set_version_flag("--version", "bscan " BSCAN_VERSION);
    app.footer(
        "Exit status: 0 when all is well, 1 when a file cannot be read or a request fails, 2 for\n"
        "wrong usage. diff: 0 for no difference, 1 for some, 2 for trouble.\n"
        "Colours appear on a terminal only, and not when NO_COLOR is set.\n"
        "\n"
        "Example:\n"
        "  bscan show device.bsd");
}

// Runs the command that the user named.
int Dispatch(const CLI::App& app, const Options& options) {
    const std::map<std::string, Command> commands = {
        {"show", [&] { return Show(options.show); }},
        {"drive", [&] { return Drive(options.drive); }},
        {"observe", [&] { return Observe(options.observe); }},
        {"check", [&] { return Check(options.check); }},
        {"diff", [&] { return Diff(options.diff); }},
        {"draw", [&] { return Draw(options.draw); }}};
    return commands.at(app.get_subcommands().front()->get_name())();
}

int Run(int argc, const char* const* argv) {
    CLI::App app("Reads BSDL files (IEEE 1149.1) and drives and observes pins.", "bscan");
    Options options;
    Describe(app);
    AddShow(app, options.show);
    AddDrive(app, options.drive);
    AddObserve(app, options.observe);
    AddCheck(app, options.check);
    AddDiff(app, options.diff);
    AddDraw(app, options.draw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSuccess : kUsage;
    }
    const int status = Dispatch(app, options);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    Write(stderr, "bscan: the output could not be written\n");
    return kUsage;
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    try {
        return tool::Run(argc, argv);
    } catch (const std::exception& error) {
        tool::Write(stderr, fmt::format("bscan: {}\n", tool::Printable(error.what())));
        return tool::kUsage;
    }
}
