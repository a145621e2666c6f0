#include "FrameTimer.h"

#include <gtest/gtest.h>

TEST(FrameTimer, TimeFollowsFramesNotTheWallClock) {
    FrameTimer timer(20, 1000.0 / 60.0);
    ASSERT_TRUE(timer.init());
    timer.setTime(5000);
    timer.play();
    EXPECT_EQ(timer.getTime(), 5000u);
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 0u);
    for (int i = 0; i < 60; ++i) {
        timer.nextFrame();
    }
    EXPECT_EQ(timer.getTime(), 6000u) << "sixty frames at 60 a second are one second";
    EXPECT_EQ(timer.getRow(), 120u);
    timer.nextFrame();
    EXPECT_EQ(timer.getTime(), 6017u) << "steps are rounded from the exact frame count";
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 1017u);
}

TEST(FrameTimer, JumpsShowOneFrameStepOfMovement) {
    FrameTimer timer(20, 40.0);
    timer.init();
    timer.play();
    timer.jumpTo(2000);
    EXPECT_EQ(timer.getTime(), 2000u);
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 40u);
    timer.pause();
    EXPECT_EQ(timer.updateFrameTime(3000), 0u);
}
