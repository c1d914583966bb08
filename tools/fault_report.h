// What a test found on a board, for people, programs and production lines.
#pragma once

#include <bscan/board/board_test.h>
#include <bscan/board/diagnosis.h>

#include "table.h"

#include <string>
#include <vector>

namespace tool {

/// A finished test.
struct TestResult {
    bool chain_ok = true;
    std::string chain_message;  ///< what is wrong with the chain; empty when nothing is
    std::vector<bscan::DiagnosedFault> faults;
};

class FaultReport {
public:
    FaultReport(const bscan::Chain& chain, const bscan::Board& board, const bscan::BoardTest& test,
                const TestResult& result)
        : chain_(chain), board_(board), test_(test), result_(result) {}

    Json ToJson() const;
    /// Lines for people.
    std::string ToText() const;
    /// JUnit XML with a case for each net of the board.
    std::string ToJunit() const;

private:
    Json FaultJson(const bscan::Fault& fault) const;
    std::string FaultText(const bscan::Fault& fault) const;
    std::string PinText(const std::string& name) const;
    const std::string& NetName(int net) const;
    std::vector<std::string> ScanPins(int net) const;

    const bscan::Chain& chain_;
    const bscan::Board& board_;
    const bscan::BoardTest& test_;
    const TestResult& result_;
};

}  // namespace tool
