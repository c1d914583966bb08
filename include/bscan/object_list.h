/// @file
/// An ordered list of object pointers, in which the library hands out ports and cells.
#pragma once

#include <bscan/export.h>
#include <bscan/object.h>

#include <vector>

namespace bscan::detail {
class ListAccess;
class ListOwner;
}

/// Ordered list of LObject pointers. It never destroys what it holds.
class BSCAN_EXPORT LObjList : public LObject {
public:
    /// Makes an empty list.
    LObjList();
    LObjList(const LObjList&) = delete;
    LObjList& operator=(const LObjList&) = delete;
    /// Releases the list's own storage, not the objects.
    ~LObjList() override;

    /// Appends a pointer, which may be null. Changes nothing when memory is exhausted.
    void AddTail(LObject* object);

    /// @return the number of pointers in the list.
    int GetCount();
    /// @copydoc GetCount()
    int GetCount() const;

    /// @param index  position in the list, 0 for the first pointer added.
    /// @return the pointer at that position; null when there is no such position. The caller
    ///         converts it to the class that the list's owner documents.
    LObject* GetAt(int index);
    /// @copydoc GetAt(int)
    LObject* GetAt(int index) const;

    /// @return true when the list holds no pointer.
    bool IsEmpty();

    /// Takes the last pointer off the list, without destroying the object.
    ///
    /// @return that pointer; null when the list is empty.
    LObject* RemoveTail();

private:
    friend class bscan::detail::ListAccess;

    std::vector<LObject*> objects_;
    bscan::detail::ListOwner* owner_ = nullptr;  // hears of AddTail() and RemoveTail()
};
