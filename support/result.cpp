#include <bscan/result.h>

#include <algorithm>
#include <iterator>

namespace bscan {
namespace {

struct Meaning {
    int code;
    const char* text;
};

constexpr Meaning kMeanings[] = {
    {kOk, "success"},
    {kFailed, "no file is open, a port grouping is malformed, or the device refuses a cell"},
    {kBadDirectory, "the default directory cannot be entered"},
    {kReadFailed, "the file ended, or could not be read, where a line was wanted"},
    {kEndOfFile, "the file was already at its end when a line was wanted"},
    {kUnexpectedLine, "the line is not what an entity may hold here"},
    {kNoOutputBuffer, "no output buffer was passed for a string value"},
    {kNoPinMap, "the device pin map could not be created"},
    {kBadValue, "a value is missing, malformed or beyond its limit"},
    {kLengthWithoutPorts, "a boundary length stands before any generic or port clause"},
    {kCannotOpen, "the file cannot be opened"},
    {kNoPinName, "no pin name was passed"},
    {kUnknownPin, "the selected package has no pin of that name"},
    {kLengthWithoutRegister, "an instruction length has no instruction register to go to"},
    {kCaptureWithoutRegister, "an instruction capture has no instruction register to go to"},
    {kBadOpcode, "an INSTRUCTION_OPCODE entry is malformed"},
    {kBadRegisterAccess, "a REGISTER_ACCESS entry is malformed"},
    {kTextTooLong, "the text of a statement exceeds the limit"},
    {kOutOfMemory, "out of memory"},
};

}  // namespace

const char* Describe(int code) {
    const auto* const found = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                           [&](const Meaning& row) { return row.code == code; });
    return found == std::end(kMeanings) ? "unknown result" : found->text;
}

}  // namespace bscan
