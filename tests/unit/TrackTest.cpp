#include "KVTDemosys.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>

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

// The evaluation as the keyframe map gives it directly: the reference for the track's own.
float mapValue(const Track::KeyframeMap& keys, unsigned int rowRate, unsigned int timeMs) {
    const double pi = 3.141592653589793;
    if (keys.empty()) {
        return 0.0f;
    }
    const unsigned int row = rowRate * timeMs / 1000;
    auto value = [](const TrackKeyFrame* key) {
        return static_cast<const TrackKeyFrameInterpolate*>(key)->value;
    };
    if (keys.size() == 1) {
        return row >= keys.begin()->first ? value(keys.begin()->second) : 0.0f;
    }
    auto after = keys.upper_bound(row);
    if (after == keys.begin()) {
        return 0.0f;
    }
    if (after == keys.end()) {
        return value(keys.rbegin()->second);
    }
    const auto& a = *static_cast<const TrackKeyFrameInterpolate*>(std::prev(after)->second);
    const auto& b = *static_cast<const TrackKeyFrameInterpolate*>(after->second);
    const float p = timeMs / (1000.0f / rowRate);
    const float f =
        (p - static_cast<float>(a.row)) / (static_cast<float>(b.row) - static_cast<float>(a.row));
    switch (a.interpolation) {
    case 1:
        return static_cast<float>(a.value + (b.value - a.value) * std::cos((1.0 - f) * pi * 0.5));
    case 2:
        return static_cast<float>(a.value + (b.value - a.value) * (1.0 - std::cos(f * pi * 0.5)));
    case 3:
        return a.value;
    case 4:
        return a.value + (b.value - a.value) * (f * f);
    case 5:
        return a.value + (b.value - a.value) * (f * f * (3.0f - 2.0f * f));
    default:
        return a.value + (b.value - a.value) * f;
    }
}

// Random tracks and random edits, with the clock times that probe them.
class RandomTracks {
public:
    explicit RandomTracks(unsigned int seed) : random(seed) {}

    unsigned int below(unsigned int n) { return static_cast<unsigned int>(random() % n); }

    // Rows packed densely, spread sparsely, or up by the last row the clock reaches (the
    // row rate times the time wraps around 32 bits before it is divided by 1000).
    unsigned int row() {
        switch (layout) {
        case 0:
            return below(60);
        case 1:
            return below(4000000);
        default:
            return 0xFFFFFFFFu / 1000 - below(2000);
        }
    }

    // Now and then a value that arithmetic treats apart: a zero of either sign or an infinity.
    float value() {
        const float infinity = std::numeric_limits<float>::infinity();
        const float special[] = {0.0f, -0.0f, infinity, -infinity};
        if (below(16) == 0) {
            return special[below(4)];
        }
        return std::uniform_real_distribution<float>(-1000.0f, 1000.0f)(random);
    }

    void add(TrackInterpolate& track) {
        const int interpolation = static_cast<int>(below(11)) - 2;
        track.addKeyframe(new TrackKeyFrameInterpolate(row(), interpolation, value()));
    }

    void fill(TrackInterpolate& track) {
        layout = below(3);
        const unsigned int count = below(4) == 0 ? below(3) : below(below(8) == 0 ? 3000 : 40);
        for (unsigned int i = 0; i < count; ++i) {
            add(track);
        }
    }

    // A row that holds a key, when there is one.
    unsigned int keyRow(const TrackInterpolate& track) {
        if (track.size() == 0) {
            return row();
        }
        return std::next(track.getKeyframes().begin(), below(track.size()))->first;
    }

    void edit(TrackInterpolate& track) {
        switch (below(7)) {
        case 0:
            add(track);
            break;
        case 1:
            track.addKeyframe(new TrackKeyFrameInterpolate(keyRow(track), 0, 5.0f));
            break;
        case 2:
            track.deleteKeyframe(below(2) == 0 ? keyRow(track) : row());
            break;
        case 3:
            track.moveRow(keyRow(track), below(2) == 0 ? keyRow(track) : row());
            break;
        case 4:
            track.deleteInterval(row());
            break;
        case 5:
            track.insertInterval(new TrackKeyFrameInterpolate(row(), 3, 1.0f),
                                 new TrackKeyFrameInterpolate(row(), 2, -1.0f));
            break;
        default:
            if (auto* key =
                    static_cast<TrackKeyFrameInterpolate*>(track.getKeyframe(keyRow(track)))) {
                key->value = -key->value;
                key->interpolation = static_cast<int>(below(6));
                track.keyframesChanged();
            }
        }
    }

    // Clock times around the keys: on and beside their rows, before the first and after the
    // last, anywhere in the clock's range, and runs of frames forward and back.
    std::vector<unsigned int> times(const TrackInterpolate& track, unsigned int rowRate) {
        std::vector<unsigned int> out;
        auto timeOfRow = [rowRate](unsigned int row) {
            return static_cast<unsigned int>(static_cast<unsigned long long>(row) * 1000 /
                                             (rowRate == 0 ? 1 : rowRate));
        };
        for (int i = 0; i < 12; ++i) {
            const unsigned int near = timeOfRow(keyRow(track)) + below(200) - 100;
            out.push_back(near);
            out.push_back(static_cast<unsigned int>(random()));
            out.push_back(timeOfRow(row()));
        }
        if (track.size() != 0) {
            out.push_back(timeOfRow(track.getKeyframes().begin()->first) - 1);
            out.push_back(timeOfRow(track.getKeyframes().rbegin()->first) + 1);
        }
        unsigned int time = timeOfRow(keyRow(track)) - below(3000);
        const int step = below(4) == 0 ? -17 : 17;
        for (int frame = 0; frame < 60; ++frame) {
            out.push_back(time += static_cast<unsigned int>(step - below(2)));
        }
        return out;
    }

    unsigned int layout = 0;

private:
    std::mt19937 random;
};

testing::AssertionResult sameBits(float value, float expected, unsigned int timeMs,
                                  unsigned int rowRate, std::size_t keys) {
    if (std::memcmp(&value, &expected, sizeof(float)) == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "at " << timeMs << " ms, " << rowRate << " rows/s, "
                                       << keys << " keys: " << value << " instead of " << expected;
}

} // namespace

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
    EXPECT_FLOAT_EQ(valueAtQuarter(TrackInterpolate::SMOOTH), 0.15625f) << "3f² - 2f³";
    EXPECT_FLOAT_EQ(valueAtQuarter(6), 0.25f) << "unknown codes are linear";
}

// Every value the track gives, through any edit and at any row rate, has the bits the map of
// keyframes gives by the plain evaluation.
TEST(TrackInterpolate, ValuesMatchTheMapEvaluationThroughRandomEdits) {
    struct RegisteredSystem : TrackSystem {
        RegisteredSystem() { KVTDemosys::tracks = this; }
        ~RegisteredSystem() { KVTDemosys::tracks = nullptr; }
    } system;
    RandomTracks random(16);
    std::size_t compared = 0;
    for (int trial = 0; trial < 300; ++trial) {
        TrackInterpolate track("random");
        random.fill(track);
        for (int round = 0; round < 12; ++round) {
            const unsigned int rowRate = random.below(4) != 0 ? 20 : random.below(200);
            system.setRowRate(static_cast<int>(rowRate));
            for (unsigned int time : random.times(track, rowRate)) {
                ASSERT_TRUE(sameBits(track.getValue(time),
                                     mapValue(track.getKeyframes(), rowRate, time), time, rowRate,
                                     track.size()))
                    << "trial " << trial << ", round " << round;
                ++compared;
            }
            for (unsigned int edits = random.below(4); edits > 0; --edits) {
                random.edit(track);
            }
        }
    }
    EXPECT_GT(compared, 300000u);
}

// A track large enough that a search crosses many cache lines, in dense runs and wide gaps,
// gives the map evaluation's bits on and around every key's row, walked in order and at random.
TEST(TrackInterpolate, LargeTracksMatchTheMapEvaluation) {
    std::mt19937 random(5);
    TrackInterpolate track("large");
    unsigned int row = 3;
    for (int i = 0; i < 70000; ++i) {
        addKey(track, row, static_cast<float>(random() % 2000) - 1000.0f,
               static_cast<int>(random() % 6));
        row += random() % 8 == 0 ? 1 + random() % 400 : 1;
    }
    const unsigned int rowRate = TrackSystem::DefaultRowRate;
    const unsigned int msPerRow = 1000 / rowRate;
    std::vector<unsigned int> times;
    for (const auto& key : track.getKeyframes()) {
        const unsigned int keyTime = key.first * msPerRow;
        times.insert(times.end(), {keyTime - 1, keyTime, keyTime + msPerRow / 2});
    }
    for (int i = 0; i < 20000; ++i) {
        times.push_back(static_cast<unsigned int>(random() % ((row + 100) * msPerRow)));
    }
    for (unsigned int time : times) {
        ASSERT_TRUE(sameBits(track.getValue(time), mapValue(track.getKeyframes(), rowRate, time),
                             time, rowRate, track.size()));
    }
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
