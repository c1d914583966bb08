/// @file
/// The vectors that test the connections of a board, and what they can find.
#pragma once

#include <bscan/board/board.h>
#include <bscan/board/test_record.h>
#include <bscan/chain.h>
#include <bscan/export.h>
#include <bscan/scan_program.h>

#include <string>
#include <vector>

namespace bscan {

/// Why a net or pin is not tested.
enum class Untested {
    kNo,          ///< it is tested
    kClass,       ///< nets of its class are not
    kOnePin,      ///< there is no other pin of a scan device
    kNoDriver,    ///< no cell drives the net
    kControl,     ///< what drives the net would drive others that must not be driven, or fight
    kNoReceiver,  ///< no cell shows what is on the net
    kNoCell,      ///< the pin has no cell of its own
};

/// A test of a board.
///
/// Each net has a code of its own and its complement: vector i of a group drives bit i of
/// TestNet::code. A group has one driver on each net at most; between groups all are off.
struct BoardTest {
    std::vector<std::string> problems;  ///< sentences; without any the test may be run
    TestRecord record;                  ///< what was seen is filled in by TakeCapture()
    std::vector<int> net_of;            ///< by net of the record: that of the board
    std::vector<int> tested_as;         ///< by net of the board: that of the record, or -1
    std::vector<int> pin_of;            ///< by pin of the record: that of the board
    std::vector<Untested> reasons;      ///< by net of the board
    std::vector<int> receiver_bits;     ///< by pin of the record: its bit of a scan, or -1
    int scan_length = 0;                ///< of each capture
    /// Integrity of the chain first, then the vectors. ScanOperation::step is the number of the
    /// capture that a scan takes: group * TestRecord::vector_count + vector; -1 for others.
    ScanProgram program;

    bool Ok() const { return problems.empty(); }
    int CaptureCount() const {
        return static_cast<int>(record.groups.size()) * record.vector_count;
    }
};

/// Works out the vectors for a board.
///
/// @param chain  that of the board; its drivers and its selection change on the way.
/// @param board  one without problems.
BSCAN_EXPORT BoardTest PlanBoardTest(Chain& chain, const Board& board);

/// Takes what came back from a scan into the record.
///
/// @param test  whose record is filled.
/// @param number  of the capture, as ScanOperation::step tells.
/// @param captured  as long as the scan.
BSCAN_EXPORT void TakeCapture(BoardTest& test, int number, const ScanBits& captured);

/// Judges a scan of the part of a program that tests the chain's integrity. The first of them
/// reads IDCODEs straight after a reset and has no fields; it is for players that compare.
///
/// @return what is wrong with the chain in a sentence; empty when nothing is.
BSCAN_EXPORT std::string JudgeIntegrity(const Chain& chain, const ScanOperation& operation,
                                        const ScanBits& captured);

/// What a test sees of one pin.
struct PinCoverage {
    int pin = -1;         ///< of the board
    bool open = false;    ///< that it has lost its net
    bool stuck = false;   ///< that its net is stuck
    bool short_ = false;  ///< that its net touches another that is driven at the same time
    Untested reason = Untested::kNo;  ///< why one of them is missing
};

/// @return the coverage of each pin of the board, in the order of Board::pins.
BSCAN_EXPORT std::vector<PinCoverage> CoverBoard(const Board& board, const BoardTest& test);

}  // namespace bscan
