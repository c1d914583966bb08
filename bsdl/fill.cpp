// From the facts to the model: the order of the steps, and the records without ties.

#include <bscan/result.h>

#include "bsdl/model_filler.h"
#include "bsdl/reading.h"
#include "model/device_builder.h"
#include "support/border.h"
#include "support/list_access.h"
#include "support/text_view.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace bscan::detail {

int FillModel(const Facts& facts, const PinMap* package, std::string_view name,
              BScanParser& parser) {
    if (ModelFiller::HasModel(parser)) return kModelExists;
    return GuardedCode([&]() -> int {
        ModelFiller(facts, package, parser).Fill(name);
        return kOk;
    });
}

std::string ModelFiller::LowerCased(std::string_view text) {
    std::string lower(text);
    LowerCase(lower);
    return lower;
}

bool ModelFiller::HasModel(const BScanParser& parser) {
    return parser.pin_map_ != nullptr || parser.package_maps_ != nullptr ||
           parser.instruction_register_ != nullptr || parser.register_access_ != nullptr ||
           !parser.differential_pairs_.empty();
}

void ModelFiller::Fill(std::string_view file_name) {
    if (!file_name.empty()) parser_.bsdl_filename_ = std::string(file_name);
    parser_.component_name_ = std::string(facts_.entity.text);
    const Word& package = package_ != nullptr ? package_->name : facts_.default_package;
    if (package.Exists()) parser_.package_type_ = LowerCased(package.text);
    CreateDevice();
    AddPorts();
    BondPins();
    AddInstructions();
    AddRegisters();
    AddCells();
    AddPairs();
    // The lookups of the line reader have this effect, which hosts can see.
    DeviceBuilder(*parser_.pin_map_).UpperCaseNames(looked_at_);
}

void ModelFiller::CreateDevice() {
    auto device = std::make_unique<BScanPinMap>();
    if (!DeviceBuilder(*device).Usable()) throw std::bad_alloc();
    parser_.pin_map_ = std::move(device);
}

LPinNode& ModelFiller::Element(int place) const {
    const LObjList& elements = *parser_.pin_map_->GetPinListArray();
    return *static_cast<LPinNode*>(ListAccess::Objects(elements)[static_cast<std::size_t>(place)]);
}

int ModelFiller::PlaceOf(const ElementName& name) {
    const int place = elements_.PlaceOf(name);
    const int passed = place < 0 ? parser_.pin_map_->GetNumberOfPins() : place + 1;
    looked_at_ = std::max(looked_at_, passed);
    return place;
}

void ModelFiller::AddInstructions() {
    auto description = std::make_unique<CInstrRegisterDesc>();
    description->length_ = facts_.instruction_length;
    // The model keeps the pattern with its quotes.
    if (const Word& capture = facts_.instruction_capture; capture.Exists()) {
        description->capture_.append(1, '"').append(capture.text).push_back('"');
    }
    description->instructions_.reserve(facts_.instructions.size());
    for (const Instruction& instruction : facts_.instructions) {
        CInstrOpcode& record = description->instructions_.emplace_back();
        record.name_.assign(instruction.name.text);
        for (const Word& opcode : instruction.opcodes) record.opcodes_.emplace_back(opcode.text);
    }
    parser_.instruction_register_ = std::move(description);
}

void ModelFiller::AddRegisters() {
    if (facts_.registers.empty()) return;
    auto description = std::make_unique<CRegisterAccessDesc>();
    description->registers_.reserve(facts_.registers.size());
    for (const RegisterAccess& access : facts_.registers) {
        CRegister& record = description->registers_.emplace_back();
        record.name_.assign(access.name.text);
        if (access.length) record.name_.append("[" + std::to_string(*access.length) + "]");
        for (const RegisterInstruction& instruction : access.instructions) {
            record.instructions_.emplace_back(instruction.name.text);
        }
    }
    parser_.register_access_ = std::move(description);
}

}  // namespace bscan::detail
