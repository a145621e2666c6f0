#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

// An allocator for standard containers whose storage starts on a cache line, so that
// elements that share a line in the array share one in memory too.
template <class T> class CacheLineAllocator {
public:
    using value_type = T;
    static constexpr std::size_t LineSize = 64;
    static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= sizeof(char*),
                  "room for the allocation's address before the storage");

    CacheLineAllocator() = default;
    template <class U> explicit CacheLineAllocator(const CacheLineAllocator<U>&) {}

    // An ordinary allocation a line longer, the storage starting at its first line boundary
    // with room for a pointer to the allocation before it (an allocation starts at least 8
    // bytes before a boundary, being aligned to 16). The aligned operator new cuts its storage
    // out of a larger block and leaves the slack in the heap: with it, a track system of 2,000
    // groups scheduled its frames at half the speed.
    T* allocate(std::size_t count) {
        char* const allocation = static_cast<char*>(::operator new(count * sizeof(T) + LineSize));
        char* const storage =
            allocation + LineSize - reinterpret_cast<std::uintptr_t>(allocation) % LineSize;
        reinterpret_cast<char**>(storage)[-1] = allocation;
        return reinterpret_cast<T*>(storage);
    }
    void deallocate(T* storage, std::size_t) {
        ::operator delete(reinterpret_cast<char**>(storage)[-1]);
    }

    template <class U> bool operator==(const CacheLineAllocator<U>&) const { return true; }
    template <class U> bool operator!=(const CacheLineAllocator<U>&) const { return false; }
};
