// Imports an OBJ model and its material library from arbitrary bytes (split at the first zero
// byte) and writes the scene. Whatever the importer accepts must load back through the
// engine's scene loader: a converted model that the demo cannot read is a fault.
#include "KVTDemosys.h"
#include "KVTObjImporter.h"
#include "KVTScene.h"
#include "KVTSceneWriter.h"
#include "MemorySceneLoader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    std::cout.setstate(std::ios::failbit);
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    const size_t split = std::min(input.find('\0'), input.size());
    const std::string mtl = split < input.size() ? input.substr(split + 1) : "";
    KVTObjImporter importer;
    if (!importer.readMtl(mtl, "fuzz.mtl") ||
        !importer.readObj(input.substr(0, split), "fuzz.obj")) {
        return 0;
    }
    KVTSceneWriter writer;
    importer.write(writer, "fuzz");
    MemorySceneLoader loader("fuzz.scene");
    loader.files["fuzz.scene"] = writer.getSceneBytes();
    std::unique_ptr<KVTScene> scene(loader.loadScene());
    KVTDemosys::TextureList.clear();
    if (scene == nullptr || scene->countObjects() < importer.countMeshes()) {
        std::abort();
    }
    return 0;
}
