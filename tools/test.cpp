// bscan test: finds and names what is wrong between the devices of a board.

#include <bscan/board/board_test.h>
#include <bscan/board/diagnosis.h>
#include <bscan/live_chain.h>

#include "board_file.h"
#include "captures.h"
#include "commands.h"
#include "fault_report.h"
#include "interrupt.h"
#include "openocd_text.h"
#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>

namespace tool {
namespace {

int Complain(const std::string& message) {
    Write(stderr, fmt::format("bscan test: {}\n", Printable(message)));
    return kUsage;
}

bool WriteFile(const std::string& path, const std::string& text) {
    if (path == "-") {
        Write(stdout, text);
        return true;
    }
    std::ofstream stream(path, std::ios::binary);
    stream << text << std::flush;
    if (!stream) Complain("cannot write " + path);
    return static_cast<bool>(stream);
}

// A capture in which every bit is alike comes from no chain.
bool AllConstant(const std::vector<bscan::ScanBits>& captures) {
    return !captures.empty() &&
           std::all_of(captures.begin(), captures.end(), [&](const bscan::ScanBits& bits) {
               return bits == bscan::ScanBits(bits.Size(), captures.front().Get(0));
           });
}

class Session {
public:
    explicit Session(const TestOptions& options) : options_(options) {}

    int Run() {
        if (!LoadBoard("test", options_.file, loaded_)) return kUsage;
        test_ = bscan::PlanBoardTest(loaded_.devices.chain, loaded_.board);
        for (const std::string& problem : test_.problems) Complain(problem);
        if (!test_.Ok()) return kUsage;
        if (test_.record.nets.empty()) Complain("note: no net of the board can be tested");
        if (!options_.svf.empty() && !WriteSvf()) return kUsage;
        const bool plays = !options_.link.openocd.empty() || !options_.link.adapter.empty();
        if (!options_.captures.empty()) {
            if (!LoadCaptures()) return kUsage;
        } else if (plays || options_.svf.empty()) {
            Play();
            if (Interrupted()) return Complain("interrupted; the pins are free again");
        } else {
            return kSuccess;
        }
        return Judge();
    }

private:
    bool WriteSvf() const {
        const std::string text =
            bscan::WriteSvf(loaded_.devices.chain, test_.program, {options_.frequency});
        return WriteFile(options_.svf, text);
    }

    bool LoadCaptures() {
        const std::optional<std::string> text = ReadWholeFile(options_.captures);
        if (!text) return Complain("cannot read " + options_.captures) == kSuccess;
        const std::string trouble = ReadCaptures(*text, test_, captures_);
        if (!trouble.empty()) {
            return Complain(fmt::format("{}: {}", options_.captures, trouble)) == kSuccess;
        }
        if (AllConstant(captures_)) {
            BreakOff(fmt::format("TDO was {} throughout: the chain gave no answer.",
                                 captures_.front().Get(0) ? 1 : 0));
        }
        return true;
    }

    void BreakOff(const std::string& message) {
        result_.chain_ok = false;
        result_.chain_message = message;
    }

    void Play() {
        OpenOcdProcess process;
        bscan::OpenOcd link;
        const std::string trouble =
            Connect(options_.link, OpenOcdConfiguration(loaded_.devices.chain), process, link);
        if (!trouble.empty()) return BreakOff(trouble);
        bscan::LiveChain live(link, loaded_.devices.chain);
        taps_ = live.CheckTaps();
        const bscan::ChainResult attached = live.Attach(false);
        if (!attached.Ok()) return BreakOff(attached.reason);
        const bscan::ChainResult played = live.PlayAndCapture(
            test_.program,
            [this](const bscan::ScanOperation& operation, const bscan::ScanBits& captured) {
                return Take(operation, captured);
            });
        if (result_.chain_ok && !played.Ok()) BreakOff(played.reason);
    }

    // The first scan goes through BYPASS, which every device understands, and tells more about a
    // broken chain. Another instruction might be taken for EXTEST where the chain is another.
    // @return whether the program may go on.
    bool Take(const bscan::ScanOperation& operation, const bscan::ScanBits& captured) {
        const std::string broken =
            bscan::JudgeIntegrity(loaded_.devices.chain, operation, captured);
        if (!broken.empty()) {
            BreakOff(broken);
        } else if (!taps_.Ok()) {
            BreakOff(taps_.reason);
        }
        if (operation.step >= 0) captures_.push_back(captured);
        return result_.chain_ok && !Interrupted();
    }

    int Judge() {
        if (result_.chain_ok) {
            if (static_cast<int>(captures_.size()) != test_.CaptureCount()) {
                return Complain("the test did not come to its end");
            }
            for (std::size_t i = 0; i < captures_.size(); ++i) {
                bscan::TakeCapture(test_, static_cast<int>(i), captures_[i]);
            }
            result_.faults = bscan::Diagnose(test_.record);
            const bool kept = options_.save_captures.empty() ||
                              WriteFile(options_.save_captures, WriteCaptures(test_, captures_));
            if (!kept) return kUsage;
        } else {
            Complain(result_.chain_message);
        }
        Print();
        if (!result_.chain_ok) return kUsage;
        return result_.faults.empty() ? kSuccess : kProblem;
    }

    void Print() const {
        const FaultReport report(loaded_.devices.chain, loaded_.board, test_, result_);
        switch (options_.format) {
            case ReportFormat::kJson:
                return tool::Print(stdout, report.ToJson(), 2);
            case ReportFormat::kJunit:
                return Write(stdout, report.ToJunit());
            case ReportFormat::kTable:
                if (result_.chain_ok) Write(stdout, report.ToText());
                return;
        }
    }

    const TestOptions& options_;
    LoadedBoard loaded_;
    bscan::BoardTest test_;
    std::vector<bscan::ScanBits> captures_;
    bscan::ChainResult taps_;
    TestResult result_;
};

}  // namespace

int Test(const TestOptions& options) {
    CatchInterrupts();
    return Session(options).Run();
}

}  // namespace tool
