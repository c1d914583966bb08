// bscan drive: the scan vector that drives pins.

#include "commands.h"
#include "device_facts.h"
#include "device_tables.h"
#include "doubts.h"
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
    bscan::PinLevels levels;
};

// PIN=LEVEL; the last '=' counts. @return an empty list when a text is no request.
std::vector<Request> ParseRequests(const std::vector<std::string>& texts) {
    std::vector<Request> requests;
    for (const std::string& text : texts) {
        const std::size_t equals = text.rfind('=');
        const std::optional<bscan::PinLevels> levels =
            equals == std::string::npos ? std::nullopt
                                        : bscan::PinLevels::Parse(text.substr(equals + 1));
        if (!levels || equals == 0) {
            Write(stderr, fmt::format("bscan drive: '{}' is not of the form PIN=0, PIN=1, PIN=Z or "
                                      "PIN=0x5A\n",
                                      Printable(text)));
            return {};
        }
        requests.push_back({text, text.substr(0, equals), *levels});
    }
    return requests;
}

Table NewTable() {
    const Audience programs = Audience::kPrograms;
    return {{{"request", "Request"},
             {"port", "Port"},
             {"pin", "Pin"},
             {"done", "Done"},
             {"result", "Result"},
             {"level", "Level", programs},
             {"shown", "Shown", programs},
             {"output_cell", "Output cell", programs},
             {"output_value", "Its value", programs},
             {"control_cell", "Control cell", programs},
             {"control_value", "Its value", programs},
             {"error", "Error", programs}},
            {}};
}

Json NumberOf(const LBScanCell* cell) {
    return cell == nullptr ? Json() : Json(cell->GetBoundaryCellPosition());
}

Json ValueOf(const LBScanCell* cell) { return cell == nullptr ? Json() : Word(cell->cellValue); }

// Serves requests one after the other and keeps what came of them.
class Server {
public:
    Server(const Device& device, bscan::PinDriver& driver, bool force)
        : device_(device), driver_(driver), doubts_(device), force_(force) {}

    void Serve(const Request& request) {
        const std::vector<int> elements = device_.names().Find(request.pin);
        if (elements.empty()) return Refuse(request, "no such pin or port");
        if (request.levels.IsNumber()) {
            if (bscan::IsPinPattern(request.pin)) {
                return Refuse(request, "a number is for the elements of one port");
            }
            if (!request.levels.Fits(elements.size())) {
                return Refuse(request,
                              fmt::format("the number does not fit {} element{}", elements.size(),
                                          elements.size() == 1 ? "" : "s"));
            }
            NoteOrder(elements);
        }
        for (std::size_t i = 0; i < elements.size(); ++i) {
            ServeElement(request, elements[i], request.levels.Of(i, elements.size()));
        }
    }

    const Table& table() const { return table_; }
    bool all_done() const { return all_done_; }
    /// Which elements numbers begin and end with, one text for each number.
    const std::vector<std::string>& orders() const { return orders_; }

private:
    void Refuse(const Request& request, const std::string& reason) {
        std::vector<Json> row(table_.columns.size());
        row[0] = request.text;
        row[3] = false;
        row[4] = reason;
        table_.rows.push_back(std::move(row));
        all_done_ = false;
    }

    void NoteOrder(const std::vector<int>& elements) {
        if (elements.size() < 2) return;
        orders_.push_back(fmt::format("{} to {}", device_.names().Label(elements.front()),
                                      device_.names().Label(elements.back())));
    }

    void ServeElement(const Request& request, int position, eSignal level) {
        const Element& element = device_.elements()[static_cast<std::size_t>(position)];
        const bscan::Finding* const doubt = force_ ? nullptr : doubts_.Of(element);
        bool done = false;
        std::string result;
        if (doubt != nullptr) {
            result = DoubtText(*doubt) + "; --force drives it";
        } else {
            const bscan::DriveCode code = driver_.Request(position, level);
            done = bscan::IsDone(code);
            result = driver_.Explain(position, code);
        }
        const bscan::PinCells cells = driver_.Cells(position);
        table_.rows.push_back({request.text, element.Label(), TextOrNull(element.pin), done, result,
                               Word(level), Word(driver_.Shown(position)), NumberOf(cells.output),
                               ValueOf(cells.output), NumberOf(cells.control),
                               ValueOf(cells.control),
                               doubt == nullptr ? Json() : Json(doubt->rule)});
        all_done_ = all_done_ && done;
    }

    const Device& device_;
    bscan::PinDriver& driver_;
    Doubts doubts_;
    bool force_;
    Table table_ = NewTable();
    std::vector<std::string> orders_;
    bool all_done_ = true;
};

std::vector<std::string> Labels(const Device& device, const std::vector<int>& positions) {
    std::vector<std::string> labels;
    labels.reserve(positions.size());
    for (const int position : positions) labels.push_back(device.names().Label(position));
    return labels;
}

void PrintNote(std::FILE* stream, const char* note, const std::string& text) {
    if (!text.empty()) Write(stream, fmt::format("{}: {}\n", note, Printable(text)));
}

// What has to be known before a vector is shifted in.
void PrintWarnings(std::FILE* stream, const Device& device) {
    PrintNote(stream, "Compliance", ComplianceText(device));
    PrintNote(stream, "Design warning", DesignWarning(device));
}

void PrintForPeople(const Device& device, const bscan::PinDriver& driver, const Server& server) {
    PrintWarnings(stdout, device);
    Print(stdout, server.table(), Format::kTable);
    Write(stdout, "\n");
    PrintNote(stdout, "Numbers have their most significant bit first",
              fmt::format("{}", fmt::join(server.orders(), ", ")));
    PrintNote(stdout, "Also driven, through a shared control cell",
              fmt::format("{}", fmt::join(Labels(device, driver.AlsoDriven()), ", ")));
    PrintNote(stdout, "No longer driven, since a later request turned off a shared control cell",
              fmt::format("{}", fmt::join(Labels(device, driver.NoLongerDriven()), ", ")));
    Write(stdout, fmt::format("Scan vector of {} bits. Cell 0, next to TDO, goes in first; it is "
                              "the leftmost bit, the 0x80 of the first byte.\n",
                              device.map().GetBScanLength()));
    Print(stdout, VectorTable(device.map()), Format::kTable);
}

void PrintCsv(const Device& device, const Server& server) {
    PrintWarnings(stderr, device);
    Print(stdout, server.table(), Format::kCsv);
    Write(stdout, "\n");
    Print(stdout, VectorTable(device.map()), Format::kCsv);
}

Json ToJson(const Device& device, const bscan::PinDriver& driver, const Server& server) {
    return {{"file", device.path()},
            {"compliance", TextOrNull(ComplianceText(device))},
            {"design_warning", TextOrNull(DesignWarning(device))},
            {"requests", ToJson(server.table())},
            {"also_driven", Labels(device, driver.AlsoDriven())},
            {"no_longer_driven", Labels(device, driver.NoLongerDriven())},
            {"length", device.map().GetBScanLength()},
            {"bits", BitText(device.map())},
            {"bytes", ByteTexts(device.map())},
            {"hex", HexText(device.map())}};
}

int Complain(const std::string& message, int status) {
    Write(stderr, fmt::format("bscan drive: {}\n", message));
    return status;
}

}  // namespace

int Drive(const DriveOptions& options) {
    const std::vector<Request> requests = ParseRequests(options.requests);
    if (requests.empty()) return kUsage;
    Capture capture;
    const bool captured = options.capture.IsGiven();
    if (captured) {
        const std::string problem = ReadCapture(options.capture, options.file, capture);
        if (!problem.empty()) {
            return Complain(problem, options.capture.file.empty() ? kUsage : kProblem);
        }
    }
    Device device(options.file);
    if (!ReadOrReport(device, captured ? &capture : nullptr)) return kProblem;
    if (captured) {
        const std::string problem = CaptureProblem(capture, device);
        if (!problem.empty()) return Complain(problem, kProblem);
    }
    bscan::PinDriver driver(device.map());
    Server server(device, driver, options.force);
    for (const Request& request : requests) server.Serve(request);
    if (options.format == Format::kJson) {
        Print(stdout, ToJson(device, driver, server), 2);
    } else if (options.format == Format::kCsv) {
        PrintCsv(device, server);
    } else {
        PrintForPeople(device, driver, server);
    }
    return server.all_done() ? kSuccess : kProblem;
}

}  // namespace tool
