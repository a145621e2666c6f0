// Replaces the global allocation operators with ones that count the heap allocations the
// calling thread makes while `allocationcount::counting` is set (other threads, such as the
// software renderer's workers, are left out). Include it in exactly one source file of a
// test binary.
#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

namespace allocationcount {
inline thread_local bool counting = false;
inline std::atomic<long> allocations{0};
} // namespace allocationcount

void* operator new(std::size_t size) {
    if (allocationcount::counting) {
        ++allocationcount::allocations;
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

// The replacement pair allocates with malloc, so free is the matching release; GCC cannot
// see that pairing across the replaced operators.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#pragma GCC diagnostic pop
