#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

FBO* fakeTarget(int n) {
    return reinterpret_cast<FBO*>(static_cast<uintptr_t>(0x1000 * n));
}

void addInterval(TrackStartStop& track, unsigned int start, unsigned int stop, FBO* target) {
    auto* first = new TrackStartStopKeyFrame(start, TrackKeyFrame::START);
    first->fbo = target;
    track.insertInterval(first, new TrackStartStopKeyFrame(stop, TrackKeyFrame::STOP));
}

void addKey(TrackInterpolate& track, unsigned int row, float value, int how = 0) {
    track.addKeyframe(new TrackKeyFrameInterpolate(row, how, value));
}

std::vector<unsigned int> rowsOf(const std::vector<TrackKeyFrame*>& keyframes) {
    std::vector<unsigned int> rows;
    for (const TrackKeyFrame* keyframe : keyframes) {
        rows.push_back(keyframe->row);
    }
    return rows;
}

} // namespace

TEST(TrackInterpolate, EmptyAndSingleKeyframeTracks) {
    TrackInterpolate track("fade");
    EXPECT_EQ(track.getValue(5000), 0.0f);
    addKey(track, 10, 4.0f);
    EXPECT_EQ(track.getValue(499), 0.0f) << "row 9 lies before the only keyframe";
    EXPECT_EQ(track.getValue(500), 4.0f);
    EXPECT_EQ(track.getValue(100000), 4.0f);
}

TEST(TrackInterpolate, LinearBetweenKeysZeroBeforeAndHeldAfter) {
    TrackInterpolate track("x");
    addKey(track, 20, 1.0f);
    addKey(track, 40, 3.0f);
    EXPECT_EQ(track.getValue(999), 0.0f) << "before the first keyframe the value is 0";
    EXPECT_FLOAT_EQ(track.getValue(1000), 1.0f);
    EXPECT_FLOAT_EQ(track.getValue(1500), 2.0f);
    EXPECT_FLOAT_EQ(track.getValue(1525), 2.05f) << "the fraction uses the fractional row";
    EXPECT_FLOAT_EQ(track.getValue(2000), 3.0f);
    EXPECT_FLOAT_EQ(track.getValue(60000), 3.0f);

    TrackInterpolate fromZero("y");
    addKey(fromZero, 0, 1.0f);
    addKey(fromZero, 20, 3.0f);
    EXPECT_FLOAT_EQ(fromZero.getValue(500), 2.0f);
}

TEST(TrackInterpolate, InterpolationCodesShapeTheCurve) {
    auto valueAtQuarter = [](int how) {
        TrackInterpolate track("t");
        addKey(track, 0, 0.0f, how);
        addKey(track, 20, 1.0f);
        return track.getValue(250);
    };
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::LINEAR), 0.25f);
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::EASE_OUT),
                    static_cast<float>(std::cos(0.75 * M_PI * 0.5)));
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::EASE_IN),
                    static_cast<float>(1.0 - std::cos(0.25 * M_PI * 0.5)));
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::STEP), 0.0f);
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::RAMP), 0.0625f);
    EXPECT_FLOAT_EQ(valueAtQuarter(6), 0.25f) << "unknown codes are linear";
    EXPECT_GT(valueAtQuarter(TrackInterpolate::EASE_OUT), 0.25f);
    EXPECT_LT(valueAtQuarter(TrackInterpolate::EASE_IN), 0.25f);
}

TEST(TrackInterpolate, SmoothIsThreeFSquaredLessTwoFCubed) {
    TrackInterpolate track("s");
    addKey(track, 0, 2.0f, TrackInterpolate::SMOOTH);
    addKey(track, 20, 6.0f);
    // 2 + 4 w at f = 0, 0.25, 0.5 and 1: w = 0, 0.15625, 0.5, 1.
    EXPECT_FLOAT_EQ(track.getValue(0), 2.0f);
    EXPECT_FLOAT_EQ(track.getValue(250), 2.625f);
    EXPECT_FLOAT_EQ(track.getValue(500), 4.0f);
    EXPECT_FLOAT_EQ(track.getValue(1000), 6.0f);
}

TEST(TrackInterpolate, StepHoldsUntilTheNextKeyframeRow) {
    TrackInterpolate track("s");
    addKey(track, 0, 5.0f, TrackInterpolate::STEP);
    addKey(track, 20, 9.0f);
    EXPECT_EQ(track.getValue(999), 5.0f);
    EXPECT_EQ(track.getValue(1000), 9.0f);
}

TEST(TrackInterpolate, ClosestKeyframeLookups) {
    TrackInterpolate single("one");
    addKey(single, 10, 1.0f);
    EXPECT_NE(single.getClosestKeyframe(10), nullptr);
    EXPECT_EQ(single.getClosestKeyframe(11), nullptr);

    TrackInterpolate track("three");
    addKey(track, 10, 1.0f);
    addKey(track, 20, 2.0f);
    addKey(track, 30, 3.0f);
    EXPECT_EQ(track.getClosestKeyframe(5), nullptr);
    EXPECT_EQ(track.getClosestKeyframe(25)->row, 20u);
    EXPECT_EQ(track.getClosestKeyframe(99)->row, 30u);
    EXPECT_EQ(track.getClosestKeyframeUpwards(25)->row, 20u);
    EXPECT_EQ(track.getClosestKeyframeUpwards(30), nullptr) << "nothing lies after row 30";
    EXPECT_EQ(track.getClosestKeyframeUpwards(5), nullptr);
}

TEST(TrackInterpolate, DeleteKeyframeTakesTheOneAtOrBeforeTheRow) {
    TrackInterpolate track("d");
    addKey(track, 10, 1.0f);
    addKey(track, 20, 2.0f);
    track.deleteKeyframe(99);
    EXPECT_EQ(track.size(), 2u) << "behind the last keyframe nothing is deleted";
    track.deleteKeyframe(15);
    EXPECT_FALSE(track.rowExists(10));
    track.deleteKeyframe(20);
    EXPECT_EQ(track.size(), 0u);
    track.deleteKeyframe(0);
}

TEST(TrackInterpolate, RangeIncludesTheKeyframesAroundIt) {
    TrackInterpolate track("r");
    for (unsigned int row : {10u, 20u, 30u, 40u}) {
        addKey(track, row, 0.0f);
    }
    std::vector<TrackKeyFrame*> out;
    track.getKeyFrameRange(15, 30, out);
    EXPECT_EQ(rowsOf(out), (std::vector<unsigned int>{10, 20, 30, 40}));
    out.clear();
    track.getKeyFrameRange(10, 10, out);
    EXPECT_EQ(rowsOf(out), (std::vector<unsigned int>{10, 20}));
    out.clear();
    track.getKeyFrameRange(41, 50, out);
    EXPECT_TRUE(out.empty());
}

TEST(TrackStartStop, IntervalCoversBothEnds) {
    TrackStartStop track(0);
    addInterval(track, 100, 200, fakeTarget(1));
    EXPECT_FALSE(track.isActive(0, 99));
    EXPECT_TRUE(track.isActive(0, 100));
    EXPECT_TRUE(track.isActive(0, 150));
    EXPECT_TRUE(track.isActive(0, 200));
    EXPECT_FALSE(track.isActive(0, 201));
    EXPECT_EQ(track.getStartRow(100), 100u);
    EXPECT_EQ(track.getStartRow(150), 100u);
    EXPECT_EQ(track.getStartRow(200), 0u) << "the stop row reports no start";
    EXPECT_EQ(track.getRenderTarget(99), nullptr);
    EXPECT_EQ(track.getRenderTarget(100), fakeTarget(1));
    EXPECT_EQ(track.getRenderTarget(200), fakeTarget(1));
    EXPECT_EQ(track.getRenderTarget(201), nullptr);
    EXPECT_TRUE(track.insideInterval(150));
    EXPECT_TRUE(track.insideInterval(100));
    EXPECT_FALSE(track.insideInterval(99));
    EXPECT_FALSE(track.insideInterval(300));
    EXPECT_TRUE(track.rowIsStartKeyFrame(100));
    EXPECT_FALSE(track.rowIsStartKeyFrame(200));
    EXPECT_FALSE(TrackStartStop(0).isActive(0, 0));
}

TEST(TrackStartStop, NeighbourQueriesAndRanges) {
    TrackStartStop track(0);
    addInterval(track, 100, 200, nullptr);
    addInterval(track, 300, 400, nullptr);
    EXPECT_EQ(track.nextKeyframe(100), 200);
    EXPECT_EQ(track.nextKeyframe(400), -1);
    EXPECT_EQ(track.prevKeyframe(100), 0xFFFFFFFFu);
    EXPECT_EQ(track.prevKeyframe(250), 200u);
    EXPECT_EQ(TrackStartStop(0).nextKeyframe(0), -1);
    EXPECT_TRUE(track.rangeEmpty(201, 299));
    EXPECT_FALSE(track.rangeEmpty(201, 300));

    std::vector<TrackKeyFrame*> out;
    track.getKeyFrameRange(150, 350, out);
    EXPECT_EQ(rowsOf(out), (std::vector<unsigned int>{100, 200, 300, 400}))
        << "intervals cut by the range are delivered whole";
    out.clear();
    track.fetchKeyFrameVector(out);
    EXPECT_EQ(out.size(), 4u);
}

TEST(TrackStartStop, DeleteIntervalFromItsStartOrInside) {
    TrackStartStop track(0);
    addInterval(track, 100, 200, nullptr);
    track.deleteInterval(50);
    EXPECT_EQ(track.size(), 2u) << "row 50 is before the start, nothing happens";
    track.deleteInterval(150);
    EXPECT_EQ(track.size(), 0u);
    addInterval(track, 100, 200, nullptr);
    track.deleteInterval(100);
    EXPECT_EQ(track.size(), 0u);
}

TEST(TrackStartStop, MoveRowReportsAndRekeys) {
    TrackStartStop track(0);
    addInterval(track, 100, 200, nullptr);
    testing::internal::CaptureStdout();
    track.moveRow(200, 250);
    track.moveRow(999, 1);
    track.moveRow(100, 100);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Moved row from 200 to 250\n");
    ASSERT_NE(track.getKeyframe(250), nullptr);
    EXPECT_EQ(track.getKeyframe(250)->row, 250u);
    EXPECT_TRUE(track.isActive(0, 240));
}

TEST(TrackStartStop, ValidationNamesTheFirstMisplacedKeyframe) {
    TrackStartStop good(0);
    addInterval(good, 1, 2, nullptr);
    EXPECT_TRUE(good.validateKeyframes());
    EXPECT_TRUE(TrackStartStop(0).validateKeyframes());

    TrackStartStop bad(0);
    bad.addKeyframe(new TrackStartStopKeyFrame(10, TrackKeyFrame::START));
    bad.addKeyframe(new TrackStartStopKeyFrame(20, TrackKeyFrame::STOP));
    bad.addKeyframe(new TrackStartStopKeyFrame(30, TrackKeyFrame::STOP));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(bad.validateKeyframes());
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "--> row = 30, row=30, type = 0\n"
              "--> PREVIOUS LINE IS CORRUPT BECAUSE IT'S NOT TAGGED AS A START KEYFRAME!\n");

    TrackStartStop twoStarts(0);
    twoStarts.addKeyframe(new TrackStartStopKeyFrame(10, TrackKeyFrame::START));
    twoStarts.addKeyframe(new TrackStartStopKeyFrame(20, TrackKeyFrame::START));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(twoStarts.validateKeyframes());
    EXPECT_NE(testing::internal::GetCapturedStdout().find("AS A STOP KEYFRAME!"),
              std::string::npos);
}

TEST(TrackGroup, NamedTracksAndLocalTime) {
    TrackGroup group("glow");
    auto* startStop = new TrackStartStop(0);
    addInterval(*startStop, 100, 200, nullptr);
    group.setStartStopTrack(startStop);
    group.addInterpolateTrack(new TrackInterpolate("amount"));
    group.addInterpolateTrack(new TrackInterpolate("amount"));
    EXPECT_EQ(group.getInterpolateTrackCount(), 2);
    EXPECT_EQ(group.getInterpolateTrackByName("amount"), group.getInterpolateTrack(1));
    EXPECT_EQ(group.getInterpolateTrackByName("missing"), nullptr);
    EXPECT_TRUE(group.isActive(0, 150));
    EXPECT_EQ(group.getLocalTime(150, 7600), 2600u);
    EXPECT_EQ(group.getLocalTime(50, 2500), 2500u) << "outside intervals the start is 0";
    EXPECT_EQ(group.getLocalTime(100, 4000), 0u);
}
