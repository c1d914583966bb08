#include "drawing/words.h"

#include <array>

namespace bscan::drawing {
namespace {

constexpr std::array<std::string_view, 8> kSignals = {"0",     "1",     "X",     "Z",
                                                      "PULL0", "PULL1", "WEAK0", "WEAK1"};
constexpr std::array<std::string_view, 5> kModes = {"in", "out", "inout", "buffer", "linkage"};
constexpr std::array<std::string_view, 9> kTypes = {"BC_0", "BC_1", "BC_2", "BC_3",   "BC_4",
                                                    "BC_5", "BC_6", "BC_7", "unknown"};
constexpr std::array<std::string_view, 12> kFunctions = {
    "input",    "clock", "output2",  "output3",   "control",      "controlr",
    "internal", "bidir", "bidir_in", "bidir_out", "observe_only", "unknown"};
constexpr std::array<std::string_view, 16> kPortModes = {"unknown",
                                                         "in",
                                                         "out",
                                                         "inout",
                                                         "buffer",
                                                         "linkage",
                                                         "linkage_in",
                                                         "linkage_out",
                                                         "linkage_inout",
                                                         "linkage_buffer",
                                                         "linkage_mechanical",
                                                         "power_pos",
                                                         "power_0",
                                                         "power_neg",
                                                         "vref_in",
                                                         "vref_out"};

template <std::size_t N>
std::string_view At(const std::array<std::string_view, N>& words, int value) {
    const bool known = value >= 0 && static_cast<std::size_t>(value) < N;
    return known ? words[static_cast<std::size_t>(value)] : "unknown";
}

}  // namespace

std::string_view Word(eSignal signal) { return At(kSignals, signal); }
std::string_view Word(PortType mode) { return At(kModes, mode); }
std::string_view Word(CellType type) { return At(kTypes, type); }
std::string_view Word(CellFunction function) { return At(kFunctions, function); }

std::string_view Word(PortMode mode) { return At(kPortModes, static_cast<int>(mode)); }

}  // namespace bscan::drawing
