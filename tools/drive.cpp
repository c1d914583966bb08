// bscan drive: the scan vector that drives pins.

#include "commands.h"
#include "device_tables.h"
#include "failure.h"
#include "printable.h"
#include "scan_text.h"
#include "terminal.h"
#include "words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tool {
namespace {

struct Request {
    std::string text;
    std::string pin;
    eSignal level = SIG_X;
};

// PIN=LEVEL; the last '=' counts. @return an empty list when a text is no request.
std::vector<Request> ParseRequests(const std::vector<std::string>& texts) {
    std::vector<Request> requests;
    for (const std::string& text : texts) {
        const std::size_t equals = text.rfind('=');
        const std::optional<eSignal> level =
            equals == std::string::npos ? std::nullopt : ParseLevel(text.substr(equals + 1));
        if (!level || equals == 0) {
            Write(stderr,
                  fmt::format("bscan drive: '{}' is not of the form PIN=0, PIN=1 or PIN=Z\n",
                              Printable(text)));
            return {};
        }
        requests.push_back({text, text.substr(0, equals), *level});
    }
    return requests;
}

struct Outcome {
    Table table{{{"request", "Request"},
                 {"port", "Port"},
                 {"pin", "Pin"},
                 {"done", "Done"},
                 {"result", "Result"}},
                {}};
    bool all_done = true;
};

void Serve(const Device& device, const Request& request, bscan::PinDriver& driver,
           Outcome& outcome) {
    const std::vector<int> elements = device.names().Find(request.pin);
    for (const int position : elements) {
        const Element& element = device.elements()[static_cast<std::size_t>(position)];
        const bscan::DriveCode code = driver.Request(position, request.level);
        const bool done = bscan::IsDone(code);
        outcome.table.rows.push_back({request.text, element.Label(), TextOrNull(element.pin), done,
                                      driver.Explain(position, code)});
        outcome.all_done = outcome.all_done && done;
    }
    if (!elements.empty()) return;
    outcome.table.rows.push_back({request.text, Json(), Json(), false, "no such pin or port"});
    outcome.all_done = false;
}

std::vector<std::string> Labels(const Device& device, const bscan::PinDriver& driver,
                                const std::vector<int>& positions) {
    std::vector<std::string> labels;
    for (const int position : positions) {
        if (const Element* element = device.Find(driver.Node(position))) {
            labels.push_back(element->Label());
        }
    }
    return labels;
}

void PrintNote(const char* note, const std::vector<std::string>& labels) {
    if (labels.empty()) return;
    Write(stdout,
          fmt::format("{}: {}\n", note, Printable(fmt::format("{}", fmt::join(labels, ", ")))));
}

void PrintForPeople(const Device& device, const bscan::PinDriver& driver, const Outcome& outcome) {
    Print(stdout, outcome.table, Format::kTable);
    Write(stdout, "\n");
    PrintNote("Also driven, through a shared control cell",
              Labels(device, driver, driver.AlsoDriven()));
    PrintNote("No longer driven, since a later request turned off a shared control cell",
              Labels(device, driver, driver.NoLongerDriven()));
    Write(stdout, fmt::format("Scan vector of {} bits. Cell 0, next to TDO, goes in first; it is "
                              "the leftmost bit, the 0x80 of the first byte.\n",
                              device.map().GetBScanLength()));
    Print(stdout, VectorTable(device.map()), Format::kTable);
}

void PrintCsv(const Device& device, const Outcome& outcome) {
    Print(stdout, outcome.table, Format::kCsv);
    Write(stdout, "\n");
    Print(stdout, VectorTable(device.map()), Format::kCsv);
}

Json ToJson(const Device& device, const bscan::PinDriver& driver, const Outcome& outcome) {
    return {{"file", device.path()},
            {"requests", ToJson(outcome.table)},
            {"also_driven", Labels(device, driver, driver.AlsoDriven())},
            {"no_longer_driven", Labels(device, driver, driver.NoLongerDriven())},
            {"length", device.map().GetBScanLength()},
            {"bits", BitText(device.map())},
            {"bytes", ByteTexts(device.map())}};
}

}  // namespace

int Drive(const DriveOptions& options) {
    const std::vector<Request> requests = ParseRequests(options.requests);
    if (requests.empty()) return kUsage;
    Device device(options.file);
    if (!ReadOrReport(device, nullptr)) return kProblem;
    bscan::PinDriver driver(device.map());
    Outcome outcome;
    for (const Request& request : requests) Serve(device, request, driver, outcome);
    if (options.format == Format::kJson) {
        Print(stdout, ToJson(device, driver, outcome), 2);
    } else if (options.format == Format::kCsv) {
        PrintCsv(device, outcome);
    } else {
        PrintForPeople(device, driver, outcome);
    }
    return outcome.all_done ? kSuccess : kProblem;
}

}  // namespace tool
