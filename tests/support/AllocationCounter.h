// Replaces the global allocation operators with ones that count the heap allocations and
// releases the calling thread makes while `allocationcount::counting` is set (other threads,
// such as the software renderer's workers, are left out). A release that names a size other
// than the one allocated (an object deleted through a pointer to a type of another size, which
// is undefined behaviour) is counted too. Include it in exactly one source file of a test
// binary.
#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

namespace allocationcount {
inline thread_local bool counting = false;
inline std::atomic<long> allocations{0};
inline std::atomic<long> releases{0};
inline std::atomic<long> mismatchedReleases{0};

// Each block keeps its size in front of it, in a whole alignment unit so that the memory
// handed out stays aligned.
constexpr std::size_t HEADER = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

inline std::size_t* blockOf(void* memory) {
    return reinterpret_cast<std::size_t*>(static_cast<char*>(memory) - HEADER);
}

inline void release(void* memory) {
    if (memory == nullptr) {
        return;
    }
    if (counting) {
        ++releases;
    }
    std::free(blockOf(memory));
}
} // namespace allocationcount

void* operator new(std::size_t size) {
    if (allocationcount::counting) {
        ++allocationcount::allocations;
    }
    if (auto* block = static_cast<std::size_t*>(std::malloc(allocationcount::HEADER + size))) {
        *block = size;
        return reinterpret_cast<char*>(block) + allocationcount::HEADER;
    }
    throw std::bad_alloc();
}

// The replacement pair allocates with malloc, so free is the matching release; GCC cannot
// see that pairing across the replaced operators.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* memory) noexcept {
    allocationcount::release(memory);
}

void operator delete(void* memory, std::size_t size) noexcept {
    if (memory != nullptr && allocationcount::counting &&
        *allocationcount::blockOf(memory) != size) {
        ++allocationcount::mismatchedReleases;
    }
    allocationcount::release(memory);
}
#pragma GCC diagnostic pop
