// The underwater effect's frame at 640 x 360, whole and part by part, with the production's
// own shaders and pictures (read from the built program's folder). Every figure ends with
// glFinish, so the software renderer's deferred work is counted. CPU is the time of all the
// process's threads, the renderer's workers included: on a shared machine it is the steadier
// measure of the work, while Time is the wall clock.
#include "FBO.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "ParticleSystem.h"
#include "ResourceLoader.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "UnderwaterEffect.h"
#include "VBODynamic.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

const int WIDTH = 640;
const int HEIGHT = 360;
const unsigned int TIME = 20000;

std::unique_ptr<TrackInterpolate> constant(float value) {
    auto track = std::make_unique<TrackInterpolate>("value");
    track->addKeyframe(new TrackKeyFrameInterpolate(0, TrackInterpolate::LINEAR, value));
    return track;
}

// The effect with its resources, built once: the floor alone takes a while to generate.
class Scene {
public:
    Scene() {
        const std::filesystem::path previous = std::filesystem::current_path();
        std::filesystem::current_path(BRINOVA_BIN_DIR);
        loaded = loadShaders() && loadPictures();
        std::filesystem::current_path(previous);
        if (!loaded) {
            return;
        }
        metrics.setResolution(WIDTH, HEIGHT);
        metrics.initView();
        metrics.setNear(1.0f);
        metrics.setFar(200.0f);
        KVTDemosys::screenMetrics = &metrics;
        assignResources();
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

    bool loaded = false;
    UnderwaterEffect effect;
    std::unique_ptr<FBO> scene =
        std::make_unique<FBO>(WIDTH, HEIGHT, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    std::unique_ptr<FBO> between =
        std::make_unique<FBO>(WIDTH, HEIGHT, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    std::unique_ptr<FBO> target =
        std::make_unique<FBO>(WIDTH, HEIGHT, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);

private:
    bool loadShaders() {
        ResourceLoader loader;
        for (const char* file : {"point_light", "Laplacian", "Dilate", "Waves", "particlesprite"}) {
            shaders.push_back(std::make_unique<Shader>());
            if (!loader.loadShader(shaders.back().get(), {file, file, {}})) {
                return false;
            }
        }
        return true;
    }

    bool loadPictures() {
        for (const char* file : {"OceanSurface.png", "Waves1Normals.png", "Waves2Normals.png",
                                 "Waves3Normals.png", "Puff.png"}) {
            const bool mipmap = std::string(file) == "OceanSurface.png";
            pictures.emplace_back(
                KVTIO::loadTexture(KVTIO::TexturePath + file, GL_TEXTURE_2D, mipmap));
            if (pictures.back() == nullptr) {
                return false;
            }
        }
        return true;
    }

    void assignResources() {
        effect.floorShader = shaders[0].get();
        effect.laplaceShader = shaders[1].get();
        effect.dilateShader = shaders[2].get();
        effect.wavesShader = shaders[3].get();
        effect.spriteShader = shaders[4].get();
        effect.sceneTarget = scene.get();
        effect.filterTarget = between.get();
        effect.oceanSurfaceTexture = pictures[0].get();
        effect.waveNormals0 = pictures[1].get();
        effect.waveNormals1 = pictures[2].get();
        effect.waveNormals2 = pictures[3].get();
        effect.debrisTexture = pictures[4].get();
        setTrack(effect.wave_time, 3.0f);
        setTrack(effect.ribbons_noise_offset, 1.0f);
        setTrack(effect.num_ribs, 20.0f);
        setTrack(effect.num_ribs_verts, 100.0f);
        setTrack(effect.deb_size, 12.0f);
    }

    void setTrack(TrackInterpolate*& slot, float value) {
        tracks.push_back(constant(value));
        slot = tracks.back().get();
    }

    ScreenMetrics metrics;
    std::vector<std::unique_ptr<Shader>> shaders;
    std::vector<std::unique_ptr<Texture>> pictures;
    std::vector<std::unique_ptr<TrackInterpolate>> tracks;
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
        FBO::clearNow(s.scene.get());
        s.effect.draw(TIME, 16, s.target.get());
    });
}
BENCHMARK(UnderwaterFrame)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

void UnderwaterFloor(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::clearNow(s.scene.get());
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
        FBO::bind(s.scene.get());
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
        FBO::clearNow(s.scene.get());
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
        FBO::clearNow(s.scene.get());
        glEnable(GL_DEPTH_TEST);
        glTranslatef(0.0f, -3.0f, 0.0f);
        s.effect.drawWeed(TIME);
    });
}
BENCHMARK(UnderwaterWeed)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

void UnderwaterLaplacianPass(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.between.get());
        s.effect.laplaceShader->use();
        s.effect.laplaceShader->setTextureUnit0("Texture", FBO::getColorBuffer(s.scene.get(), 0));
        s.effect.laplaceShader->setUniform1f("viewportStep", UnderwaterEffect::VIEWPORT_STEP);
        s.effect.laplaceShader->setUniform1f("contrast", 2.0f);
        s.effect.laplaceShader->setUniform3f("color", 1.0f, 1.0f, 1.0f);
        FBO::draw(s.scene.get());
        s.effect.laplaceShader->release();
    });
}
BENCHMARK(UnderwaterLaplacianPass)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void UnderwaterDilatePass(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.target.get());
        s.effect.dilateShader->use();
        s.effect.dilateShader->setTextureUnit0("Texture", FBO::getColorBuffer(s.between.get(), 0));
        s.effect.dilateShader->setUniform1f("viewportStep", UnderwaterEffect::VIEWPORT_STEP);
        FBO::draw(s.between.get());
        s.effect.dilateShader->release();
    });
}
BENCHMARK(UnderwaterDilatePass)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->MeasureProcessCPUTime();

void UnderwaterDebris(benchmark::State& state) {
    measure(state, [](Scene& s) {
        FBO::bind(s.target.get());
        s.effect.debris->setPointSize(12.0f, WIDTH);
        s.effect.debris->drawPointSprites(s.effect.spriteShader, s.effect.debrisTexture, -1.0f);
    });
}
BENCHMARK(UnderwaterDebris)->Unit(benchmark::kMillisecond)->MinTime(2.0)->MeasureProcessCPUTime();

} // namespace
