#include "TrackSystem.h"
#include "KVTDemosys.h"
#include "RecordingEffect.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class TrackSystemTest : public ::testing::Test {
protected:
    // Adds a group named name with one interval; the system owns the group.
    TrackGroup* addGroup(const std::string& name, int priority, unsigned int start,
                         unsigned int stop, FBO* target = nullptr) {
        auto* startStop = new TrackStartStop(priority);
        auto* first = new TrackStartStopKeyFrame(start, TrackKeyFrame::START);
        first->fbo = target;
        startStop->insertInterval(first, new TrackStartStopKeyFrame(stop, TrackKeyFrame::STOP));
        auto* group = new TrackGroup(name);
        group->setStartStopTrack(startStop);
        effects.push_back(std::make_unique<RecordingEffect>(name, &log));
        group->effect = effects.back().get();
        system.addTrackGroup(group);
        return group;
    }

    std::vector<std::string> order() const {
        std::vector<std::string> names;
        for (int i = 0; i < system.getSortedTrackGroupCount(); ++i) {
            names.push_back(system.getSortedTrackGroup(i)->getName());
        }
        return names;
    }

    std::vector<std::string> log;
    std::vector<std::unique_ptr<RecordingEffect>> effects;
    TrackSystem system;
};

} // namespace

TEST_F(TrackSystemTest, DrawsActiveEffectsInPriorityOrderPassByPass) {
    FBO* target = reinterpret_cast<FBO*>(0x40);
    addGroup("late", 5, 0, 100);
    addGroup("early", 2, 0, 100, target);
    addGroup("idle", 0, 500, 600);
    system.createPrioritySystem();
    system.prioritySanityCheck();
    EXPECT_EQ(order(), (std::vector<std::string>{"idle", "early", "late"}));
    EXPECT_EQ(system.getTrackGroupByName("early")->getStartStopTrack()->priority, 1);
    EXPECT_EQ(system.getTrackGroupByName("late")->getStartStopTrack()->priority, 2);

    system.processSystem(1000, 20, 16);
    EXPECT_EQ(log, (std::vector<std::string>{"pre early", "pre late", "draw early", "draw late",
                                             "post early", "post late"}));
    EXPECT_EQ(effects[1]->lastTarget, target);
    EXPECT_EQ(effects[0]->lastTarget, nullptr);
    EXPECT_EQ(effects[0]->lastFrameTime, 16u);
    EXPECT_TRUE(system.isEffectActive("late"));
    EXPECT_FALSE(system.isEffectActive("idle"));
}

TEST_F(TrackSystemTest, AnIntervalEndsAfterItsStopRow) {
    addGroup("fx", 0, 100, 200);
    system.createPrioritySystem();
    system.processSystem(10000, 200, 0);
    EXPECT_TRUE(system.isEffectActive("fx"));
    system.processSystem(10050, 201, 0);
    EXPECT_FALSE(system.isEffectActive("fx"));
    EXPECT_EQ(log.size(), 3u) << "only the frame of row 200 called the effect";
}

TEST_F(TrackSystemTest, AFrameWithNothingActiveCallsNothing) {
    addGroup("fx", 0, 100, 200);
    system.createPrioritySystem();
    system.processSystem(0, 150, 0);
    system.processSystem(0, 5, 0);
    EXPECT_FALSE(system.isEffectActive("fx"));
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(TrackSystemTest, SelectionSortOrderForEqualPriorities) {
    addGroup("A", 1, 0, 1);
    addGroup("B", 1, 0, 1);
    addGroup("C", 0, 0, 1);
    system.createPrioritySystem();
    EXPECT_EQ(order(), (std::vector<std::string>{"C", "B", "A"}));
}

TEST_F(TrackSystemTest, SwapKeepsPositionsAndPrioritiesConsistent) {
    addGroup("a", 0, 0, 1);
    addGroup("b", 1, 0, 1);
    system.createPrioritySystem();
    system.prioritySanityCheck();
    system.swapTracks(0, 1);
    EXPECT_EQ(order(), (std::vector<std::string>{"b", "a"}));
    testing::internal::CaptureStdout();
    system.printPriority();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Priority 0 = b\nPriority 1 = a\n");
}

TEST_F(TrackSystemTest, LookupsByNameAndIndex) {
    TrackGroup* b = addGroup("b", 0, 0, 1);
    TrackGroup* a = addGroup("a", 0, 0, 1);
    b->addInterpolateTrack(new TrackInterpolate("x"));
    b->addInterpolateTrack(new TrackInterpolate("y"));
    EXPECT_EQ(system.size(), 2);
    EXPECT_EQ(system.getTrackGroup(0), a);
    EXPECT_EQ(system.getTrackGroup(1), b);
    EXPECT_EQ(system.getTrackGroup(2), nullptr);
    EXPECT_EQ(system.getTrackGroup(-3), a);
    EXPECT_EQ(system.getTrackGroupByName("zz"), nullptr);
    EXPECT_EQ(system.size(), 2);
    EXPECT_EQ(system.countAllTracks(), 4);
}

TEST_F(TrackSystemTest, ValidationNamesTheBrokenGroup) {
    addGroup("fine", 0, 0, 10);
    TrackGroup* broken = addGroup("broken", 1, 20, 30);
    broken->getStartStopTrack()->addKeyframe(new TrackStartStopKeyFrame(40, TrackKeyFrame::START));
    broken->getStartStopTrack()->addKeyframe(new TrackStartStopKeyFrame(45, TrackKeyFrame::START));
    system.createPrioritySystem();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(system.validateStartStopTracks());
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.rfind("Validating StartStop track data.\n", 0), 0u);
    EXPECT_NE(out.find("--> StartStop Track : broken has keyframe mismatch\n"), std::string::npos);
    EXPECT_TRUE(system.validateInterpolateTracks());
}

TEST_F(TrackSystemTest, FillTrackMakesValidAlternatingIntervals) {
    TrackStartStop track(0);
    TrackSystem::fillTrack(&track);
    EXPECT_EQ(track.size(), 1000u);
    EXPECT_TRUE(track.validateKeyframes());
    unsigned int previous = 0;
    for (const auto& entry : track.getKeyframes()) {
        EXPECT_GE(entry.first - previous, 1u);
        EXPECT_LE(entry.first - previous, 10u);
        previous = entry.first;
    }
}

TEST(TrackSystemRowRate, ValuesFollowTheRegisteredSystemsRowRate) {
    TrackInterpolate track("v");
    track.addKeyframe(new TrackKeyFrameInterpolate(0, 0, 0.0f));
    track.addKeyframe(new TrackKeyFrameInterpolate(100, 0, 1.0f));
    EXPECT_FLOAT_EQ(track.getValue(2500), 0.5f) << "20 rows a second without a system";
    TrackSystem system;
    system.setRowRate(100);
    KVTDemosys::tracks = &system;
    EXPECT_FLOAT_EQ(track.getValue(500), 0.5f);
    KVTDemosys::tracks = nullptr;
}

TEST(Effect, BaseDrawSaysItShouldNotBeCalled) {
    Effect effect;
    testing::internal::CaptureStdout();
    effect.draw(0, 0, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Fallback draw method! This should never happen!\n");
    std::unique_ptr<Effect> other(effect.getInstance());
    EXPECT_NE(other.get(), &effect);

    TrackInterpolate* amount = nullptr;
    effect.addTrack("amount", amount);
    ASSERT_NE(amount, nullptr);
    EXPECT_EQ(effect.getTrackCount(), 1);
    EXPECT_EQ(effect.getTrackPointer(0), amount);
    EXPECT_EQ(amount->getName(), "amount");
    delete amount;
}
