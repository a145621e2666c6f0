// One frame of the fluid effect with the production's shaders and pictures, stirring the
// turbulent mode: the velocity step (the projection with its eight relaxations included),
// the dye step, and the whole frame with the composite into a 16:9 target of the width given
// (640: the figure to read; 64: nearly all but the composite). Every figure ends with
// glFinish, so the software renderer's deferred work is counted.
#include "FBO.h"
#include "FluidEffect.h"
#include "KVTIO.h"
#include "ResourceLoader.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

// A fluid effect wired as the production wires it, owning everything it is handed.
class FluidRig {
public:
    explicit FluidRig(int screenWidth) {
        const std::filesystem::path previous = std::filesystem::current_path();
        std::filesystem::current_path(BRINOVA_BIN_DIR);
        loadShaders();
        loadPictures();
        std::filesystem::current_path(previous);
        for (FBO* FluidEffect::*slot : {&FluidEffect::m_densities_source, &FluidEffect::m_densities,
                                        &FluidEffect::m_densities_prev, &FluidEffect::m_d_tmp}) {
            fluid.*slot = keep(new FBO(256, 256, false, false, GL_RGB16F, GL_RGB, GL_FLOAT));
        }
        for (FBO* FluidEffect::*slot :
             {&FluidEffect::m_velocities_u_source, &FluidEffect::m_velocities_v_source,
              &FluidEffect::m_velocities_u, &FluidEffect::m_velocities_v,
              &FluidEffect::m_velocities_u_prev, &FluidEffect::m_velocities_v_prev,
              &FluidEffect::m_v_tmp}) {
            fluid.*slot = keep(new FBO(64, 64, false, false, GL_R16F, GL_RED, GL_FLOAT));
        }
        const int screenHeight = screenWidth * 9 / 16;
        for (FBO* FluidEffect::*slot : {&FluidEffect::staging0, &FluidEffect::staging1}) {
            fluid.*slot = keep(new FBO(screenWidth, screenHeight, false, false, GL_RGBA, GL_RGBA,
                                       GL_UNSIGNED_BYTE));
        }
        target = keep(
            new FBO(screenWidth, screenHeight, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE));
        const std::pair<TrackInterpolate * FluidEffect::*, float> values[] = {
            {&FluidEffect::source, 5.0f},
            {&FluidEffect::timeStep, 1.0f / 60.0f},
            {&FluidEffect::xpos, 0.0f},
            {&FluidEffect::ypos, 0.0f},
            {&FluidEffect::opacity, 1.0f}};
        for (const auto& [slot, value] : values) {
            tracks.push_back(std::make_unique<TrackInterpolate>("value"));
            tracks.back()->addKeyframe(new TrackKeyFrameInterpolate(0, 0, value));
            fluid.*slot = tracks.back().get();
        }
        if (error.empty()) {
            fluid.init();
        }
    }

    FluidEffect fluid;
    FBO* target = nullptr;
    std::string error;

private:
    FBO* keep(FBO* framebuffer) {
        framebuffers.emplace_back(framebuffer);
        return framebuffer;
    }

    void loadShaders() {
        const std::pair<Shader * FluidEffect::*, const char*> files[] = {
            {&FluidEffect::addSourceShader, "AddSource"},
            {&FluidEffect::advectShader, "Advect"},
            {&FluidEffect::divergenceShader, "ProjectPass0"},
            {&FluidEffect::pressureShader, "ProjectPass1"},
            {&FluidEffect::gradientUShader, "ProjectPass2u"},
            {&FluidEffect::gradientVShader, "ProjectPass2v"},
            {&FluidEffect::boundariesShader, "Boundaries"},
            {&FluidEffect::normalizeShader, "Normalize"},
            {&FluidEffect::screenOpacityShader, "ScreenOpacity"}};
        for (const auto& [slot, file] : files) {
            shaders.push_back(std::make_unique<Shader>());
            ResourceLoader loader;
            if (!loader.loadShader(shaders.back().get(), {file, file, {}})) {
                error = loader.getErrorMessage();
            }
            fluid.*slot = shaders.back().get();
        }
    }

    void loadPictures() {
        const std::pair<Texture * FluidEffect::*, const char*> files[] = {
            {&FluidEffect::uSource, "Velocities.png"},
            {&FluidEffect::vSource, "Velocities2.png"},
            {&FluidEffect::uSource2, "Velocities3.png"},
            {&FluidEffect::vSource2, "Velocities4.png"},
            {&FluidEffect::uSource3, "Velocities5.png"},
            {&FluidEffect::vSource3, "Velocities6.png"},
            {&FluidEffect::vaskSmall, "VaskSmall.png"},
            {&FluidEffect::lumoSmall, "LumoSmall.png"},
            {&FluidEffect::orinSmall, "OrinSmall.png"},
            {&FluidEffect::quilletSmall, "QuilletSmall.png"},
            {&FluidEffect::korvathlogoSmall, "KorvathLogoSmall.png"},
            {&FluidEffect::brinovalogoSmall, "BrinovaLogoSmall.png"}};
        for (const auto& [slot, file] : files) {
            pictures.emplace_back(
                KVTIO::loadTexture(KVTIO::TexturePath + file, GL_TEXTURE_2D, false));
            if (!pictures.back()) {
                error = std::string("cannot load ") + file;
            }
            fluid.*slot = pictures.back().get();
        }
    }

    std::vector<std::unique_ptr<Shader>> shaders;
    std::vector<std::unique_ptr<Texture>> pictures;
    std::vector<std::unique_ptr<FBO>> framebuffers;
    std::vector<std::unique_ptr<TrackInterpolate>> tracks;
};

// Runs one part of the fluid's frame over and over, the simulation advancing each time.
void measure(benchmark::State& state, int screenWidth, const std::function<void(FluidRig&)>& part) {
    FluidRig rig(screenWidth);
    if (!rig.error.empty()) {
        state.SkipWithError(rig.error.c_str());
        return;
    }
    part(rig);
    glFinish();
    for (auto _ : state) {
        part(rig);
        glFinish();
    }
}

void FluidFrame(benchmark::State& state) {
    measure(state, static_cast<int>(state.range(0)),
            [](FluidRig& rig) { rig.fluid.draw(0, 16, rig.target); });
}
BENCHMARK(FluidFrame)->Arg(640)->Arg(64)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void FluidVelocityPass(benchmark::State& state) {
    measure(state, 640, [](FluidRig& rig) { rig.fluid.velocity_pass(); });
}
BENCHMARK(FluidVelocityPass)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void FluidDensityPass(benchmark::State& state) {
    measure(state, 640, [](FluidRig& rig) { rig.fluid.density_pass(); });
}
BENCHMARK(FluidDensityPass)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
