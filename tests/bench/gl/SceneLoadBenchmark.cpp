// Loading a 200 000-triangle scene into vertex buffers, with its own hidden window and
// OpenGL context. The scene is made by the writer: a grid of 250 x 400 quads with
// positions, normals and texture coordinates.
#include "KVTScene.h"
#include "KVTSceneLoader.h"
#include "KVTSceneWriter.h"
#include "VBO.h"

#include <GL/glew.h>

#include <SDL.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

namespace {

const int COLUMNS = 250;
const int ROWS = 400;
const std::string SCENE_PATH = "/tmp/brinova-bench-200k.scene";

KVTSceneRecord::Mesh gridMesh() {
    KVTSceneRecord::Mesh mesh;
    mesh.name = "grid";
    for (int y = 0; y <= ROWS; ++y) {
        for (int x = 0; x <= COLUMNS; ++x) {
            mesh.positions.insert(mesh.positions.end(), {float(x), 0.0f, float(y)});
            mesh.normals.insert(mesh.normals.end(), {0.0f, 1.0f, 0.0f});
            mesh.texcoords.insert(mesh.texcoords.end(), {float(x) / COLUMNS, float(y) / ROWS});
        }
    }
    auto corner = [&mesh](int x, int y) {
        const int vertex = y * (COLUMNS + 1) + x;
        mesh.indices.insert(mesh.indices.end(), {vertex, vertex, vertex});
    };
    for (int y = 0; y < ROWS; ++y) {
        for (int x = 0; x < COLUMNS; ++x) {
            for (auto [cx, cy] : {std::pair{x, y},
                                  {x + 1, y + 1},
                                  {x + 1, y},
                                  {x, y},
                                  {x, y + 1},
                                  {x + 1, y + 1}}) {
                corner(cx, cy);
            }
        }
    }
    mesh.fitBounds();
    return mesh;
}

bool writeScene() {
    KVTSceneWriter writer;
    writer.addMesh(gridMesh());
    KVTSceneRecord::Node node;
    node.type = KVTSceneRecord::MESH_NODE;
    node.name = "grid";
    writer.addNode(node);
    return writer.write(SCENE_PATH);
}

// Everything but the upload: reading, checking and de-indexing.
class UploadlessLoader : public KVTSceneLoader {
public:
    using KVTSceneLoader::KVTSceneLoader;

protected:
    void uploadMesh(VBO*, int, int, int, int, const std::vector<float>& data) override {
        benchmark::DoNotOptimize(data.data());
    }
};

template <typename Loader> void loadScene(benchmark::State& state) {
    for (auto _ : state) {
        Loader loader(SCENE_PATH);
        std::unique_ptr<KVTScene> scene(loader.loadScene());
        glFinish();
        if (scene == nullptr) {
            state.SkipWithError(loader.getErrorMessage().c_str());
            return;
        }
        state.PauseTiming();
        scene.reset();
        glFinish();
        state.ResumeTiming();
    }
    state.counters["triangles"] = COLUMNS * ROWS * 2;
}

void SceneLoadIntoVertexBuffers(benchmark::State& state) {
    loadScene<KVTSceneLoader>(state);
}
BENCHMARK(SceneLoadIntoVertexBuffers)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void SceneLoadWithoutUpload(benchmark::State& state) {
    loadScene<UploadlessLoader>(state);
}
BENCHMARK(SceneLoadWithoutUpload)->Unit(benchmark::kMillisecond)->MinTime(2.0);

bool openContext() {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::cerr << "brinova_gl_bench: SDL_Init failed: " << SDL_GetError() << std::endl;
        return false;
    }
    SDL_Window* window =
        SDL_CreateWindow("brinova_gl_bench", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, 64,
                         64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window == nullptr || SDL_GL_CreateContext(window) == nullptr) {
        std::cerr << "brinova_gl_bench: no OpenGL context: " << SDL_GetError() << std::endl;
        return false;
    }
    const GLenum result = glewInit();
    // An EGL context reports no GLX display although every entry point is loaded.
    return result == GLEW_OK || (result == GLEW_ERROR_NO_GLX_DISPLAY && glGenBuffers != nullptr);
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!openContext() || !writeScene()) {
        std::cerr << "brinova_gl_bench: cannot set up the benchmark" << std::endl;
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::remove(SCENE_PATH.c_str());
    SDL_Quit();
    return 0;
}
