#include "KVTAnimTimer.h"
#include "KVTTime.h"
#include "Timer.h"

#include <gtest/gtest.h>

TEST(KVTTime, ParsesMinutesSecondsAndMillisecondCounts) {
    KVTTime end("02:30:850");
    EXPECT_TRUE(end.isValid());
    EXPECT_EQ(end.getTicks(), 150850u);
    EXPECT_EQ(KVTTime("00:00:5").getTicks(), 5u);
    EXPECT_EQ(KVTTime("99:00:00").getTicks(), 99u * 60000u);
    EXPECT_EQ(KVTTime("00:00:1000").getTicks(), 1000u);
    KVTTime unnormalised("00:75:2000");
    EXPECT_TRUE(unnormalised.isValid());
    EXPECT_EQ(unnormalised.getSeconds(), 75u);
    EXPECT_EQ(unnormalised.getTicks(), 77000u);
}

TEST(KVTTime, MalformedTextLeavesAnInvalidZeroValue) {
    for (const char* text : {"1:2", "a:00:00", "1:2:3:4", "", "00:+1:00", "00: 1:00"}) {
        KVTTime time(12, 3, 4);
        time.setTimeAsString(text);
        EXPECT_FALSE(time.isValid()) << text;
        EXPECT_EQ(time.getTicks(), 0u) << text;
        EXPECT_EQ(time.getMinutes() + time.getSeconds() + time.getMilliseconds(), 0u) << text;
    }
    KVTTime again("a:0:0");
    again.setTimeAsString("00:01:00");
    EXPECT_TRUE(again.isValid());
    EXPECT_EQ(again.getTicks(), 1000u);
}

TEST(KVTTime, SettersKeepTicksInStepAndCarryAsDocumented) {
    KVTTime time;
    time.setMilliseconds(1000);
    EXPECT_EQ(time.getSeconds(), 1u);
    EXPECT_EQ(time.getMilliseconds(), 0u);
    time.setMilliseconds(61500);
    EXPECT_EQ(time.getSeconds(), 62u) << "milliseconds carry into seconds only";
    EXPECT_EQ(time.getMinutes(), 0u);
    EXPECT_EQ(time.getTicks(), 62500u);
    time.setSeconds(125);
    EXPECT_EQ(time.getMinutes(), 2u);
    EXPECT_EQ(time.getSeconds(), 5u);
    EXPECT_EQ(time.getTicks(), 125500u);
    time.setMinutes(1);
    EXPECT_EQ(time.getTicks(), 65500u);
    EXPECT_EQ(time.time2uint(9, 9, 9), 65500u);

    KVTTime fromTicks(150850u);
    EXPECT_EQ(fromTicks.getMinutes(), 2u);
    EXPECT_EQ(fromTicks.getSeconds(), 30u);
    EXPECT_EQ(fromTicks.getMilliseconds(), 850u);
    EXPECT_DOUBLE_EQ(fromTicks.getTicksAsDouble(), 150850.0);
}

TEST(KVTTime, TextFormPadsWithoutTruncating) {
    EXPECT_EQ(KVTTime(150850u).toString(), "(0000150850)-[02:30:850]");
    EXPECT_EQ(KVTTime(123, 4, 5).toString(), "(0007384005)-[123:04:005]");
    EXPECT_EQ(KVTTime(150850u).toStringMinSecMS(), "00:00:000");
    EXPECT_EQ(KVTTime::forceStringLength("12345", 3), "12345");
}

namespace {
unsigned int fakeNow = 0;
unsigned int fakeTicks() {
    return fakeNow;
}

class TimerTest : public ::testing::Test {
protected:
    void SetUp() override {
        fakeNow = 5000;
        Timer::setTickSource(fakeTicks);
    }
    void TearDown() override { Timer::setTickSource(nullptr); }
};
} // namespace

TEST_F(TimerTest, StandsStillUntilPlayAndThenFollowsTheTicks) {
    Timer timer(20);
    ASSERT_TRUE(timer.init());
    EXPECT_TRUE(timer.isPaused());
    EXPECT_EQ(timer.getEndTime(), 600000u);
    EXPECT_EQ(timer.getEndRow(), 12000u);
    fakeNow += 700;
    EXPECT_EQ(timer.getTime(), 0u);
    timer.play();
    fakeNow += 250;
    EXPECT_EQ(timer.getTime(), 250u);
    timer.pause();
    fakeNow += 1000;
    EXPECT_EQ(timer.getTime(), 250u);
    timer.play();
    fakeNow += 10;
    EXPECT_EQ(timer.getTime(), 260u);
}

TEST_F(TimerTest, SetTimeWhilePausedTakesEffectAtOnce) {
    Timer timer(20);
    timer.init();
    timer.setTime(42000);
    EXPECT_EQ(timer.getTime(), 42000u);
    EXPECT_EQ(timer.updateFrameTime(43000), 0u) << "no frame step while paused";
    timer.play();
    fakeNow += 40;
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 40u)
        << "the paused call must not have moved the last frame time";
    fakeNow += 16;
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 16u);
}

TEST_F(TimerTest, RowsUseIntegerArithmetic) {
    Timer timer(100);
    timer.init();
    timer.setTime(1234);
    EXPECT_EQ(timer.getRow(), 123u);
    EXPECT_EQ(timer.getRowTime(), 1230u);
    timer.setRow(7);
    EXPECT_EQ(timer.getTime(), 70u);
}

TEST_F(TimerTest, WithoutMusicTheSpectrumIsPositiveNoise) {
    Timer timer(20);
    float spectrum[64];
    timer.GetDirectSoundData(Timer::LEFT, 64, spectrum);
    for (float value : spectrum) {
        EXPECT_GT(value, 0.0f);
    }
    EXPECT_EQ(timer.getMessage(), "");
}

TEST(KVTAnimTimer, StoresTimeAndType) {
    KVTAnimTimer timer;
    EXPECT_EQ(timer.getTime(), 0.0f);
    timer.updateTime(2.5f);
    timer.setType(3);
    EXPECT_EQ(timer.getTime(), 2.5f);
    EXPECT_EQ(timer.getType(), 3u);
}
