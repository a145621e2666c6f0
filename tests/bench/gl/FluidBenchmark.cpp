// One frame of the fluid effect with the production's shaders and pictures, stirring the
// turbulent mode: the velocity step (the projection with its eight relaxations included),
// the dye step, and the whole frame with the composite into a 16:9 target of the width given
// (640: the figure to read; 64: nearly all but the composite). Every figure ends with
// glFinish, so the software renderer's deferred work is counted.
#include "BenchResources.h"
#include "FBO.h"
#include "FluidEffect.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

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
        wireShaders();
        wirePictures();
        for (FBO* FluidEffect::*slot : {&FluidEffect::m_densities_source, &FluidEffect::m_densities,
                                        &FluidEffect::m_densities_prev, &FluidEffect::m_d_tmp}) {
            fluid.*slot = resources.framebuffer(256, 256, false, GL_RGB16F, GL_RGB, GL_FLOAT);
        }
        for (FBO* FluidEffect::*slot :
             {&FluidEffect::m_velocities_u_source, &FluidEffect::m_velocities_v_source,
              &FluidEffect::m_velocities_u, &FluidEffect::m_velocities_v,
              &FluidEffect::m_velocities_u_prev, &FluidEffect::m_velocities_v_prev,
              &FluidEffect::m_v_tmp}) {
            fluid.*slot = resources.framebuffer(64, 64, false, GL_R16F, GL_RED, GL_FLOAT);
        }
        const int screenHeight = screenWidth * 9 / 16;
        fluid.staging0 = resources.framebuffer(screenWidth, screenHeight);
        fluid.staging1 = resources.framebuffer(screenWidth, screenHeight);
        target = resources.framebuffer(screenWidth, screenHeight);
        resources.set(fluid.source, 5.0f);
        resources.set(fluid.timeStep, 1.0f / 60.0f);
        resources.set(fluid.xpos, 0.0f);
        resources.set(fluid.ypos, 0.0f);
        resources.set(fluid.opacity, 1.0f);
        if (error().empty()) {
            fluid.init();
        }
    }

    const std::string& error() const { return resources.error(); }

    BenchResources resources;
    FluidEffect fluid;
    FBO* target = nullptr;

private:
    void wireShaders() {
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
            fluid.*slot = resources.shader(file);
        }
    }

    void wirePictures() {
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
            fluid.*slot = resources.picture(file);
        }
    }
};

// Runs one part of the fluid's frame over and over, the simulation advancing each time.
void measure(benchmark::State& state, int screenWidth, const std::function<void(FluidRig&)>& part) {
    FluidRig rig(screenWidth);
    if (!rig.error().empty()) {
        state.SkipWithError(rig.error().c_str());
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
