#include "board/integrity.h"

#include <bscan/board/board_test.h>

#include "chain/reset_state.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace bscan {
namespace detail {
namespace {

// The word that goes through the chain: no shift of it looks like it.
constexpr std::uint32_t kMarker = 0x1ACFFC1D;
constexpr int kMarkerBits = 32;
constexpr int kIdcodeBits = 32;
constexpr int kVersionBits = 4;
constexpr std::string_view kDeviceId = "DEVICE_ID";

bool MarkerBit(int bit) { return (kMarker >> bit & 1U) != 0; }

void AddComment(std::string text, ScanProgram& program) {
    program.operations.emplace_back().text = std::move(text);
}

int LengthOf(const ScanFields& fields) {
    return fields.empty() ? 0 : fields.back().first + fields.back().count;
}

// Bits of the version and of x are not compared, nor those in which alternatives differ.
std::optional<bool> IdcodeBit(const std::vector<std::string>& idcodes, int bit) {
    if (bit >= kIdcodeBits - kVersionBits) return std::nullopt;
    const auto position = static_cast<std::size_t>(kIdcodeBits - 1 - bit);
    const char wanted = idcodes.front()[position];
    const bool same = std::all_of(idcodes.begin(), idcodes.end(), [&](const std::string& code) {
        return code[position] == wanted;
    });
    if (!same || (wanted != '0' && wanted != '1')) return std::nullopt;
    return wanted == '1';
}

ScanOperation DataScan(int bits) {
    ScanOperation scan;
    scan.kind = OperationKind::kDataScan;
    scan.out = ScanBits(bits);
    scan.wanted = ScanBits(bits);
    scan.mask = ScanBits(bits);
    return scan;
}

void Expect(ScanOperation& scan, int bit, bool level) {
    scan.wanted.Set(bit, level);
    scan.mask.Set(bit, true);
}

// Puts the marker in front, to come out behind a register.
void AddMarker(ScanOperation& scan, int length) {
    for (int bit = 0; bit < kMarkerBits; ++bit) {
        scan.out.Set(bit, MarkerBit(bit));
        Expect(scan, length + bit, MarkerBit(bit));
    }
}

// A scan through the selected registers that pushes the marker through them.
void AddMarkerScan(const Chain& chain, ScanProgram& program) {
    const std::shared_ptr<const ScanFields> fields = chain.DataFields();
    const int length = LengthOf(*fields);
    ScanOperation scan = DataScan(length + kMarkerBits);
    scan.fields = fields;
    AddMarker(scan, length);
    for (const ScanField& field : *fields) {
        if (field.register_name == "BYPASS") Expect(scan, field.first, false);
        if (field.register_name != kDeviceId) continue;
        for (int bit = 0; bit < kIdcodeBits; ++bit) {
            const auto level = IdcodeBit(chain.Device(field.device).idcodes, bit);
            if (level) Expect(scan, field.first + bit, *level);
        }
    }
    program.operations.push_back(std::move(scan));
}

// What a reset selects is shifted out: the IDCODE of a device that has one, BYPASS of others. No
// instruction is needed for that, which might be taken for another by a device that is not the one
// that it should be.
void AddIdcodeScan(const Chain& chain, ScanProgram& program) {
    int length = 0;
    ScanOperation scan = DataScan((chain.DeviceCount() + 1) * kIdcodeBits);
    for (int device = chain.DeviceCount(); device-- > 0;) {
        const ChainDevice& described = chain.Device(device);
        if (!described.HasModel() || !IsResetStateKnown(chain, device)) return;
        if (described.idcodes.empty()) {
            Expect(scan, length++, false);
            continue;
        }
        for (int bit = 0; bit < kIdcodeBits; ++bit) {
            if (const auto level = IdcodeBit(described.idcodes, bit)) {
                Expect(scan, length + bit, *level);
            }
        }
        length += kIdcodeBits;
    }
    AddMarker(scan, length);
    AddComment("Chain: IDCODE of each device that has one, without its version", program);
    program.operations.push_back(std::move(scan));
}

}  // namespace

void AddInstructionScan(Chain& chain, const std::vector<InstructionChoice>& choices,
                        ScanProgram& program) {
    const ChainResult result = chain.Select(choices);
    if (program.result.Ok()) program.result = result;
    ScanOperation scan;
    scan.kind = OperationKind::kInstructionScan;
    scan.out = chain.InstructionBits();
    scan.wanted = ScanBits(scan.out.Size());
    scan.mask = ScanBits(scan.out.Size());
    scan.fields = std::make_shared<const ScanFields>(chain.InstructionFields());
    for (const ScanField& field : *scan.fields) {
        const std::string& capture = chain.Device(field.device).instruction_capture;
        if (capture.size() != static_cast<std::size_t>(field.count)) continue;
        for (int bit = 0; bit < field.count; ++bit) {
            const char digit = capture[capture.size() - 1 - static_cast<std::size_t>(bit)];
            if (digit != '0' && digit != '1') continue;
            scan.wanted.Set(field.first + bit, digit == '1');
            scan.mask.Set(field.first + bit, true);
        }
    }
    program.operations.push_back(std::move(scan));
}

void AddIntegrityScans(Chain& chain, const std::vector<InstructionChoice>& preload,
                       ScanProgram& program) {
    program.operations.emplace_back().kind = OperationKind::kReset;
    AddIdcodeScan(chain, program);
    AddComment("Chain: one bit of BYPASS for each device", program);
    AddInstructionScan(chain, {}, program);
    AddMarkerScan(chain, program);
    std::vector<InstructionChoice> idcodes;
    for (int device = 0; device < chain.DeviceCount(); ++device) {
        if (chain.Device(device).idcodes.empty()) continue;
        if (chain.CanSelect(device, "IDCODE").Ok()) idcodes.push_back({device, "IDCODE"});
    }
    if (!idcodes.empty()) {
        AddComment("Chain: IDCODE once more, by its instruction", program);
        AddInstructionScan(chain, idcodes, program);
        AddMarkerScan(chain, program);
    }
    AddComment("Chain: length of the boundary registers", program);
    AddInstructionScan(chain, preload, program);
    AddMarkerScan(chain, program);
}

namespace {

bool IsConstant(const ScanBits& bits) {
    const ScanBits same(bits.Size(), bits.Get(0));
    return bits == same;
}

// Where the marker came out; -1 when it did not.
int FindMarker(const ScanBits& captured) {
    for (int at = 0; at + kMarkerBits <= captured.Size(); ++at) {
        int bit = 0;
        while (bit < kMarkerBits && captured.Get(at + bit) == MarkerBit(bit)) ++bit;
        if (bit == kMarkerBits) return at;
    }
    return -1;
}

std::string Count(int count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// The devices of which a bit that is compared came back otherwise.
std::string DifferingDevices(const Chain& chain, const ScanOperation& operation,
                             const ScanBits& captured) {
    std::string names;
    for (const ScanField& field : *operation.fields) {
        for (int bit = field.first; bit < field.first + field.count; ++bit) {
            if (!operation.mask.Get(bit) || operation.wanted.Get(bit) == captured.Get(bit)) {
                continue;
            }
            if (!names.empty()) names += ", ";
            names += chain.Device(field.device).name;
            break;
        }
    }
    return names;
}

}  // namespace
}  // namespace detail

std::string JudgeIntegrity(const Chain& chain, const ScanOperation& operation,
                           const ScanBits& captured) {
    if (operation.fields == nullptr || operation.mask.Empty() || operation.step >= 0 ||
        captured.Size() != operation.out.Size()) {
        return {};
    }
    if (detail::IsConstant(captured)) {
        return std::string("TDO is ") + (captured.Get(0) ? "1" : "0") +
               " throughout: the chain gives no answer. TDI, TDO, TCK, TMS, TRST or a supply is "
               "broken.";
    }
    const int length = operation.out.Size() - detail::kMarkerBits;
    const int found = detail::FindMarker(captured);
    const std::string names = detail::DifferingDevices(chain, operation, captured);
    if (found == length && names.empty()) return {};
    const bool has_code = std::any_of(
        operation.fields->begin(), operation.fields->end(),
        [](const ScanField& field) { return field.register_name == detail::kDeviceId; });
    if (found == length && has_code) {
        return "The IDCODE that the board gives is not that of " + names + ".";
    }
    if (found == length) return "The chain does not begin as it should at " + names + ".";
    if (found < 0) {
        return "What goes into TDI does not come out of TDO behind " +
               detail::Count(length, "bit") +
               ": the chain is broken, or longer than its devices tell.";
    }
    return "The chain has " + detail::Count(found, "bit") + " where its devices have " +
           std::to_string(length) + ": a device is missing, added, or another one.";
}

}  // namespace bscan
