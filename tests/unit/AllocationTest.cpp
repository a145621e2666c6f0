// Counts heap allocations made while evaluating a track: evaluation runs every frame for
// every parameter and must never allocate.
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<bool> counting{false};
std::atomic<long> allocations{0};
} // namespace

void* operator new(std::size_t size) {
    if (counting) {
        ++allocations;
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

TEST(Allocation, GetValueNeverAllocates) {
    TrackInterpolate track("value");
    for (unsigned int row = 0; row < 1000; ++row) {
        track.addKeyframe(new TrackKeyFrameInterpolate(row * 3, row % 6, row * 0.5f));
    }
    float sum = 0.0f;
    counting = true;
    for (unsigned int time = 0; time < 200000; time += 37) {
        sum += track.getValue(time);
    }
    counting = false;
    EXPECT_EQ(allocations.load(), 0);
    EXPECT_GT(sum, 0.0f);

    counting = true;
    track.addKeyframe(new TrackKeyFrameInterpolate(99999, 0, 1.0f));
    counting = false;
    EXPECT_GE(allocations.load(), 1) << "the counter must see allocations when they happen";
}
