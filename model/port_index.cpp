#include "model/port_index.h"

#include <bscan/pin_node.h>

#include "support/text_view.h"

#include <algorithm>
#include <string>

namespace bscan::detail {
namespace {

// What a walk does with an element.
enum class Step { kNext, kFound, kEnd };

}  // namespace

PortIndex::PortIndex(LObjList& list) : list_(list) { ListAccess::SetOwner(list_, this); }

PortIndex::~PortIndex() { ListAccess::SetOwner(list_, nullptr); }

const char* PortIndex::PortNameOf(const LPinNode& node) { return node.port_name_.Text(); }

const char* PortIndex::PinNameOf(const LPinNode& node) { return node.pin_name_.Text(); }

int PortIndex::Count() const { return static_cast<int>(ListAccess::Objects(list_).size()); }

LPinNode* PortIndex::Node(int position) const {
    return static_cast<LPinNode*>(ListAccess::Objects(list_)[static_cast<std::size_t>(position)]);
}

void PortIndex::GiveUp() {
    indexed_ = 0;
    upper_until_ = 0;
    names_.Clear();
    same_names_.clear();
    exposed_names_ = {};
    exposed_pin_names_ = {};
    pin_names_known_ = false;
    pin_numbers_known_ = false;
}

void PortIndex::Removed(LObject* object) {
    auto* const node = static_cast<LPinNode*>(object);
    if (node != nullptr && node->index_ == this) node->index_ = nullptr;
    GiveUp();
}

void PortIndex::Added(std::optional<std::string_view> name, const PortRun& run) noexcept {
    PinNamesChanged();
    PinNumbersChanged();
    if (!name || run.first != indexed_) return;
    try {
        SameName& same = Same(*name);
        same.spelled.Add(run);
        if (IsUpperCase(*name)) {
            same.folded.Add(run);
        } else {
            std::string upper(*name);
            UpperCase(upper);
            Same(upper).folded.Add(run);
        }
        indexed_ += run.count;
    } catch (...) {
        GiveUp();
    }
}

PortIndex::SameName& PortIndex::Same(std::string_view name) {
    const auto number = static_cast<std::size_t>(names_.Add(name));
    if (number == same_names_.size()) same_names_.emplace_back();
    return same_names_[number];
}

void PortIndex::Expose(Positions& exposed, int position) {
    try {
        exposed.in_order =
            exposed.in_order && (exposed.sorted.empty() || exposed.sorted.back() < position);
        exposed.sorted.push_back(position);
    } catch (...) {
        GiveUp();
    }
}

void PortIndex::PortNameExposed(const LPinNode& node) {
    if (node.list_position_ < indexed_) Expose(exposed_names_, node.list_position_);
}

void PortIndex::PinNameExposed(const LPinNode& node) {
    if (node.list_position_ < indexed_) Expose(exposed_pin_names_, node.list_position_);
}

const std::vector<int>& PortIndex::InOrder(Positions& positions) {
    if (!positions.in_order) std::sort(positions.sorted.begin(), positions.sorted.end());
    positions.in_order = true;
    return positions.sorted;
}

// Finds the first element for which `matches` says so. The candidate is the first one that the
// index knows, or `indexed_`; exposed elements are asked themselves.
template <class Matches>
PortIndex::Found PortIndex::FirstOf(int candidate, Positions& exposed, Matches matches) {
    bool candidate_is_exposed = false;
    for (const int position : InOrder(exposed)) {
        if (position > candidate || position >= indexed_) break;
        LPinNode* const node = Node(position);
        if (matches(*node) == Step::kFound) return {node, position};
        candidate_is_exposed = position == candidate;
    }
    if (candidate < indexed_ && !candidate_is_exposed) return {Node(candidate), candidate};
    // The index has no answer: an exposed candidate lost its name, or only elements that a host has
    // appended are left.
    int position = candidate_is_exposed ? candidate + 1 : indexed_;
    for (; position < Count(); ++position) {
        LPinNode* const node = Node(position);
        if (node == nullptr) continue;
        const Step step = matches(*node);
        if (step == Step::kFound) return {node, position};
        if (step == Step::kEnd) break;
    }
    return {nullptr, position};
}

void PortIndex::UpperCaseUpTo(int position) {
    for (const int end = std::min(position + 1, indexed_); upper_until_ < end; ++upper_until_) {
        UpperCasedName(*Node(upper_until_));
    }
}

// Turns the name of an element into upper case, as a walk does with each that it passes.
std::string_view PortIndex::UpperCasedName(LPinNode& node) {
    const std::string_view name = node.port_name_.View();
    if (!IsUpperCase(name)) UpperCase(node.port_name_.Text(), name.size());
    return name;
}

// Finds by port name from what the index knows of it: -1 or a position.
template <class Matches>
LPinNode* PortIndex::FirstByName(int known, Matches matches) {
    const Found found = FirstOf(known < 0 ? indexed_ : known, exposed_names_, matches);
    UpperCaseUpTo(found.last);
    return found.node;
}

LPinNode* PortIndex::FirstNamed(std::string_view name) {
    const PortRuns* const same = Folded(name);
    return FirstByName(same == nullptr ? -1 : same->First(), [&](LPinNode& node) {
        if (!node.port_name_.IsSet()) return Step::kNext;
        return UpperCasedName(node) == name ? Step::kFound : Step::kNext;
    });
}

LPinNode* PortIndex::FirstNamed(std::string_view name, int vector_index) {
    const PortRuns* const same = Folded(name);
    const int known = same == nullptr ? -1 : same->FirstWithIndex(vector_index);
    return FirstByName(known, [&](LPinNode& node) {
        if (!node.port_name_.IsSet()) return Step::kEnd;
        const bool found = UpperCasedName(node) == name && node.vector_index_ == vector_index;
        return found ? Step::kFound : Step::kNext;
    });
}

const PortRuns* PortIndex::Folded(std::string_view name) const {
    const int number = names_.Find(name);
    return number == NameTable::kNone ? nullptr
                                      : &same_names_[static_cast<std::size_t>(number)].folded;
}

// The elements before `upper_until_` are spelled in upper case, those behind it as declared.
int PortIndex::NthSpelled(std::string_view name, int k) const {
    const int number = names_.Find(name);
    if (number == NameTable::kNone) return -1;
    const SameName& same = same_names_[static_cast<std::size_t>(number)];
    if (upper_until_ == 0) return same.spelled.At(k);
    const int turned = IsUpperCase(name) ? same.folded.CountBefore(upper_until_) : 0;
    if (k < turned) return same.folded.At(k);
    return same.spelled.At(same.spelled.CountBefore(upper_until_) + (k - turned));
}

LPinNode* PortIndex::NthNamed(std::string_view name, int k) {
    if (k < 0 || k >= Count()) return nullptr;
    if (exposed_names_.sorted.empty() && indexed_ == Count()) {
        const int position = NthSpelled(name, k);
        return position < 0 ? nullptr : Node(position);
    }
    for (int position = 0; position < Count(); ++position) {
        LPinNode* const node = Node(position);
        if (node == nullptr || !node->port_name_.IsSet()) continue;
        if (node->port_name_.View() == name && k-- == 0) return node;
    }
    return nullptr;
}

void PortIndex::LearnPinNames() {
    if (pin_names_known_) return;
    pin_names_.Clear();
    first_with_pin_name_.clear();
    for (int position = 0; position < indexed_; ++position) {
        const LPinNode& node = *Node(position);
        if (!node.pin_name_.IsSet()) continue;
        const int number = pin_names_.Add(node.pin_name_.View());
        if (static_cast<std::size_t>(number) == first_with_pin_name_.size()) {
            first_with_pin_name_.push_back(position);
        }
    }
    pin_names_known_ = true;
}

LPinNode* PortIndex::WithPinName(std::string_view name) {
    int candidate = indexed_;
    try {
        LearnPinNames();
        const int number = pin_names_.Find(name);
        if (number >= 0) candidate = first_with_pin_name_[static_cast<std::size_t>(number)];
    } catch (...) {
        GiveUp();
        candidate = indexed_;
    }
    return FirstOf(candidate, exposed_pin_names_,
                   [&](LPinNode& node) {
                       return node.pin_name_.IsSet() && node.pin_name_.View() == name ? Step::kFound
                                                                                      : Step::kNext;
                   })
        .node;
}

void PortIndex::LearnPinNumbers() {
    if (pin_numbers_known_) return;
    first_with_number_.assign(static_cast<std::size_t>(Count()) + 1, nullptr);
    for (int position = Count() - 1; position >= 0; --position) {
        LPinNode* const node = Node(position);
        if (node == nullptr || node->pin_number_ < 1 || node->pin_number_ > Count()) continue;
        first_with_number_[static_cast<std::size_t>(node->pin_number_)] = node;
    }
    pin_numbers_known_ = true;
}

LPinNode* PortIndex::WithPinNumber(int number) {
    if (number < 1 || number > Count()) return nullptr;
    if (indexed_ == Count()) {
        try {
            LearnPinNumbers();
            return first_with_number_[static_cast<std::size_t>(number)];
        } catch (...) {  // NOLINT(bugprone-empty-catch): the walk below needs no memory
        }
    }
    for (int position = 0; position < Count(); ++position) {
        LPinNode* const node = Node(position);
        if (node != nullptr && node->pin_number_ == number) return node;
    }
    return nullptr;
}

}  // namespace bscan::detail
