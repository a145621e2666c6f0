#pragma once

#include <cstddef>
#include <new>

// An allocator for standard containers whose storage starts on a cache line, so that
// elements that share a line in the array share one in memory too.
template <class T> class CacheLineAllocator {
public:
    using value_type = T;
    static constexpr std::size_t LineSize = 64;

    CacheLineAllocator() = default;
    template <class U> explicit CacheLineAllocator(const CacheLineAllocator<U>&) {}

    T* allocate(std::size_t count) {
        return static_cast<T*>(::operator new (count * sizeof(T), std::align_val_t{LineSize}));
    }
    void deallocate(T* storage, std::size_t) {
        ::operator delete (storage, std::align_val_t{LineSize});
    }

    template <class U> bool operator==(const CacheLineAllocator<U>&) const { return true; }
    template <class U> bool operator!=(const CacheLineAllocator<U>&) const { return false; }
};
