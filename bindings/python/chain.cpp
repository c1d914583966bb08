#include "chain.h"

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

PinRequests& ScanChain::Requests(int device) {
    return *members_.at(static_cast<std::size_t>(device)).requests;
}

}  // namespace bscan::python
