#include "openocd_text.h"

#include <fmt/format.h>

#include <cstdint>

namespace tool {
namespace {

// What OpenOCD compares after a reset: the bits of the capture that are known.
struct CaptureBits {
    std::uint64_t value = 0;
    std::uint64_t mask = 0;
};

// The two lowest bits are 01 in every device that follows the standard. OpenOCD takes 32 bits.
CaptureBits CaptureOf(const bscan::ChainDevice& device) {
    constexpr std::size_t kMost = 32;
    CaptureBits bits;
    const std::string& text = device.instruction_capture;
    for (std::size_t n = 0; n < text.size() && n < kMost; ++n) {
        const char digit = text[text.size() - 1 - n];
        if (digit == '0' || digit == '1') bits.mask |= std::uint64_t{1} << n;
        if (digit == '1') bits.value |= std::uint64_t{1} << n;
    }
    return bits;
}

// An x of the version does no harm, since the version is ignored; for another there is no mask, so
// such a code is left out.
std::string ExpectedIds(const bscan::ChainDevice& device) {
    std::string text;
    for (const std::string& code : device.idcodes) {
        std::uint32_t value = 0;
        bool known = true;
        for (std::size_t i = 0; i < code.size(); ++i) {
            value = value << 1U | (code[i] == '1' ? 1U : 0U);
            known = known && (i < 4 || code[i] == '0' || code[i] == '1');
        }
        if (known) text += fmt::format(" -expected-id 0x{:08x}", value);
    }
    return text.empty() ? text : text + " -ignore-version";
}

}  // namespace

std::string TapName(const bscan::ChainDevice& device) { return device.name + ".tap"; }

std::string OpenOcdConfiguration(const bscan::Chain& chain) {
    std::string text = "# Written by bscan. The TAP next to TDO comes first.\n";
    for (int i = chain.DeviceCount(); i-- > 0;) {
        const bscan::ChainDevice& device = chain.Device(i);
        const CaptureBits capture = CaptureOf(device);
        text += fmt::format("jtag newtap {} tap -irlen {}", device.name, device.instruction_length);
        if (capture.mask != 0) {
            text += fmt::format(" -ircapture 0x{:x} -irmask 0x{:x}", capture.value, capture.mask);
        }
        text += ExpectedIds(device) + '\n';
    }
    if (chain.DeviceCount() > 1) {
        int length = 0;
        for (int i = 0; i < chain.DeviceCount(); ++i) length += chain.Device(i).instruction_length;
        text += fmt::format(
            "# The whole chain as one TAP, with which 'bscan live' takes the place of the others.\n"
            "jtag newtap bscan chain -irlen {} -ircapture 0x1 -irmask 0x3 -disable\n",
            length);
    }
    if (const double limit = chain.MaxFrequency(); limit > 0) {
        text += fmt::format("# No device may be clocked faster than {} kHz.\n",
                            static_cast<std::int64_t>(limit / 1000));
    }
    return text;
}

}  // namespace tool
