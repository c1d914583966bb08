#include "chain.h"

#include <map>
#include <utility>

namespace bscan::python {

void Check(const ChainResult& result) {
    if (!result.Ok()) throw Problem("ChainError", static_cast<int>(result.code), result.reason);
}

void ScanChain::Add(Member member) {
    const int place = chain_.DeviceCount();
    if (member.source == nullptr) {
        Check(chain_.Add(member.name, member.instruction_length));
    } else {
        member.parser = std::make_unique<BScanParser>();
        Fill(*member.source, member.package, *member.parser);
        Check(chain_.Add(member.name, *member.parser, &member.source->GetFacts()));
        member.requests =
            std::make_unique<PinRequests>(*chain_.Driver(place), [this, place](int element) {
                return chain_.Label({place, element});
            });
    }
    members_.push_back(std::move(member));
}

void ScanChain::Add(const std::string& name, const Device& device) {
    Member member;
    member.name = name;
    member.source = device.Source();
    member.package = device.PackageAsked();
    Add(std::move(member));
}

void ScanChain::Add(const std::string& name, int instruction_length) {
    Member member;
    member.name = name;
    member.instruction_length = instruction_length;
    Add(std::move(member));
}

std::unique_ptr<ScanChain> ScanChain::Fresh() const {
    auto chain = std::make_unique<ScanChain>();
    for (const Member& member : members_) {
        Member copy;
        copy.name = member.name;
        copy.source = member.source;
        copy.package = member.package;
        copy.instruction_length = member.instruction_length;
        chain->Add(std::move(copy));
    }
    return chain;
}

void ScanChain::Preset() {
    for (const Member& member : members_) {
        if (member.requests != nullptr) member.requests->Preset({});
    }
}

// What one device refuses is undone on those before it.
void ScanChain::Drive(const std::vector<PinLevel>& levels) {
    std::map<int, std::vector<PinRequest>> by_device;
    for (const PinLevel& level : levels) {
        by_device[level.pin.device].emplace_back(level.pin.element, level.level);
    }
    std::vector<PinRequests*> changed;
    try {
        for (const auto& [device, requests] : by_device) {
            PinRequests& pins = *members_.at(static_cast<std::size_t>(device)).requests;
            pins.Drive(requests);
            changed.push_back(&pins);
        }
    } catch (const Problem&) {
        for (PinRequests* pins : changed) pins->Undo();
        throw;
    }
}

}  // namespace bscan::python
