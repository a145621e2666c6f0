// Cost of sync-track evaluation and of the per-frame effect scheduling.
#include "Effect.h"
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

void BM_TrackSystemProcessSystem(benchmark::State& state) {
    const int groups = 9;
    std::vector<std::unique_ptr<ReadingEffect>> effects;
    TrackSystem system;
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
    unsigned int frame = 0;
    for (auto _ : state) {
        unsigned int time = (frame * 16) % 150850;
        system.processSystem(time, time / 50, 16);
        ++frame;
    }
}
BENCHMARK(BM_TrackSystemProcessSystem);

} // namespace
