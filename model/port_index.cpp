#include "model/port_index.h"

#include <bscan/pin_node.h>
#include <bscan/text.h>

#include "support/list_access.h"
#include "support/text_view.h"

#include <algorithm>
#include <new>

namespace bscan::detail {
namespace {

bool Equal(const char* stored, std::string_view sought) {
    return stored != nullptr && stored == sought;
}

}  // namespace

PortIndex::PortIndex(LObjList& list) : list_(list) { ListAccess::SetOwner(list_, this); }

PortIndex::~PortIndex() { ListAccess::SetOwner(list_, nullptr); }

// Port names go on being learned where the last lookup stopped; the rest is learned anew.
void PortIndex::ElementsAdded() {
    PinNameSet();
    PinNumberSet();
}

// The node may live longer than its device.
void PortIndex::Removed(LObject* object) {
    auto* const node = static_cast<LPinNode*>(object);
    if (node != nullptr && node->index_ == this) node->index_ = nullptr;
    list_changed_ = true;
}

const char* PortIndex::PortNameOf(const LPinNode& node) {
    return node.port_name_ ? node.port_name_->c_str() : nullptr;
}

const char* PortIndex::PinNameOf(const LPinNode& node) {
    return node.pin_name_ ? node.pin_name_->c_str() : nullptr;
}

int PortIndex::Count() const { return static_cast<int>(ListAccess::Objects(list_).size()); }

LPinNode* PortIndex::Node(int position) const {
    return static_cast<LPinNode*>(ListAccess::Objects(list_)[static_cast<std::size_t>(position)]);
}

bool PortIndex::TryLearnPortNames() noexcept {
    if (port_names_open_ || list_changed_) return false;
    try {
        LearnPortNames();
    } catch (const std::bad_alloc&) {
        names_.Clear();
        bearers_.clear();
        learned_ = 0;
        return false;
    }
    return !port_names_open_;
}

void PortIndex::LearnPortNames() {
    std::string upper;
    for (; learned_ < Count(); ++learned_) {
        const LPinNode& node = *Node(learned_);
        if (!node.port_name_) {
            port_names_open_ = true;  // only a walk knows what such an element does to a lookup
            return;
        }
        AddBearers(*node.port_name_).declared.push_back(learned_);
        upper = *node.port_name_;
        UpperCase(upper);
        Bearers& bearers = AddBearers(upper);
        bearers.upper.push_back(learned_);
        const auto index = static_cast<std::size_t>(node.vector_index_);
        std::vector<int>& firsts = bearers.first_with_index;
        if (index >= firsts.size()) firsts.resize(index + 1, -1);
        if (firsts[index] < 0) firsts[index] = learned_;
    }
}

const PortIndex::Bearers* PortIndex::FindBearers(std::string_view name) const {
    const int number = names_.Find(name);
    return number == NameTable::kNone ? nullptr : &bearers_[static_cast<std::size_t>(number)];
}

PortIndex::Bearers& PortIndex::AddBearers(std::string_view name) {
    const auto number = static_cast<std::size_t>(names_.Add(name));
    if (number == bearers_.size()) bearers_.emplace_back();
    return bearers_[number];
}

void PortIndex::UpperCaseUpTo(int position) {
    for (const int end = std::min(position + 1, Count()); upper_until_ < end; ++upper_until_) {
        strupr(Node(upper_until_)->port_name_->data());
    }
}

LPinNode* PortIndex::FirstNamed(std::string_view name, std::optional<int> vector_index) {
    if (!TryLearnPortNames()) return WalkToName(name, vector_index);
    int found = -1;
    if (const Bearers* const bearers = FindBearers(name);
        bearers != nullptr && !bearers->upper.empty()) {
        const auto index = static_cast<std::size_t>(vector_index.value_or(0));
        if (!vector_index) {
            found = bearers->upper.front();
        } else if (index < bearers->first_with_index.size()) {
            found = bearers->first_with_index[index];
        }
    }
    UpperCaseUpTo(found < 0 ? Count() : found);
    return found < 0 ? nullptr : Node(found);
}

LPinNode* PortIndex::WalkToName(std::string_view name, std::optional<int> vector_index) {
    for (LObject* const object : ListAccess::Objects(list_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node == nullptr) continue;
        if (!node->port_name_) {
            if (vector_index) return nullptr;
            continue;
        }
        strupr(node->port_name_->data());
        if (vector_index && node->vector_index_ != *vector_index) continue;
        if (Equal(PortNameOf(*node), name)) return node;
    }
    return nullptr;
}

LPinNode* PortIndex::NthNamed(std::string_view name, int k) {
    if (k < 0 || k >= Count()) return nullptr;
    if (!TryLearnPortNames()) return WalkToNth(name, k);
    const Bearers* const bearers = FindBearers(name);
    if (bearers == nullptr) return nullptr;
    // Before `upper_until_` the names are in upper case, from there on as declared. So the elements
    // that have this name now are those of `upper` before that position, then those of `declared`
    // from it on.
    const auto from_there = [&](const std::vector<int>& positions) {
        return std::lower_bound(positions.begin(), positions.end(), upper_until_);
    };
    const auto turned = static_cast<int>(from_there(bearers->upper) - bearers->upper.begin());
    if (k < turned) return Node(bearers->upper[static_cast<std::size_t>(k)]);
    const auto others = from_there(bearers->declared);
    k -= turned;
    return k < bearers->declared.end() - others ? Node(others[k]) : nullptr;
}

LPinNode* PortIndex::WalkToNth(std::string_view name, int k) const {
    for (LObject* const object : ListAccess::Objects(list_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node != nullptr && Equal(PortNameOf(*node), name) && k-- == 0) return node;
    }
    return nullptr;
}

void PortIndex::LearnPinNames() {
    if (pin_names_known_) return;
    pin_names_.clear();
    for (LObject* const object : ListAccess::Objects(list_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node->pin_name_) pin_names_.try_emplace(PinNameOf(*node), node);
    }
    pin_names_known_ = true;
}

LPinNode* PortIndex::WithPinName(std::string_view name) {
    if (pin_names_open_ || list_changed_) return WalkToPinName(name);
    try {
        LearnPinNames();
    } catch (const std::bad_alloc&) {
        return WalkToPinName(name);
    }
    const auto found = pin_names_.find(name);
    return found == pin_names_.end() ? nullptr : found->second;
}

LPinNode* PortIndex::WalkToPinName(std::string_view name) const {
    for (LObject* const object : ListAccess::Objects(list_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node != nullptr && Equal(PinNameOf(*node), name)) return node;
    }
    return nullptr;
}

void PortIndex::LearnPinNumbers() {
    if (pin_numbers_known_) return;
    pin_numbers_.assign(static_cast<std::size_t>(Count()) + 1, nullptr);
    for (int position = Count() - 1; position >= 0; --position) {
        LPinNode* const node = Node(position);
        if (node->pin_number_ < 1 || node->pin_number_ > Count()) continue;
        pin_numbers_[static_cast<std::size_t>(node->pin_number_)] = node;
    }
    pin_numbers_known_ = true;
}

LPinNode* PortIndex::WithPinNumber(int number) {
    if (number < 1 || number > Count()) return nullptr;
    if (list_changed_) return WalkToPinNumber(number);
    try {
        LearnPinNumbers();
    } catch (const std::bad_alloc&) {
        return WalkToPinNumber(number);
    }
    return pin_numbers_[static_cast<std::size_t>(number)];
}

LPinNode* PortIndex::WalkToPinNumber(int number) const {
    for (LObject* const object : ListAccess::Objects(list_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node != nullptr && node->pin_number_ == number) return node;
    }
    return nullptr;
}

}  // namespace bscan::detail
