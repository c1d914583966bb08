#include "model/port_runs.h"

#include <algorithm>
#include <cstdlib>

namespace bscan::detail {

PortRun PortRuns::Only() const { return {first_, std::abs(count_), count_ >= 0}; }

void PortRuns::Add(const PortRun& run) {
    if (count_ == 0) {
        first_ = run.first;
        count_ = run.ascending ? run.count : -run.count;
        return;
    }
    if (all_ == nullptr) {
        const PortRun only = Only();
        all_ = std::make_unique<std::vector<Item>>(1, Item{only, 0, only.count});
    }
    const Item& last = all_->back();
    all_->push_back({run, last.before + last.run.count, std::max(last.longest, run.count)});
}

int PortRuns::At(int k) const {
    if (k < 0) return -1;
    if (all_ == nullptr) return k < std::abs(count_) ? first_ + k : -1;
    const auto found = std::partition_point(all_->begin(), all_->end(), [&](const Item& item) {
        return item.before + item.run.count <= k;
    });
    return found == all_->end() ? -1 : found->run.first + (k - found->before);
}

int PortRuns::CountBefore(int position) const {
    if (all_ == nullptr) return std::clamp(position - first_, 0, std::abs(count_));
    const auto next = std::partition_point(
        all_->begin(), all_->end(), [&](const Item& item) { return item.run.first < position; });
    if (next == all_->begin()) return 0;
    const Item& last = *(next - 1);
    return last.before + std::min(last.run.count, position - last.run.first);
}

int PortRuns::FirstWithIndex(int vector_index) const {
    if (vector_index < 0) return -1;
    if (all_ == nullptr) {
        return vector_index < std::abs(count_) ? Only().WithIndex(vector_index) : -1;
    }
    const auto found = std::partition_point(
        all_->begin(), all_->end(), [&](const Item& item) { return item.longest <= vector_index; });
    return found == all_->end() ? -1 : found->run.WithIndex(vector_index);
}

}  // namespace bscan::detail
