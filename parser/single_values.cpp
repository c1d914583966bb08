// The attributes with a single value: boundary length, instruction length, instruction capture.

#include <bscan/limits.h>
#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"
#include "support/text_view.h"

#include <utility>

namespace bscan::detail {

// The value of such an attribute is the last word in front of its ';'.
int MainPass::ReadLastWord(std::string& statement, std::string_view& word) {
    const int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    const std::string_view text = TrimRight(CutAt(statement, ';').before);
    word = TrimLeft(CutAt(text, text.find_last_of(" \n\t")).after);
    return kOk;
}

int MainPass::ReadBoundaryLength(std::string& statement) {
    std::string_view word;
    const int result = ReadLastWord(statement, word);
    if (result != kOk) return result;
    if (parser_.pin_map_ == nullptr) return kLengthWithoutPorts;
    const int length = DecimalValue(word);
    if (length <= 0 || length > kMaxBoundaryLength) return kBadValue;
    // All its cells are made anew, and every port loses those that it lists.
    const std::int64_t work = std::int64_t{length} + parser_.pin_map_->GetNumberOfPins();
    if (std::exchange(has_length_, true) && !MayRepeat(work)) return kRepeatedTooOften;
    DeviceBuilder(*parser_.pin_map_).AllocateCells(length);
    return kOk;
}

int MainPass::ReadInstructionLength(std::string& statement) {
    std::string_view word;
    const int result = ReadLastWord(statement, word);
    if (result != kOk) return result;
    if (parser_.instruction_register_ == nullptr) return kLengthWithoutRegister;
    const int length = DecimalValue(word);
    if (length == 0) return kBadValue;
    parser_.instruction_register_->SetInstructionLength(length);
    return kOk;
}

int MainPass::ReadInstructionCapture(std::string& statement) {
    std::string_view word;
    const int result = ReadLastWord(statement, word);
    if (result != kOk) return result;
    if (parser_.instruction_register_ == nullptr) return kCaptureWithoutRegister;
    if (word.empty()) return kBadValue;
    parser_.instruction_register_->capture_.assign(word);
    return kOk;
}

}  // namespace bscan::detail
