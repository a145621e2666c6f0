// Counts heap allocations made while evaluating a track: evaluation runs every frame for
// every parameter and must never allocate. Also what tracks and the frame loop allocate and
// release, and how the evaluation index's allocator places its storage.
#include "CacheLineAllocator.h"
#include "Effect.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using allocationcount::allocations;
using allocationcount::counting;
using allocationcount::mismatchedReleases;
using allocationcount::releases;

namespace {

void startCounting() {
    allocations = 0;
    releases = 0;
    mismatchedReleases = 0;
    counting = true;
}

// Reads its parameter and asks whether its neighbour runs, as the production's effects do.
class ReadingEffect : public Effect {
public:
    ReadingEffect(const TrackSystem& tracks, std::string neighbour)
        : system(tracks), other(std::move(neighbour)) {}
    void registerTracks() override { addTrack("amount", amount); }
    void draw(unsigned int time, unsigned int, FBO*) override {
        sum += amount->getValue(time);
        neighbourRuns += system.isEffectActive(other) ? 1 : 0;
        ++draws;
    }

    const TrackSystem& system;
    std::string other;
    TrackInterpolate* amount = nullptr;
    float sum = 0.0f;
    int neighbourRuns = 0;
    int draws = 0;
};

} // namespace

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

// Every keyframe, whether deleted by an edit or with its track, is released whole, as the
// type it was made as, and with it the render target's name a start keyframe holds.
TEST(Allocation, TracksReleaseTheirKeyframesAsTheTypeTheyStore) {
    const std::string target(40, 't'); // too long to be kept inside the string
    startCounting();
    {
        TrackStartStop startStop(0);
        for (unsigned int row = 0; row < 80; row += 8) {
            auto* start = new TrackStartStopKeyFrame(row, TrackKeyFrame::START);
            start->target = target;
            startStop.insertInterval(start, new TrackStartStopKeyFrame(row + 4, 0));
        }
        startStop.addKeyframe(new TrackStartStopKeyFrame(8, TrackKeyFrame::START));
        startStop.deleteInterval(18);
        startStop.moveRow(32, 36);

        TrackInterpolate values("amount");
        for (unsigned int row = 0; row < 40; ++row) {
            values.addKeyframe(new TrackKeyFrameInterpolate(row, 0, 1.0f));
        }
        values.addKeyframe(new TrackKeyFrameInterpolate(7, 3, 2.0f));
        values.deleteKeyframe(12);
        values.moveRow(20, 21);
        EXPECT_EQ(values.getValue(400), 1.0f);
    }
    counting = false;
    EXPECT_EQ(mismatchedReleases.load(), 0) << "a keyframe was deleted as another type";
    EXPECT_EQ(releases.load(), allocations.load());
    EXPECT_GT(allocations.load(), 60);
}

// Fifty groups, each drawing in intervals and reading its parameter, scheduled frame by frame
// through their intervals' starts and ends: only the first frame may allocate.
TEST(Allocation, SchedulingAllocatesNothingAfterTheFirstFrame) {
    const int groups = 50;
    TrackSystem system;
    std::vector<std::unique_ptr<ReadingEffect>> effects;
    for (int g = 0; g < groups; ++g) {
        const std::string name = "a_group_with_a_long_name_" + std::to_string(g);
        effects.push_back(std::make_unique<ReadingEffect>(
            system, "a_group_with_a_long_name_" + std::to_string((g + 1) % groups)));
        ReadingEffect& effect = *effects.back();
        effect.registerTracks();
        auto* group = new TrackGroup(name);
        auto* startStop = new TrackStartStop(g);
        for (unsigned int start = g; start < 400; start += 50 + g) {
            startStop->insertInterval(new TrackStartStopKeyFrame(start, TrackKeyFrame::START),
                                      new TrackStartStopKeyFrame(start + 20 + g, 0));
        }
        group->setStartStopTrack(startStop);
        for (unsigned int row = 0; row < 400; row += 7) {
            effect.amount->addKeyframe(new TrackKeyFrameInterpolate(row, g % 6, row * 0.5f));
        }
        group->addInterpolateTrack(effect.amount);
        group->effect = &effect;
        system.addTrackGroup(group);
    }
    system.createPrioritySystem();
    system.prioritySanityCheck();

    startCounting();
    system.processSystem(0, 0, 16);
    allocations = 0;
    for (unsigned int frame = 1; frame < 400; ++frame) {
        system.processSystem(frame * 50, frame, 16);
    }
    counting = false;
    EXPECT_EQ(allocations.load(), 0);

    int draws = 0;
    int neighbourRuns = 0;
    float sum = 0.0f;
    for (const auto& effect : effects) {
        draws += effect->draws;
        neighbourRuns += effect->neighbourRuns;
        sum += effect->sum;
    }
    EXPECT_GT(draws, 400 * groups / 4) << "the frames must draw many effects";
    EXPECT_GT(neighbourRuns, 0);
    EXPECT_GT(sum, 0.0f);
    allocations = 0;
    counting = true;
    auto probe = std::make_unique<int>(1);
    counting = false;
    EXPECT_EQ(allocations.load(), 1) << "the counter must see allocations when they happen";
}

// Wherever the heap puts an allocation, the storage starts on a cache line, holds the whole
// count (an overrun would spoil the next block's size header, which the release reads), and
// the release frees what was allocated.
TEST(CacheLineAllocator, StorageStartsOnALineAndHoldsTheWholeCount) {
    struct Element {
        char bytes[24];
    };
    std::vector<std::unique_ptr<char[]>> shifts;
    shifts.reserve(40);
    CacheLineAllocator<Element> allocator;
    startCounting();
    for (std::size_t count = 1; count < 40; ++count) {
        shifts.push_back(std::make_unique<char[]>(count * 8)); // moves the next block's start
        Element* storage = allocator.allocate(count);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(storage) % 64, 0u) << count << " elements";
        std::memset(storage, 0xAB, count * sizeof(Element));
        allocator.deallocate(storage, count);
    }
    shifts.clear();
    counting = false;
    EXPECT_EQ(allocations.load(), releases.load());
}
