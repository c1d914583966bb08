#include <bscan/object_list.h>

#include "support/border.h"
#include "support/list_access.h"

LObjList::LObjList() = default;
LObjList::~LObjList() = default;

void LObjList::AddTail(LObject* object) {
    bscan::detail::GuardedQuietly([&] {
        objects_.push_back(object);
        if (owner_ != nullptr) owner_->Appended();
    });
}

int LObjList::GetCount() { return static_cast<int>(objects_.size()); }
int LObjList::GetCount() const { return static_cast<int>(objects_.size()); }

LObject* LObjList::GetAt(int index) { return static_cast<const LObjList*>(this)->GetAt(index); }

LObject* LObjList::GetAt(int index) const {
    return index >= 0 && index < GetCount() ? objects_[static_cast<std::size_t>(index)] : nullptr;
}

bool LObjList::IsEmpty() { return objects_.empty(); }

LObject* LObjList::RemoveTail() {
    if (objects_.empty()) return nullptr;
    LObject* const last = objects_.back();
    objects_.pop_back();
    if (owner_ != nullptr) owner_->Removed(last);
    return last;
}
