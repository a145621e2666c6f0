// The underwater effect's frame at 640 x 360, whole and part by part, with the production's
// own shaders and pictures (read from the built program's folder). Every figure ends with
// glFinish, so the software renderer's deferred work is counted. CPU is the time of all the
// process's threads, the renderer's workers included: on a shared machine it is the steadier
// measure of the work, while Time is the wall clock.
#include "BenchResources.h"
#include "FBO.h"
#include "KVTDemosys.h"
#include "ParticleSystem.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "UnderwaterEffect.h"
#include "VBODynamic.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

const int WIDTH = 640;
const int HEIGHT = 360;
const unsigned int TIME = 20000;

// The effect with its resources, built once: the floor alone takes a while to generate.
class Scene {
public:
    Scene() {
        assignResources();
        loaded = resources.error().empty();
        if (!loaded) {
            return;
        }
        metrics.setResolution(WIDTH, HEIGHT);
        metrics.initView();
        metrics.setNear(1.0f);
        metrics.setFar(200.0f);
        KVTDemosys::screenMetrics = &metrics;
        std::srand(2024);
        effect.init();
    }

    // The demo loop's frame start, the underwater camera, then the part to measure.
    void beginFrame() {
        FBO::bind(nullptr);
        glEnable(GL_CULL_FACE);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        metrics.setView();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        KVTDemosys::camera.setPitch(10.0f);
        KVTDemosys::camera.setPosition(Vector<float, 3>(0.0f, 4.0f, 30.0f));
        KVTDemosys::camera.setGLMatrixes();
    }

    BenchResources resources;
    bool loaded = false;
    UnderwaterEffect effect;
    FBO* scene = resources.framebuffer(WIDTH, HEIGHT, true);
    FBO* between = resources.framebuffer(WIDTH, HEIGHT);
    FBO* target = resources.framebuffer(WIDTH, HEIGHT);

private:
    void assignResources() {
        effect.floorShader = resources.shader("point_light");
        effect.laplaceShader = resources.shader("Laplacian");
        effect.dilateShader = resources.shader("Dilate");
        effect.wavesShader = resources.shader("Waves");
        effect.spriteShader = resources.shader("particlesprite");
        effect.sceneTarget = scene;
        effect.filterTarget = between;
        effect.oceanSurfaceTexture = resources.picture("OceanSurface.png", GL_TEXTURE_2D, true);
        effect.waveNormals0 = resources.picture("Waves1Normals.png");
        effect.waveNormals1 = resources.picture("Waves2Normals.png");
        effect.waveNormals2 = resources.picture("Waves3Normals.png");
        effect.debrisTexture = resources.picture("Puff.png");
        resources.set(effect.wave_time, 3.0f);
        resources.set(effect.ribbons_noise_offset, 1.0f);
        resources.set(effect.num_ribs, 20.0f);
        resources.set(effect.num_ribs_verts, 100.0f);
        resources.set(effect.deb_size, 12.0f);
    }

    ScreenMetrics metrics;
};

// Made on first use and kept to the end of the program: deleting it would call OpenGL after
// the context is gone.
Scene* theScene() {
    static Scene* scene = new Scene;
    return scene;
}

template <typename Part> void measure(benchmark::State& state, Part part) {
    Scene* scene = theScene();
    if (!scene->loaded) {
        state.SkipWithError("the production's shaders or pictures did not load");
        return;
    }
    for (auto _ : state) {
        scene->beginFrame();
        part(*scene);
        glFinish();
    }
    FBO::bind(nullptr);
}

void UnderwaterFrame(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::clearNow(s.scene);
        s.effect.draw(TIME, 16, s.target);
    });
}
BENCHMARK(UnderwaterFrame)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

void UnderwaterFloor(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::clearNow(s.scene);
        glEnable(GL_DEPTH_TEST);
        s.effect.floorShader->use();
        s.effect.floorShader->setUniform1f("wave_time", 3.0f);
        s.effect.floorBuffer->drawPolygons(GL_QUADS, 0, 0);
        s.effect.floorShader->release();
    });
}
BENCHMARK(UnderwaterFloor)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

// The floor's vertices alone: every fragment is cut away before shading.
void UnderwaterFloorVerticesOnly(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.scene);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT_AND_BACK);
        s.effect.floorShader->use();
        s.effect.floorBuffer->drawPolygons(GL_QUADS, 0, 0);
        s.effect.floorShader->release();
        glCullFace(GL_BACK);
    });
}
BENCHMARK(UnderwaterFloorVerticesOnly)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void UnderwaterSurface(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::clearNow(s.scene);
        glEnable(GL_DEPTH_TEST);
        Shader* waves = s.effect.wavesShader;
        waves->use();
        waves->setTextureUnit0("tex0", s.effect.waveNormals0);
        waves->setTextureUnit1("tex1", s.effect.waveNormals1);
        waves->setTextureUnit2("tex2", s.effect.waveNormals2);
        waves->setTextureUnit3("tex3", s.effect.oceanSurfaceTexture);
        glTranslatef(0.0f, 4.0f, 0.0f);
        s.effect.surfaceBuffer->drawPolygons(GL_QUADS, 0, 0);
        waves->release();
    });
}
BENCHMARK(UnderwaterSurface)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

void UnderwaterWeed(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::clearNow(s.scene);
        glEnable(GL_DEPTH_TEST);
        glTranslatef(0.0f, -3.0f, 0.0f);
        s.effect.drawWeed(TIME);
    });
}
BENCHMARK(UnderwaterWeed)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

void UnderwaterLaplacianPass(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.between);
        s.effect.laplaceShader->use();
        s.effect.laplaceShader->setTextureUnit0("Texture", FBO::getColorBuffer(s.scene, 0));
        s.effect.laplaceShader->setUniform1f("viewportStep", UnderwaterEffect::VIEWPORT_STEP);
        s.effect.laplaceShader->setUniform1f("contrast", 2.0f);
        s.effect.laplaceShader->setUniform3f("color", 1.0f, 1.0f, 1.0f);
        FBO::draw(s.scene);
        s.effect.laplaceShader->release();
    });
}
BENCHMARK(UnderwaterLaplacianPass)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void UnderwaterDilatePass(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.target);
        s.effect.dilateShader->use();
        s.effect.dilateShader->setTextureUnit0("Texture", FBO::getColorBuffer(s.between, 0));
        s.effect.dilateShader->setUniform1f("viewportStep", UnderwaterEffect::VIEWPORT_STEP);
        FBO::draw(s.between);
        s.effect.dilateShader->release();
    });
}
BENCHMARK(UnderwaterDilatePass)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void UnderwaterDebris(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.target);
        s.effect.debris->setPointSize(12.0f, WIDTH);
        s.effect.debris->drawPointSprites(s.effect.spriteShader, s.effect.debrisTexture, -1.0f);
    });
}
BENCHMARK(UnderwaterDebris)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

} // namespace
