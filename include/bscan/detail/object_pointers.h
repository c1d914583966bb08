/// @file
/// What an object list keeps its pointers in. Nothing in it is for hosts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>

class LObject;

namespace bscan::detail {

// Pointers in their order. Up to three, which is all that most ports have of cells, are kept in
// place.
class ObjectPointers {
public:
    ObjectPointers() = default;
    ObjectPointers(const ObjectPointers&) = delete;
    ObjectPointers& operator=(const ObjectPointers&) = delete;
    ~ObjectPointers() { Release(); }

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    LObject* const* begin() const { return objects_; }
    LObject* const* end() const { return objects_ + size_; }
    LObject* operator[](std::size_t position) const { return objects_[position]; }
    LObject*& back() { return objects_[size_ - 1]; }

    // Throws when memory is exhausted, and is unchanged then.
    void push_back(LObject* object) {
        if (size_ == capacity_) Grow();
        objects_[size_++] = object;
    }
    void pop_back() { --size_; }
    void clear() { size_ = 0; }

private:
    static constexpr std::uint32_t kInPlace = 3;

    void Grow() {
        if (capacity_ > std::numeric_limits<std::uint32_t>::max() / 2) throw std::bad_alloc();
        auto** const objects = new LObject*[std::size_t{capacity_} * 2];
        std::copy(begin(), end(), objects);
        Release();
        objects_ = objects;
        capacity_ *= 2;
    }

    void Release() {
        if (objects_ != in_place_) delete[] objects_;
    }

    LObject** objects_ = in_place_;
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = kInPlace;
    LObject* in_place_[kInPlace] = {};
};

}  // namespace bscan::detail
