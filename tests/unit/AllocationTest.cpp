// Counts heap allocations made while evaluating a track: evaluation runs every frame for
// every parameter and must never allocate.
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

using allocationcount::allocations;
using allocationcount::counting;

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
