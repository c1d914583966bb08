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
#include "result_meanings.inc"  // made from the comments in bscan/result.h by the build
};

}  // namespace

const char* Describe(int code) {
    const auto* const found = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                           [&](const Meaning& row) { return row.code == code; });
    return found == std::end(kMeanings) ? "unknown result" : found->text;
}

}  // namespace bscan
