// What is wrong with steps, told at the step.
#pragma once

#include <bscan/limits.h>
#include <bscan/scan_program.h>

#include <string>
#include <utility>
#include <vector>

namespace bscan::detail {

class FaultList {
public:
    void Add(const Step& step, std::string message) {
        Add(step, {ChainCode::kBadStep, std::move(message)});
    }
    void Add(const Step& step, const ChainResult& result) {
        if (result_.Ok()) result_ = result;
        if (faults_.size() < kMaxFindings) faults_.push_back({step.line, step.text, result.reason});
    }

    // The first fault.
    const ChainResult& Result() const { return result_; }
    std::vector<StepFault> Take() { return std::move(faults_); }

private:
    ChainResult result_;
    std::vector<StepFault> faults_;
};

}  // namespace bscan::detail
