// One frame of each particle creature at its fullest (every jellyfish, every body of the
// chain, pulsing and drifting on moving tracks), with the production's sprite shader and
// picture, into a 640 x 360 target and into the 1024 x 1024 "glow_pre" of quality 2. The
// clock steps 40 ms per frame, as at 25 frames a second, so the tracks and the trails are
// evaluated as in the show. Every figure ends with glFinish, so the software renderer's
// deferred work is counted; CPU is the time of all the process's threads.
#include "BenchResources.h"
#include "FBO.h"
#include "ParticleCreatures2Effect.h"
#include "ParticleCreaturesEffect.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

const unsigned int FRAME_MS = 40;
const unsigned int LOOP_MS = 16000;

// The sprite shader and picture from the built program's folder, the tracks and the target.
class Stage {
public:
    Stage(int width, int height)
        : shader(resources.shader("particlesprite")), sprite(resources.picture("Particle.png")),
          target(resources.framebuffer(width, height)) {}

    // A linear track through (seconds, value) keys.
    void keys(TrackInterpolate*& slot, std::initializer_list<std::pair<float, float>> points) {
        tracks.push_back(std::make_unique<TrackInterpolate>("value"));
        for (const auto& [seconds, value] : points) {
            tracks.back()->addKeyframe(new TrackKeyFrameInterpolate(
                static_cast<unsigned int>(seconds * 20.0f), TrackInterpolate::LINEAR, value));
        }
        slot = tracks.back().get();
    }

    BenchResources resources;
    Shader* shader;
    Texture* sprite;
    FBO* target;

private:
    std::vector<std::unique_ptr<TrackInterpolate>> tracks;
};

void drawFrames(benchmark::State& state, Stage& stage, Effect& effect) {
    if (!stage.resources.error().empty()) {
        state.SkipWithError(stage.resources.error().c_str());
        return;
    }
    unsigned int time = 0;
    effect.draw(time, FRAME_MS, stage.target);
    glFinish();
    for (auto _ : state) {
        time = (time + FRAME_MS) % LOOP_MS;
        effect.draw(time, FRAME_MS, stage.target);
        glFinish();
    }
    FBO::bind(nullptr);
}

void JellyfishFrame(benchmark::State& state) {
    Stage stage(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    ParticleCreaturesEffect jellyfish;
    jellyfish.shader = stage.shader;
    jellyfish.sprite = stage.sprite;
    stage.keys(jellyfish.count, {{0.0f, 4.0f}});
    stage.keys(jellyfish.x, {{0.0f, -0.5f}, {16.0f, 0.4f}});
    stage.keys(jellyfish.y, {{0.0f, -0.3f}, {16.0f, 0.25f}});
    stage.keys(jellyfish.size, {{0.0f, 0.3f}});
    stage.keys(jellyfish.pulse, {{0.0f, 0.0f}, {16.0f, 8.0f}});
    jellyfish.init();
    drawFrames(state, stage, jellyfish);
    state.counters["sprites"] = jellyfish.getSpriteCount();
}
BENCHMARK(JellyfishFrame)
    ->Args({640, 360})
    ->Args({1024, 1024})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void SiphonophoreFrame(benchmark::State& state) {
    Stage stage(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    ParticleCreatures2Effect chain;
    chain.shader = stage.shader;
    chain.sprite = stage.sprite;
    stage.keys(chain.count, {{0.0f, static_cast<float>(ParticleCreatures2Effect::MAX_BODIES)}});
    stage.keys(chain.x, {{0.0f, -0.2f}, {16.0f, 0.2f}});
    stage.keys(chain.y, {{0.0f, 0.0f}});
    stage.keys(chain.size, {{0.0f, 0.6f}});
    stage.keys(chain.pulse, {{0.0f, 0.0f}, {16.0f, 32.0f}});
    stage.keys(chain.spread, {{0.0f, 0.0f}});
    chain.init();
    drawFrames(state, stage, chain);
    state.counters["sprites"] = chain.getSpriteCount();
}
BENCHMARK(SiphonophoreFrame)
    ->Args({640, 360})
    ->Args({1024, 1024})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

} // namespace
