// The inside of an object list, for the classes that own one.
#pragma once

#include <bscan/object_list.h>

#include <vector>

namespace bscan::detail {

class ListAccess {
public:
    static std::vector<LObject*>& Objects(LObjList& list) { return list.objects_; }
    static const std::vector<LObject*>& Objects(const LObjList& list) { return list.objects_; }

    // Rises with every pointer taken off the list.
    static unsigned Removals(const LObjList& list) { return list.removals_; }
};

}  // namespace bscan::detail
