// The inside of an object list, for the classes that own one.
#pragma once

#include <bscan/object_list.h>

namespace bscan::detail {

// Whoever owns a list and has to know when a host takes objects off it.
class ListOwner {
public:
    virtual void Removed(LObject* object) = 0;

protected:
    ~ListOwner() = default;
};

class ListAccess {
public:
    static ObjectPointers& Objects(LObjList& list) { return list.objects_; }
    static const ObjectPointers& Objects(const LObjList& list) { return list.objects_; }

    // Null for a list that nobody owns.
    static void SetOwner(LObjList& list, ListOwner* owner) { list.owner_ = owner; }
};

}  // namespace bscan::detail
