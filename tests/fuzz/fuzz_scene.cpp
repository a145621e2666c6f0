// Loads a scene from arbitrary bytes: the first two bytes give the length of the scene file,
// the rest is its animation file. Meshes stay in memory as their de-indexed floats, which
// must match their corner counts; the loaded tree's transforms are then evaluated.
#include "KVTDemosys.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "MemorySceneLoader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size < 2) {
        return 0;
    }
    std::cout.setstate(std::ios::failbit);
    const size_t sceneSize = std::min<size_t>(bytes[0] | bytes[1] << 8, size - 2);
    MemorySceneLoader loader("fuzz.scene");
    loader.files["fuzz.scene"].assign(bytes + 2, bytes + 2 + sceneSize);
    if (size > 2 + sceneSize) {
        loader.files["fuzz.scene.kf"].assign(bytes + 2 + sceneSize, bytes + size);
    }
    std::unique_ptr<KVTScene> scene(loader.loadScene());
    KVTDemosys::TextureList.clear();
    for (const MemorySceneLoader::Upload& upload : loader.uploads) {
        const size_t cornerFloats = upload.vertexFloats + upload.normalFloats + upload.uvFloats;
        if (upload.data.size() != static_cast<size_t>(upload.corners) * cornerFloats) {
            std::abort();
        }
    }
    if (scene != nullptr) {
        scene->toString();
        for (int i = 0; i < scene->countObjects(); ++i) {
            for (unsigned int time : {0u, 1500u, 0xFFFFFFFFu}) {
                scene->getObject(i)->getWorldMatrix(time);
            }
        }
    }
    return 0;
}
