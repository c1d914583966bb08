// What a device's file tells of its registers after a reset.
#pragma once

#include <bscan/chain.h>

namespace bscan::detail {

// Whether it is known what a device shifts out after a reset and what its instruction register
// captures. Files with an IDCODE of another length than 32 bits, or a capture that does not end in
// 01, leave that open.
inline bool IsResetStateKnown(const Chain& chain, int device) {
    const ChainDevice& described = chain.Device(device);
    if (!described.HasModel()) return true;
    const std::string& capture = described.instruction_capture;
    if (!capture.empty()) {
        const auto length = static_cast<std::size_t>(described.instruction_length);
        const bool fits = length >= 2 && capture.size() == length;
        if (!fits || capture.substr(length - 2) != "01") return false;
    }
    if (described.idcodes.empty()) return !chain.CanSelect(device, "IDCODE").Ok();
    for (const std::string& code : described.idcodes) {
        if (code.back() != '1') return false;
    }
    return true;
}

}  // namespace bscan::detail
