// Cost of sync-track evaluation and of the per-frame effect scheduling.
#include "DataFBOPool.h"
#include "Effect.h"
#include "FrameTimer.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

// Keyframes every 4 rows, alternating interpolation kinds.
std::unique_ptr<TrackInterpolate> trackWithKeyframes(int count) {
    auto track = std::make_unique<TrackInterpolate>("value");
    for (int i = 0; i < count; ++i) {
        track->addKeyframe(new TrackKeyFrameInterpolate(static_cast<unsigned int>(i * 4), i % 5,
                                                        static_cast<float>(i % 7)));
    }
    return track;
}

void BM_TrackInterpolateGetValue(benchmark::State& state) {
    int keyframes = static_cast<int>(state.range(0));
    auto track = trackWithKeyframes(keyframes);
    unsigned int span = static_cast<unsigned int>(keyframes) * 4 * 50;
    unsigned int time = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(track->getValue(time));
        time = (time + 7919) % span;
    }
}
BENCHMARK(BM_TrackInterpolateGetValue)->Arg(10)->Arg(1000)->Arg(100000);

// An effect that reads three of its parameters each frame, as the production's effects do.
class ReadingEffect : public Effect {
public:
    void registerTracks() override {
        addTrack("a", a);
        addTrack("b", b);
        addTrack("c", c);
    }
    void draw(unsigned int time, unsigned int, FBO*) override {
        benchmark::DoNotOptimize(a->getValue(time) + b->getValue(time) + c->getValue(time));
    }
    TrackInterpolate* a = nullptr;
    TrackInterpolate* b = nullptr;
    TrackInterpolate* c = nullptr;
};

// Nine groups of effects reading three parameters each, intervals every 200 rows.
void fillNineGroups(TrackSystem& system, std::vector<std::unique_ptr<ReadingEffect>>& effects) {
    const int groups = 9;
    for (int g = 0; g < groups; ++g) {
        effects.push_back(std::make_unique<ReadingEffect>());
        ReadingEffect* effect = effects.back().get();
        effect->registerTracks();
        auto* group = new TrackGroup("effect" + std::to_string(g));
        auto* startStop = new TrackStartStop(g);
        for (unsigned int start = 0; start < 3000; start += 200) {
            startStop->insertInterval(new TrackStartStopKeyFrame(start + g * 10, 1),
                                      new TrackStartStopKeyFrame(start + 150, 0));
        }
        group->setStartStopTrack(startStop);
        for (int t = 0; t < effect->getTrackCount(); ++t) {
            TrackInterpolate* track = effect->getTrackPointer(t);
            for (unsigned int row = 0; row < 3000; row += 20) {
                track->addKeyframe(new TrackKeyFrameInterpolate(row, t, row * 0.01f));
            }
            group->addInterpolateTrack(track);
        }
        group->effect = effect;
        system.addTrackGroup(group);
    }
    system.createPrioritySystem();
    system.prioritySanityCheck();
}

void BM_TrackSystemProcessSystem(benchmark::State& state) {
    std::vector<std::unique_ptr<ReadingEffect>> effects;
    TrackSystem system;
    fillNineGroups(system, effects);
    unsigned int frame = 0;
    for (auto _ : state) {
        unsigned int time = (frame * 16) % 150850;
        system.processSystem(time, time / 50, 16);
        ++frame;
    }
}
BENCHMARK(BM_TrackSystemProcessSystem);

// The engine's own work in one frame of the main loop, apart from what effects draw and the
// OpenGL calls: reading the clock, scheduling nine groups, the framebuffer pool's clear pass.
void BM_EngineFrameBookkeeping(benchmark::State& state) {
    std::vector<std::unique_ptr<ReadingEffect>> effects;
    TrackSystem system;
    fillNineGroups(system, effects);
    FrameTimer timer(20, 1000.0 / 60.0);
    timer.init();
    timer.play();
    DataFBOPool framebuffers;
    for (auto _ : state) {
        timer.updateSystem();
        unsigned int time = timer.getTime();
        unsigned int row = timer.getRow();
        unsigned int frameTime = timer.updateFrameTime(time);
        system.processSystem(time, row, frameTime);
        framebuffers.clearFlaggedFBOs();
        timer.nextFrame();
        if (time > 150000) {
            timer.setTime(0);
        }
    }
}
BENCHMARK(BM_EngineFrameBookkeeping);

} // namespace
