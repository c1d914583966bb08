#include <bscan/chain.h>
#include <bscan/limits.h>
#include <bscan/pin_names.h>

#include "chain/instruction_set.h"
#include "chain/wording.h"
#include "support/border.h"
#include "support/text_view.h"

#include <algorithm>

namespace bscan {
namespace detail {

struct DeviceState {
    ChainDevice facts;
    InstructionSet instructions;
    PinNames names;
    Selection selected;
};

struct ChainState {
    std::vector<DeviceState> devices;  // from TDI to TDO
    ScanFields instruction_fields;
    std::shared_ptr<const ScanFields> data_fields = std::make_shared<ScanFields>();
    std::vector<int> data_first;  // of each device, the number of its first bit in a data scan

    void LayOut();
};

// The device next to TDO is the last one, and its bits are shifted first.
void ChainState::LayOut() {
    auto data = std::make_shared<ScanFields>();
    ScanFields instruction;
    std::vector<int> first(devices.size());
    int instruction_bit = 0;
    int data_bit = 0;
    for (std::size_t i = devices.size(); i-- > 0;) {
        const int device = static_cast<int>(i);
        const int length = devices[i].instructions.Length();
        const Selection& selected = devices[i].selected;
        instruction.push_back({device, "INSTRUCTION", instruction_bit, length});
        data->push_back({device, selected.register_name, data_bit, selected.register_length});
        first[i] = data_bit;
        instruction_bit += length;
        data_bit += selected.register_length;
    }
    instruction_fields = std::move(instruction);
    data_fields = std::move(data);
    data_first = std::move(first);
}

}  // namespace detail

namespace {

using detail::DeviceState;
using detail::View;

const ScanFields kNoFields;

ChainResult NoMemory() { return {ChainCode::kOutOfMemory, {}}; }

template <typename Body>
ChainResult Guarded(Body body) {
    return detail::Guarded(body, NoMemory());
}

std::string OneLine(std::string_view text) {
    std::string line;
    bool blank = false;
    for (const char character : detail::Trim(text)) {
        const bool space = static_cast<unsigned char>(character) <= ' ' || character == '\x7F';
        if (!space) {
            if (blank) line += ' ';
            line += character;
        }
        blank = space;
    }
    return line;
}

std::string ElementText(const ElementName& name) {
    std::string text(name.port.text);
    return name.index ? text + "(" + std::to_string(*name.index) + ")" : text;
}

// As the attribute has it: (PORT, PORT) (PATTERN, PATTERN).
std::string ComplianceText(const Compliance& compliance) {
    if (compliance.ports.empty()) return {};
    std::string ports;
    for (const ElementName& port : compliance.ports) {
        detail::AppendItem(ports, ElementText(port));
    }
    std::string patterns;
    for (const Word& pattern : compliance.patterns) {
        detail::AppendItem(patterns, pattern.text);
    }
    return OneLine("(" + ports + ") (" + patterns + ")");
}

std::string WithoutQuotes(std::string_view text) {
    std::string result(text);
    std::erase_if(result, [](char c) { return c == '"' || static_cast<unsigned char>(c) <= ' '; });
    return result;
}

void TakeFacts(const Facts& facts, ChainDevice& device) {
    for (const Word& word : facts.idcodes) {
        if (word.text.size() == 32) device.idcodes.emplace_back(word.text);
    }
    device.max_frequency = facts.tap.max_frequency;
    device.compliance = ComplianceText(facts.compliance);
    device.design_warning = OneLine(facts.design_warning.text);
}

// Text as people and files may write it into one line.
std::string Quoted(std::string_view text) { return "'" + OneLine(text) + "'"; }

ChainResult NoDevice() { return {ChainCode::kNoDevice, "The chain has no such device."}; }

}  // namespace

ScanPlace FindPlace(const ScanFields& fields, int bit) {
    const auto next =
        std::upper_bound(fields.begin(), fields.end(), bit,
                         [](int wanted, const ScanField& field) { return wanted < field.first; });
    if (next == fields.begin()) return {};
    const ScanField& field = *(next - 1);
    const int cell = bit - field.first;
    return cell < field.count ? ScanPlace{&field, cell} : ScanPlace{};
}

Chain::Chain()
    : state_(detail::Guarded([] { return std::make_unique<detail::ChainState>(); },
                             std::unique_ptr<detail::ChainState>())) {}
Chain::Chain(Chain&&) noexcept = default;
Chain& Chain::operator=(Chain&&) noexcept = default;
Chain::~Chain() = default;

namespace {

ChainResult Append(detail::ChainState& state, DeviceState&& device) {
    const std::string& name = device.facts.name;
    const bool taken =
        std::any_of(state.devices.begin(), state.devices.end(),
                    [&](const DeviceState& other) { return other.facts.name == name; });
    if (name.empty()) return {ChainCode::kBadName, "A device of a chain needs a name."};
    if (taken) return {ChainCode::kBadName, "Two devices are called " + name + "."};
    const int length = device.instructions.Length();
    if (length < 1 || length > kMaxBoundaryLength) {
        return {ChainCode::kNoLength,
                "The length of the instruction register of " + name + " is not known."};
    }
    device.facts.instruction_length = length;
    if (ChainResult result = device.instructions.Select(name, "BYPASS", device.selected);
        !result.Ok()) {
        return result;
    }
    state.devices.push_back(std::move(device));
    state.LayOut();
    return {};
}

}  // namespace

ChainResult Chain::Add(std::string_view name, BScanParser& parser, const Facts* facts) {
    return Guarded([&]() -> ChainResult {
        BScanPinMap* const map = parser.GetPinMap();
        if (state_ == nullptr) return NoMemory();
        if (map == nullptr) {
            return {ChainCode::kNoModel, std::string(name) + " was read without ports."};
        }
        DeviceState device{{}, detail::InstructionSet(parser, facts), {}, {}};
        ChainDevice& known = device.facts;
        known.name = name;
        known.component = View(parser.GetComponentName());
        known.package = View(parser.GetPackageType());
        if (const CInstrRegisterDesc* ir = parser.GetInstructionRegisterDescription()) {
            known.instruction_capture = WithoutQuotes(View(ir->GetInstructionCapture()));
        }
        if (facts != nullptr) TakeFacts(*facts, known);
        known.driver = std::make_unique<PinDriver>(*map);
        device.names = PinNames(*known.driver, facts);
        PinDriver& driver = *known.driver;
        ChainResult result = Append(*state_, std::move(device));
        if (result.Ok()) driver.Preset();
        return result;
    });
}

ChainResult Chain::Add(std::string_view name, int instruction_length) {
    return Guarded([&]() -> ChainResult {
        if (state_ == nullptr) return NoMemory();
        DeviceState device{{}, detail::InstructionSet(instruction_length), {}, {}};
        device.facts.name = name;
        return Append(*state_, std::move(device));
    });
}

int Chain::DeviceCount() const {
    return state_ == nullptr ? 0 : static_cast<int>(state_->devices.size());
}

const ChainDevice& Chain::Device(int device) const {
    return state_->devices[static_cast<std::size_t>(device)].facts;
}

int Chain::FindDevice(std::string_view name) const {
    for (int i = 0; i < DeviceCount(); ++i) {
        if (Device(i).name == name) return i;
    }
    return -1;
}

PinDriver* Chain::Driver(int device) const {
    return device < 0 || device >= DeviceCount() ? nullptr : Device(device).driver.get();
}

double Chain::MaxFrequency() const {
    double lowest = 0;
    for (int i = 0; i < DeviceCount(); ++i) {
        const double limit = Device(i).max_frequency;
        if (limit > 0 && (lowest == 0 || limit < lowest)) lowest = limit;
    }
    return lowest;
}

namespace {

// Names may hold dots, so the longest name of a device that stands in front counts.
int DeviceInFront(const Chain& chain, std::string_view text) {
    int found = -1;
    std::size_t longest = 0;
    for (int i = 0; i < chain.DeviceCount(); ++i) {
        const std::string& name = chain.Device(i).name;
        const bool in_front = text.size() > name.size() && text[name.size()] == '.' &&
                              text.substr(0, name.size()) == name;
        if (in_front && name.size() >= longest) {
            found = i;
            longest = name.size();
        }
    }
    return found;
}

int OnlyDevice(const Chain& chain) {
    int found = -1;
    for (int i = 0; i < chain.DeviceCount(); ++i) {
        if (!chain.Device(i).HasModel()) continue;
        if (found >= 0) return -1;
        found = i;
    }
    return found;
}

}  // namespace

ChainResult Chain::FindPins(std::string_view text, std::vector<ChainPin>& pins) const {
    return Guarded([&]() -> ChainResult {
        int device = DeviceInFront(*this, text);
        std::string_view rest = text;
        if (device >= 0) {
            rest.remove_prefix(Device(device).name.size() + 1);
        } else {
            device = OnlyDevice(*this);
        }
        if (device < 0) {
            return {ChainCode::kNoDevice,
                    Quoted(text) + " names no device of the chain: a pin is DEVICE.PIN."};
        }
        if (!Device(device).HasModel()) {
            return {ChainCode::kNoModel,
                    Device(device).name + " has no file: its pins are unknown."};
        }
        const DeviceState& state = state_->devices[static_cast<std::size_t>(device)];
        const std::vector<int> elements = state.names.Find(rest);
        if (elements.empty()) {
            return {ChainCode::kNoPin,
                    Device(device).name + " has no pin or port " + Quoted(rest) + "."};
        }
        pins.clear();
        for (const int element : elements) pins.push_back({device, element});
        return {};
    });
}

std::string Chain::Label(ChainPin pin) const {
    const PinDriver* const driver = Driver(pin.device);
    if (driver == nullptr || driver->Node(pin.element) == nullptr) return {};
    const DeviceState& state = state_->devices[static_cast<std::size_t>(pin.device)];
    return state.facts.name + "." + state.names.Label(pin.element);
}

std::string Chain::PackagePin(ChainPin pin) const {
    const PinDriver* const driver = Driver(pin.device);
    const LPinNode* const node = driver == nullptr ? nullptr : driver->Node(pin.element);
    return node == nullptr ? std::string() : std::string(View(PinName(*node)));
}

ChainResult Chain::CanSelect(int device, std::string_view instruction) const {
    return Guarded([&]() -> ChainResult {
        if (device < 0 || device >= DeviceCount()) return NoDevice();
        const DeviceState& state = state_->devices[static_cast<std::size_t>(device)];
        detail::Selection unused;
        return state.instructions.Select(state.facts.name, instruction, unused);
    });
}

ChainResult Chain::Select(const std::vector<InstructionChoice>& choices) {
    return Guarded([&]() -> ChainResult {
        if (DeviceCount() == 0) return {ChainCode::kEmpty, "The chain has no devices."};
        std::vector<detail::Selection> selections(state_->devices.size());
        for (std::size_t i = 0; i < selections.size(); ++i) {
            const DeviceState& device = state_->devices[i];
            // It was selected when the device was added, so it can be again.
            device.instructions.Select(device.facts.name, "BYPASS", selections[i]);
        }
        for (const InstructionChoice& choice : choices) {
            if (choice.device < 0 || choice.device >= DeviceCount()) return NoDevice();
            const auto index = static_cast<std::size_t>(choice.device);
            const DeviceState& device = state_->devices[index];
            ChainResult result = device.instructions.Select(device.facts.name, choice.instruction,
                                                            selections[index]);
            if (!result.Ok()) return result;
        }
        for (std::size_t i = 0; i < selections.size(); ++i) {
            std::swap(state_->devices[i].selected, selections[i]);
        }
        state_->LayOut();
        return {};
    });
}

std::string Chain::SelectedInstruction(int device) const {
    if (device < 0 || device >= DeviceCount()) return {};
    return state_->devices[static_cast<std::size_t>(device)].selected.instruction;
}

ScanBits Chain::InstructionBits() const {
    ScanBits bits;
    for (int i = DeviceCount(); i-- > 0;) {
        bits.Append(state_->devices[static_cast<std::size_t>(i)].selected.opcode);
    }
    return bits;
}

const ScanFields& Chain::InstructionFields() const {
    return state_ == nullptr ? kNoFields : state_->instruction_fields;
}

namespace {

// Cell n of a scan vector is the bit 0x80 >> (n % 8) of byte n / 8.
void CopyVector(BScanPinMap& device, int first, ScanBits& bits) {
    const unsigned char* const bytes = device.GetBScanBitArray();
    for (int n = 0; n < device.GetBScanLength(); ++n) {
        const auto cell = static_cast<unsigned>(n);
        if ((bytes[cell / 8] & (0x80U >> (cell % 8))) != 0) bits.Set(first + n, true);
    }
}

}  // namespace

ScanBits Chain::DataBits() const {
    int size = 0;
    if (DeviceCount() == 0) return {};
    for (const ScanField& field : *state_->data_fields) size += field.count;
    ScanBits bits(size);
    for (const ScanField& field : *state_->data_fields) {
        const PinDriver* const driver = Driver(field.device);
        if (driver == nullptr || field.register_name != "BOUNDARY") continue;
        CopyVector(driver->Device(), field.first, bits);
    }
    return bits;
}

std::shared_ptr<const ScanFields> Chain::DataFields() const {
    return state_ == nullptr ? std::make_shared<const ScanFields>() : state_->data_fields;
}

int Chain::BitOf(int device, int cell) const {
    if (device < 0 || device >= DeviceCount() || cell < 0) return -1;
    const auto index = static_cast<std::size_t>(device);
    const detail::Selection& selected = state_->devices[index].selected;
    if (selected.register_name != "BOUNDARY" || cell >= selected.register_length) return -1;
    return state_->data_first[index] + cell;
}

int Chain::ReceiverBit(ChainPin pin) const {
    const PinDriver* const driver = Driver(pin.device);
    if (driver == nullptr) return -1;
    const LBScanCell* const receiver = driver->Cells(pin.element).receiver;
    return receiver == nullptr ? -1 : BitOf(pin.device, receiver->GetBoundaryCellPosition());
}

eSignal Chain::Seen(ChainPin pin, const ScanBits& captured) const {
    const int bit = ReceiverBit(pin);
    if (bit < 0 || bit >= captured.Size()) return SIG_X;
    return captured.Get(bit) ? SIG_1 : SIG_0;
}

}  // namespace bscan
