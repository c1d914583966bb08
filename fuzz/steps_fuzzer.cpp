/// @file
/// Takes any text as steps for a chain, and holds the scans and the SVF that come of it against
/// what a player relies on.

#include <bscan/scan_program.h>

#include "fuzz/input.h"
#include "support/chain_device.h"

using namespace bscan;
using bscan::fuzz::Require;

namespace {

struct Devices {
    Devices() {
        chain.Add("U1", first.parser, &first.description.GetFacts());
        chain.Add("X.Y", 3);
        chain.Add("X", second.parser, &second.description.GetFacts());
    }

    test::DescribedDevice first;
    test::DescribedDevice second;
    Chain chain;
};

void CheckOperation(const ScanOperation& operation) {
    const bool scans = operation.kind == OperationKind::kInstructionScan ||
                       operation.kind == OperationKind::kDataScan;
    Require(scans != operation.out.Empty(), "scans have bits");
    Require(operation.mask.Size() == operation.wanted.Size(), "a mask for what is wanted");
    Require(operation.mask.Empty() || operation.mask.Size() == operation.out.Size(),
            "what is wanted is as long as the scan");
    Require(Compare(operation, operation.wanted).empty(), "what is wanted passes");
    for (const PinCheck& check : operation.checks) {
        Require(operation.mask.Get(check.bit), "what is checked is compared");
        Require(FindPlace(*operation.fields, check.bit).field->device == check.pin.device,
                "a pin's bit is of its device");
    }
}

// A command ends where its ';' ends a line, and only comments hold text of the steps.
void CheckSvf(std::string_view svf) {
    bool inside = false;
    while (!svf.empty()) {
        const std::string_view line = svf.substr(0, svf.find('\n'));
        svf.remove_prefix(line.size() + 1);
        if (line.empty() || line.substr(0, 2) == "//") {
            Require(!inside, "no command is interrupted");
            continue;
        }
        constexpr std::string_view kKnown = "ABCDEFGHIKLMNOPQRSTUYZ0123456789 ().+-;";
        Require(line.find_first_not_of(kKnown) == line.npos, "commands hold their own words");
        const std::size_t end = line.find(';');
        Require(end == line.npos || end + 1 == line.size(), "one command a line");
        inside = end == line.npos;
    }
    Require(!inside, "the last command ends");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Devices devices;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const Steps steps = ParseSteps(devices.chain, text);
    Require(steps.result.Ok() == steps.faults.empty(), "faults are told");
    const ScanProgram program = PlanSteps(devices.chain, steps.steps);
    Require(program.result.Ok() == program.faults.empty(), "faults are told");
    for (const ScanOperation& operation : program.operations) CheckOperation(operation);
    const std::string svf = WriteSvf(devices.chain, program);
    Require(svf.empty() != program.result.Ok(), "a good program is written");
    CheckSvf(svf);
    return 0;
}
