#include "model/port_runs.h"

#include <algorithm>
#include <initializer_list>

namespace bscan::detail {

void PortRuns::Add(const PortRun& run) {
    if (begin() == end()) {
        only_ = {run, 0, run.count};
        return;
    }
    const Item& last = *(end() - 1);
    const Item item{run, last.before + last.run.count, std::max(last.longest, run.count)};
    if (all_ == nullptr) {
        all_ = std::make_unique<std::vector<Item>>(std::initializer_list<Item>{only_, item});
    } else {
        all_->push_back(item);
    }
}

int PortRuns::At(int k) const {
    if (k < 0) return -1;
    const Item* const found = std::partition_point(
        begin(), end(), [&](const Item& item) { return item.before + item.run.count <= k; });
    return found == end() ? -1 : found->run.first + (k - found->before);
}

int PortRuns::CountBefore(int position) const {
    const Item* const next = std::partition_point(
        begin(), end(), [&](const Item& item) { return item.run.first < position; });
    if (next == begin()) return 0;
    const Item& last = *(next - 1);
    return last.before + std::min(last.run.count, position - last.run.first);
}

int PortRuns::FirstWithIndex(int vector_index) const {
    if (vector_index < 0) return -1;
    const Item* const found = std::partition_point(
        begin(), end(), [&](const Item& item) { return item.longest <= vector_index; });
    if (found == end()) return -1;
    const PortRun& run = found->run;
    return run.first + (run.ascending ? vector_index : run.count - 1 - vector_index);
}

}  // namespace bscan::detail
