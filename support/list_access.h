// The inside of an object list, for the classes that own one.
#pragma once

#include <bscan/object_list.h>

#include <vector>

namespace bscan::detail {

// The owner of a list, who is told when a host changes it.
class ListOwner {
public:
    virtual void Appended() = 0;
    virtual void Removed(LObject* object) = 0;

protected:
    ~ListOwner() = default;
};

// Changes a list without telling its owner.
class ListAccess {
public:
    static std::vector<LObject*>& Objects(LObjList& list) { return list.objects_; }
    static const std::vector<LObject*>& Objects(const LObjList& list) { return list.objects_; }

    // Null for a list that nobody owns.
    static void SetOwner(LObjList& list, ListOwner* owner) { list.owner_ = owner; }
};

}  // namespace bscan::detail
