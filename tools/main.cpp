// The command line of bscan.

#include <bscan/version.h>

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
    FormatOptions format;
    IdentifyOptions identify;
    LiveOptions live;
    SimulateOptions simulate;
    SvfOptions svf;
    OpenOcdOptions openocd;
    NetlistOptions netlist;
    BoardOptions board;
    TestOptions test;
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

void AddLines(CLI::App* command, CLI::Option* package, const std::function<void()>& set) {
    command
        ->add_flag_callback("--lines", set, "Read line by line, as hosts of BScanParser::Read do")
        ->excludes(package);
}

// A file with a device, and how to read it.
void AddDeviceFile(CLI::App* command, DeviceFile& file) {
    AddFile(command, "FILE", file.path, "The BSDL file; - for standard input");
    CLI::Option* package =
        command->add_option("--package", file.package, "Another of the file's packages");
    package->type_name("NAME");
    AddLines(command, package, [&file] { file.by_lines = true; });
}

// What a number has to be, in few words: the limits of its type are of no interest to people.
CLI::Validator Number(bool (*fits)(double), const char* wanted) {
    return CLI::Validator(
        [fits, wanted](std::string& text) {
            double number = 0;
            const bool read = CLI::detail::lexical_cast(text, number);
            return read && fits(number) ? "" : fmt::format("is {}, not {}", wanted, text);
        },
        "");
}

CLI::Validator Positive() {
    return Number([](double number) { return number > 0; }, "more than 0");
}

CLI::Validator NotNegative() {
    return Number([](double number) { return number >= 0; }, "0 or more");
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
    AddDeviceFile(command, options.file);
    command->add_flag("--pins", options.pins, "Print the ports with their pins and cells");
    command->add_flag("--cells", options.cells, "Print the boundary register");
    command->add_flag("--instructions", options.instructions, "Print the instructions");
    command->add_flag("--all", options.all, "Print every other attribute, too");
    AddFormat(command, options.format);
}

void AddCapture(CLI::App* command, CaptureOptions& options, const std::string& purpose) {
    CLI::Option* bits = command->add_option("--capture", options.bits,
                                            purpose + ": 0, 1, x, cell 0 first; or hex:DIGITS");
    CLI::Option* file = command->add_option("--capture-file", options.file,
                                            "A text file with it; - for standard input");
    bits->type_name("BITS")->excludes(file);
    file->type_name("PATH");
}

void AddDrive(CLI::App& app, DriveOptions& options) {
    CLI::App* command = AddCommand(
        app, "drive", "Print the scan vector that drives pins",
        "bscan drive device.bsd A1=0 'D(3)=1' READY=Z D=0x5A 'D(3..0)=Z' 'IO*=1'\n"
        "\n"
        "A pin is looked for by designator (B3), then by port (D for all of a vector, D(3) or\n"
        "D(3..0) by declared index, IO* for all ports whose names fit), then by number;\n"
        "pin:, port: or number: in front asks for one of these alone.\n"
        "The bits of a number are for the elements of one vector: the most significant one for\n"
        "the left end as declared, or of the range.");
    AddDeviceFile(command, options.file);
    command
        ->add_option("PIN=LEVEL", options.requests,
                     "A pin, and 0, 1, a number (0x5A, 0b1010), or Z to release it")
        ->required()
        ->type_name("");
    AddCapture(command, options.capture, "Start from this vector instead of safe values");
    command->add_flag("--force", options.force, "Drive pins that an error makes doubtful, too");
    AddFormat(command, options.format);
}

void AddObserve(CLI::App& app, ObserveOptions& options) {
    CLI::App* command = AddCommand(app, "observe", "Print what the ports show in a capture",
                                   "bscan observe device.bsd --capture 0110x01\n"
                                   "  bscan observe device.bsd --capture hex:48c18c00");
    AddDeviceFile(command, options.file);
    AddCapture(command, options.capture, "The captured bits");
    command->add_flag("--force", options.force, "Tell pins that an error makes doubtful, too");
    AddFormat(command, options.format);
}

void AddCheck(CLI::App& app, CheckOptions& options) {
    CLI::App* command = AddCommand(app, "check", "Tell what is wrong with files, and where",
                                   "bscan check --jobs 4 devices/ other.bsdl\n"
                                   "  bscan check --explain cell-control");
    command
        ->add_option("FILE", options.files,
                     "Files, folders to be searched for BSDL files, - for standard input")
        ->type_name("");
    const auto add_rules = [&](const char* name, auto& rules, const char* purpose) {
        command->add_option(name, rules, purpose)
            ->type_name("RULE")
            ->allow_extra_args(false)
            ->delimiter(',');
    };
    add_rules("--rule", options.rules, "Tell only findings of this rule; may be repeated");
    add_rules("--no-rule", options.no_rules, "Tell no findings of this rule; may be repeated");
    command->add_option("--explain", options.explain, "Print what a rule is about")
        ->type_name("RULE");
    command->add_flag("--lines", options.lines,
                      "Tell what reading by lines makes of the files, too");
    command->add_flag("--strict", options.strict, "Warnings count as errors do");
    command->add_option("-j,--jobs", options.jobs, "Files to read at a time (one per processor)")
        ->check(CLI::Range(1, 256).description(""))
        ->type_name("N");
    const std::map<std::string, CheckFormat> formats = {{"table", CheckFormat::kTable},
                                                        {"csv", CheckFormat::kCsv},
                                                        {"json", CheckFormat::kJson},
                                                        {"sarif", CheckFormat::kSarif}};
    command->add_option("--format", options.format, "table, csv, json or sarif")
        ->transform(CLI::Transformer(formats).description(""))
        ->type_name("FORMAT");
    command->add_flag_callback(
        "--json", [&options] { options.format = CheckFormat::kJson; }, "The same as --format json");
}

void AddDiff(CLI::App& app, DiffOptions& options) {
    CLI::App* command = AddCommand(app, "diff", "Print how the devices of two files differ",
                                   "bscan diff rev_a.bsd rev_b.bsd");
    AddFile(command, "A", options.left.path, "A BSDL file; - for standard input");
    AddFile(command, "B", options.right.path, "Another one");
    CLI::Option* package = command->add_option_function<std::string>(
        "--package",
        [&options](const std::string& name) {
            options.left.package = name;
            options.right.package = name;
        },
        "Another of the files' packages");
    package->type_name("NAME");
    AddLines(command, package, [&options] {
        options.left.by_lines = true;
        options.right.by_lines = true;
    });
    AddFormat(command, options.format);
}

void AddDraw(CLI::App& app, DrawOptions& options) {
    CLI::App* command = AddCommand(app, "draw", "Draw the package, coloured by port mode",
                                   "bscan draw device.bsd device.svg");
    AddDeviceFile(command, options.file);
    AddFile(command, "OUT.svg", options.output, "The drawing to write; - for standard output");
}

void AddIdentify(CLI::App& app, IdentifyOptions& options) {
    CLI::App* command = AddCommand(app, "identify", "Tell which files describe a device",
                                   "bscan identify 0x4BA00477 devices/\n"
                                   "\n"
                                   "An IDCODE has 8 hexadecimal digits, or 32 bits behind 0b.");
    command
        ->add_option("IDCODE|FOLDER", options.words,
                     "IDCODEs, and the files and folders to search (the current folder)")
        ->required()
        ->type_name("");
    command->add_option("-j,--jobs", options.jobs, "Files to read at a time (one per processor)")
        ->check(CLI::Range(1, 256).description(""))
        ->type_name("N");
    AddFormat(command, options.format);
}

void AddFormatCommand(CLI::App& app, FormatOptions& options) {
    CLI::App* command = AddCommand(app, "format", "Write a description again as clean BSDL",
                                   "bscan format device.bsd -o clean.bsd --package BGA256");
    AddFile(command, "FILE", options.file, "The BSDL file; - for standard input");
    CLI::Option* output =
        command->add_option("-o,--output", options.output, "The file to write (standard output)");
    output->type_name("PATH");
    command->add_option("--package", options.package, "The package that the generic names")
        ->type_name("NAME");
    command
        ->add_flag("--check", options.check,
                   "Write nothing, and tell whether the file would change")
        ->excludes(output);
}

void AddChain(CLI::App* command, ChainOptions& options) {
    command
        ->add_option("DEVICE", options.devices,
                     "[NAME=]FILE or [NAME=]ir:LENGTH each, from TDI to TDO")
        ->type_name("");
    command->add_option("--chain", options.file, "A TOML file with the devices of the chain")
        ->type_name("PATH");
}

void AddDo(CLI::App* command, StepOptions& options) {
    command->add_option("--do", options.steps, "A step; may be repeated")
        ->type_name("STEP")
        ->expected(1)
        ->take_all();
}

void AddSteps(CLI::App* command, StepOptions& options) {
    AddDo(command, options);
    command->add_option("--steps", options.file, "A file of steps; - for standard input")
        ->type_name("PATH");
}

void AddSvf(CLI::App& app, SvfOptions& options) {
    CLI::App* command =
        AddCommand(app, "svf", "Write steps on the pins of a chain as SVF",
                   "bscan svf U1=a.bsd U2=b.bsd --do 'drive U1.D0=1' --do 'expect U2.B3=1'\n"
                   "\n"
                   "Steps: drive PIN=LEVEL..., expect PIN=LEVEL..., sample PIN=LEVEL...,\n"
                   "wait N tck|us|ms, reset, note TEXT. A pin is DEVICE.PIN, or PIN where one\n"
                   "device has a file.");
    AddChain(command, options.chain);
    AddSteps(command, options.steps);
    command->add_option("-o,--output", options.output, "The file to write (standard output)")
        ->type_name("PATH");
    command->add_option("--frequency", options.frequency, "Of TCK, in hertz (1000000)")
        ->check(Positive())
        ->type_name("HZ");
    command
        ->add_option("--from-sample", options.samples,
                     "[NAME=]BITS or [NAME=]PATH: outputs keep these sampled levels")
        ->type_name("CAPTURE")
        ->expected(1)
        ->take_all();
    command->add_flag("--no-idcode", options.no_idcode, "Do not compare IDCODEs");
}

void AddOpenOcd(CLI::App& app, OpenOcdOptions& options) {
    CLI::App* command = AddCommand(app, "openocd", "Write OpenOCD's configuration for a chain",
                                   "bscan openocd U1=a.bsd U2=b.bsd -o chain.cfg\n"
                                   "  openocd -f interface/ADAPTER.cfg -f chain.cfg");
    AddChain(command, options.chain);
    command->add_option("-o,--output", options.output, "The file to write (standard output)")
        ->type_name("PATH");
}

void AddLive(CLI::App& app, LiveOptions& options) {
    CLI::App* command =
        AddCommand(app, "live", "Read and drive pins through a running OpenOCD",
                   "bscan live U1=a.bsd U2=b.bsd drive U1.D0=1 --hold 5\n"
                   "  bscan live --adapter interface.cfg a.bsd watch READY --vcd ready.vcd");
    AddChain(command, options.chain);
    CLI::Option* port =
        command->add_option("--openocd", options.openocd, "Its Tcl port (127.0.0.1:6666)");
    port->type_name("HOST:PORT");
    command
        ->add_option("--adapter", options.adapter,
                     "Start OpenOCD with this configuration of an adapter, and end it")
        ->type_name("PATH")
        ->excludes(port);
    command->require_subcommand(1);
    const auto add = [&](const char* name, const char* purpose, LiveAction action) {
        CLI::App* part = command->add_subcommand(name, purpose);
        part->callback([&options, action] { options.action = action; });
        return part;
    };
    CLI::App* read = add("read", "Print levels and directions under SAMPLE", LiveAction::kRead);
    read->add_option("PIN", options.pins, "Pins; all without one")->type_name("");
    AddFormat(read, options.format);
    CLI::App* drive = add("drive", "Drive pins, hold them, and give them back", LiveAction::kDrive);
    drive->add_option("PIN=LEVEL", options.pins, "A pin, and 0, 1, or Z to release it")
        ->required()
        ->type_name("");
    drive->add_option("--hold", options.hold, "How long (1)")
        ->check(NotNegative())
        ->type_name("SECONDS");
    CLI::App* run = add("run", "Play steps and tell what is not as expected", LiveAction::kRun);
    run->add_option("STEPS", options.steps.file, "A file of steps; - for standard input")
        ->type_name("");
    AddDo(run, options.steps);
    CLI::App* watch = add("watch", "Follow levels under SAMPLE", LiveAction::kWatch);
    watch->add_option("PIN", options.pins, "Pins; all without one")->type_name("");
    watch->add_option("--every", options.every, "Time between two looks (200)")
        ->check(NotNegative())
        ->type_name("MS");
    watch->add_option("--count", options.count, "How many looks (until interrupted)")
        ->check(Positive())
        ->type_name("N");
    watch->add_option("--vcd", options.vcd, "Write a value change dump, too")->type_name("PATH");
    CLI::App* identify = add("identify", "Tell which files describe the devices of the chain",
                             LiveAction::kIdentify);
    identify->add_option("--library", options.library, "A folder of BSDL files")
        ->required()
        ->type_name("FOLDER");
    AddFormat(identify, options.format);
}

void AddSimulate(CLI::App& app, SimulateOptions& options) {
    CLI::App* command = AddCommand(
        app, "simulate", "Serve a simulated chain to OpenOCD, to try things without hardware",
        "bscan simulate U1=a.bsd U2=b.bsd --net DATA=U1.D0,U2.B3 --pull DATA=1 --log pins.log");
    AddChain(command, options.chain);
    command->add_option("--net", options.nets, "Pins that one net joins")
        ->allow_extra_args(false)
        ->type_name("NET=PIN,PIN");
    command->add_option("--level", options.levels, "A pin or net that is held from outside")
        ->allow_extra_args(false)
        ->type_name("PIN=LEVEL");
    command->add_option("--pull", options.pulls, "A pin or net with a resistor to a supply")
        ->allow_extra_args(false)
        ->type_name("PIN=LEVEL");
    command->add_option("--float", options.floating, "What a pin reads that nothing drives (0)")
        ->check(CLI::Range(0, 1).description(""))
        ->type_name("LEVEL");
    command->add_option("--open", options.opens, "A pin that has lost its net")
        ->allow_extra_args(false)
        ->type_name("PIN");
    command->add_option("--stuck", options.stuck, "A net that is stuck")
        ->allow_extra_args(false)
        ->type_name("NET=LEVEL");
    command
        ->add_option("--short", options.shorts, "Two nets that touch; :and (0 wins), :or, :first")
        ->allow_extra_args(false)
        ->type_name("NET,NET");
    command->add_option("--log", options.log, "A file for every change at a pin")
        ->type_name("PATH");
    command
        ->add_option("--adapter-file", options.adapter_file,
                     "A file for the adapter part of OpenOCD's configuration")
        ->type_name("PATH");
    command->add_option("--port", options.port, "The port to listen on (any free one)")
        ->type_name("N");
    command->add_flag("--once", options.once, "End when the first player leaves");
}

void AddNetlist(CLI::App& app, NetlistOptions& options) {
    CLI::App* command = AddCommand(app, "netlist", "Print the nets of a netlist",
                                   "bscan netlist board.net --format csv");
    AddFile(command, "FILE", options.file, "A netlist of KiCad, or CSV with net, part and pin");
    AddFormat(command, options.format);
}

void AddBoard(CLI::App& app, BoardOptions& options) {
    CLI::App* command =
        AddCommand(app, "board", "Print what is known of a board, and what a test sees",
                   "bscan board board.toml");
    AddFile(command, "BOARD.toml", options.file, "The board: its netlist, devices and rules");
    command->add_flag("--devices", options.devices, "Print the devices alone");
    AddFormat(command, options.format);
}

ReportFormat ParseReportFormat(const std::string& name) {
    static const std::map<std::string, ReportFormat> kNames = {{"table", ReportFormat::kTable},
                                                               {"json", ReportFormat::kJson},
                                                               {"junit", ReportFormat::kJunit}};
    const auto found = kNames.find(name);
    if (found == kNames.end()) {
        throw CLI::ValidationError("--format", "is table, json or junit, not " + name);
    }
    return found->second;
}

void AddTest(CLI::App& app, TestOptions& options) {
    CLI::App* command =
        AddCommand(app, "test", "Find opens, shorts and stuck nets of a board",
                   "bscan test board.toml --adapter interface.cfg\n"
                   "  bscan test board.toml --svf test.svf\n"
                   "\n"
                   "Exit status: 0 for a sound board, 1 for faults, 2 for trouble.");
    AddFile(command, "BOARD.toml", options.file, "The board: its netlist, devices and rules");
    CLI::Option* port = command->add_option("--openocd", options.link.openocd,
                                            "Tcl port of a running OpenOCD (127.0.0.1:6666)");
    port->type_name("HOST:PORT");
    CLI::Option* adapter =
        command->add_option("--adapter", options.link.adapter,
                            "Start OpenOCD with this configuration of an adapter, and end it");
    adapter->type_name("PATH")->excludes(port);
    command->add_option("--svf", options.svf, "Write the vectors as SVF; - for standard output")
        ->type_name("PATH");
    command->add_option("--frequency", options.frequency, "Of TCK in SVF, in hertz (1000000)")
        ->check(CLI::PositiveNumber.description(""))
        ->type_name("HZ");
    command->add_option("--captures", options.captures, "Diagnose what another player brought back")
        ->type_name("PATH")
        ->excludes(port)
        ->excludes(adapter);
    command->add_option("--save-captures", options.save_captures, "Write down what came back")
        ->type_name("PATH");
    const auto set = [&options](const std::string& name) {
        options.format = ParseReportFormat(name);
    };
    command->add_option_function<std::string>("--format", set, "table, json or junit")
        ->type_name("FORMAT");
    command->add_flag_callback(
        "--json", [&options] { options.format = ReportFormat::kJson; },
        "The same as --format json");
}

std::string CommandNames(const CLI::App& app) {
    std::string names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    return names;
}

std::string FailureMessage(const CLI::App* app, const CLI::Error& error) {
    const bool without_command =
        app->get_subcommands().empty() &&
        error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    const std::vector<std::string> unknown = app->remaining();
    std::string message = Printable(error.what());
    if (without_command) {
        message = unknown.empty() ? "" : Printable(unknown.front()) + " is no command; ";
        message += "name a command: " + CommandNames(*app);
    }
    return fmt::format("bscan: {}\nRun with --help for more information.\n", message);
}

void Describe(CLI::App& app) {
    app.require_subcommand(1);
    app.failure_message(FailureMessage);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("REQUIRED", "");
    app.set_version_flag("--version", std::string("bscan ") + bscan::Version());
    app.footer(
        "Exit status: 0 when all is well, 1 when a file cannot be read or a request fails, 2 "
        "for\n"
        "wrong usage. diff: 0 for no difference, 1 for some, 2 for trouble. test: 0 for a sound\n"
        "board, 1 for faults, 2 for trouble; board: 2 for trouble.\n"
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
        {"draw", [&] { return Draw(options.draw); }},
        {"format", [&] { return FormatFile(options.format); }},
        {"identify", [&] { return Identify(options.identify); }},
        {"live", [&] { return Live(options.live); }},
        {"simulate", [&] { return Simulate(options.simulate); }},
        {"svf", [&] { return Svf(options.svf); }},
        {"openocd", [&] { return OpenOcd(options.openocd); }},
        {"netlist", [&] { return Netlist(options.netlist); }},
        {"board", [&] { return Board(options.board); }},
        {"test", [&] { return Test(options.test); }}};
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
    AddFormatCommand(app, options.format);
    AddIdentify(app, options.identify);
    AddLive(app, options.live);
    AddSimulate(app, options.simulate);
    AddSvf(app, options.svf);
    AddOpenOcd(app, options.openocd);
    AddNetlist(app, options.netlist);
    AddBoard(app, options.board);
    AddTest(app, options.test);
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
