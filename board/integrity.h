// Scans that show whether the chain is whole, without touching a pin.
#pragma once

#include <bscan/chain.h>
#include <bscan/scan_program.h>

#include <vector>

namespace bscan::detail {

// Compares IDCODEs, and counts the bits of the chain in BYPASS and with the boundary registers
// under PRELOAD or SAMPLE: a known word goes in and has to come out behind them.
//
// The chain has `preload` selected afterwards.
void AddIntegrityScans(Chain& chain, const std::vector<InstructionChoice>& preload,
                       ScanProgram& program);

// Selects instructions, and compares what the instruction registers capture.
void AddInstructionScan(Chain& chain, const std::vector<InstructionChoice>& choices,
                        ScanProgram& program);

}  // namespace bscan::detail
