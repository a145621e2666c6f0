// Cost of sync-track evaluation, beside a plain sorted array searched by bisection, and of the
// per-frame effect scheduling.
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

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

enum Order { PLAYBACK, RANDOM };
enum Codes { LINEAR_ONLY, MIXED };

struct Key {
    unsigned int row;
    float value;
    int interpolation;
};

// Keys 1 to 4 rows apart from row 20 on; all linear, or cycling through the codes 0 to 4.
std::vector<Key> makeKeys(int count, Codes codes) {
    std::mt19937 random(7);
    std::vector<Key> keys;
    unsigned int row = 20;
    for (int i = 0; i < count; ++i) {
        const int interpolation = codes == MIXED ? i % 5 : TrackInterpolate::LINEAR;
        keys.push_back({row, static_cast<float>(random() % 1000) * 0.01f, interpolation});
        row += 1 + random() % 4;
    }
    return keys;
}

std::unique_ptr<TrackInterpolate> trackOf(const std::vector<Key>& keys) {
    auto track = std::make_unique<TrackInterpolate>("value");
    for (const Key& key : keys) {
        track->addKeyframe(new TrackKeyFrameInterpolate(key.row, key.interpolation, key.value));
    }
    return track;
}

// From the clock's start, before the first key, to two seconds after the last key.
unsigned int spanMs(const std::vector<Key>& keys) {
    return keys.back().row / TrackSystem::DefaultRowRate * 1000 + 2000;
}

// Playback: 60 frames a second (17, 17 and 16 ms) through the whole span, then again.
// Random: uniformly anywhere in the span.
std::vector<unsigned int> queryTimes(Order order, unsigned int span) {
    std::vector<unsigned int> times(1 << 16);
    std::mt19937 random(11);
    unsigned int time = 0;
    for (std::size_t i = 0; i < times.size(); ++i) {
        times[i] = order == RANDOM ? random() % span : time;
        time = (time + (i % 3 == 2 ? 16 : 17)) % span;
    }
    return times;
}

// Steps through the query times round and round. Its members are copies that the compiler
// keeps in registers, where the vector's would be read again after every DoNotOptimize: the
// loop should add as little as it can to the look-up it measures.
struct QueryLoop {
    explicit QueryLoop(const std::vector<unsigned int>& times)
        : time(times.data()), last(times.size() - 1) {}
    std::size_t after(std::size_t next) const { return (next + 1) & last; }
    const unsigned int* const time;
    const std::size_t last; // the count is a power of two
};

float shaped(int interpolation, float a, float b, float f) {
    const double pi = 3.141592653589793;
    switch (interpolation) {
    case TrackInterpolate::EASE_OUT:
        return static_cast<float>(a + (b - a) * std::cos((1.0 - f) * pi * 0.5));
    case TrackInterpolate::EASE_IN:
        return static_cast<float>(a + (b - a) * (1.0 - std::cos(f * pi * 0.5)));
    case TrackInterpolate::STEP:
        return a;
    case TrackInterpolate::RAMP:
        return a + (b - a) * (f * f);
    default:
        return a + (b - a) * f;
    }
}

// The baseline: the same evaluation over one array of keys searched with std::upper_bound.
// The compiler may inline it, as it inlines the common path of the track's getValue.
// Its array is given as two pointers, which the loop keeps in registers.
float baselineValue(const Key* first, const Key* end, unsigned int rowRate, unsigned int timeMs) {
    const unsigned int row = rowRate * timeMs / 1000;
    const Key* after = std::upper_bound(first, end, row,
                                        [](unsigned int r, const Key& key) { return r < key.row; });
    if (after == first) {
        return 0.0f;
    }
    if (after == end) {
        return end[-1].value;
    }
    const Key& a = after[-1];
    const Key& b = after[0];
    const float fractionalRow = timeMs / (1000.0f / rowRate);
    const float f = (fractionalRow - static_cast<float>(a.row)) /
                    (static_cast<float>(b.row) - static_cast<float>(a.row));
    return shaped(a.interpolation, a.value, b.value, f);
}

void labelOrder(benchmark::State& state, Order order) {
    state.SetLabel(order == RANDOM ? "random" : "playback");
    state.SetItemsProcessed(state.iterations());
}

void BM_TrackValue(benchmark::State& state) {
    const auto order = static_cast<Order>(state.range(1));
    const std::vector<Key> keys =
        makeKeys(static_cast<int>(state.range(0)), static_cast<Codes>(state.range(2)));
    const auto track = trackOf(keys);
    const std::vector<unsigned int> times = queryTimes(order, spanMs(keys));
    // The first evaluation after loading builds the index, which is not a look-up.
    benchmark::DoNotOptimize(track->getValue(0));
    const TrackInterpolate& value = *track;
    const QueryLoop loop(times);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value.getValue(loop.time[next]));
        next = loop.after(next);
    }
    labelOrder(state, order);
}

void BM_BaselineValue(benchmark::State& state) {
    const auto order = static_cast<Order>(state.range(1));
    const std::vector<Key> keys =
        makeKeys(static_cast<int>(state.range(0)), static_cast<Codes>(state.range(2)));
    const std::vector<unsigned int> times = queryTimes(order, spanMs(keys));
    const unsigned int rowRate = TrackSystem::globalRowRate();
    const Key* const first = keys.data();
    const Key* const end = first + keys.size();
    const QueryLoop loop(times);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(baselineValue(first, end, rowRate, loop.time[next]));
        next = loop.after(next);
    }
    labelOrder(state, order);
}

// Keys, order, codes: every size in both orders with linear keys, and one size with every
// code, where the cosine of the easing codes adds the same to both.
void evaluationArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"keys", "order", "codes"});
    for (int keys : {16, 1000, 100000, 1000000}) {
        for (Order order : {PLAYBACK, RANDOM}) {
            benchmark->Args({keys, order, LINEAR_ONLY});
        }
    }
    for (Order order : {PLAYBACK, RANDOM}) {
        benchmark->Args({1000, order, MIXED});
    }
}
BENCHMARK(BM_TrackValue)->Apply(evaluationArguments);
BENCHMARK(BM_BaselineValue)->Apply(evaluationArguments);

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

// Groups of effects reading three parameters each, with intervals of 150 rows every 200 rows
// at staggered starts, so that about three in four groups draw in any frame.
void fillGroups(TrackSystem& system, std::vector<std::unique_ptr<ReadingEffect>>& effects,
                int groups) {
    for (int g = 0; g < groups; ++g) {
        effects.push_back(std::make_unique<ReadingEffect>());
        ReadingEffect* effect = effects.back().get();
        effect->registerTracks();
        auto* group = new TrackGroup("effect" + std::to_string(g));
        auto* startStop = new TrackStartStop(g);
        const unsigned int offset = static_cast<unsigned int>(g * 10 % 50);
        for (unsigned int start = 0; start < 3000; start += 200) {
            startStop->insertInterval(new TrackStartStopKeyFrame(start + offset, 1),
                                      new TrackStartStopKeyFrame(start + offset + 150, 0));
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
    fillGroups(system, effects, static_cast<int>(state.range(0)));
    // The first frame builds every track's evaluation index, which is part of loading.
    system.processSystem(0, 0, 16);
    unsigned int frame = 0;
    for (auto _ : state) {
        unsigned int time = (frame * 16) % 150000;
        system.processSystem(time, time / 50, 16);
        ++frame;
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_TrackSystemProcessSystem)
    ->ArgName("groups")
    ->Arg(9)
    ->Arg(500)
    ->Arg(2000)
    ->Complexity(benchmark::oN);

// The engine's own work in one frame of the main loop, apart from what effects draw and the
// OpenGL calls: reading the clock, scheduling nine groups, the framebuffer pool's clear pass.
void BM_EngineFrameBookkeeping(benchmark::State& state) {
    std::vector<std::unique_ptr<ReadingEffect>> effects;
    TrackSystem system;
    fillGroups(system, effects, 9);
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
