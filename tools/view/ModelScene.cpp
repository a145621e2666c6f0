#include "ModelScene.h"

#include "File.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "KVTObjImporter.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "KVTSceneLoader.h"
#include "KVTSceneWriter.h"
#include "Texture.h"
#include "VBO.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;

namespace {

// Reads the scene file an OBJ model was converted into from memory; it has no animations.
class ConvertedSceneLoader : public KVTSceneLoader {
public:
    ConvertedSceneLoader(const std::string& path, std::vector<unsigned char> sceneBytes)
        : KVTSceneLoader(path), scenePath(path), bytes(std::move(sceneBytes)) {}

protected:
    File* openFile(const std::string& path) override {
        auto* file = new File(path);
        file->exists(path == scenePath);
        if (path == scenePath) {
            file->setData(bytes);
        }
        return file;
    }

private:
    std::string scenePath;
    std::vector<unsigned char> bytes;
};

KVTScene* loadWith(KVTSceneLoader& loader, std::string& error) {
    KVTScene* scene = loader.loadScene();
    if (scene == nullptr) {
        error = loader.getErrorMessage();
    }
    return scene;
}

bool hasObjExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
    return extension == ".obj";
}

Vector<float, 3> transformPoint(const KVTObject::Matrix4& m, const Vector<float, 3>& p) {
    return Vector<float, 3>(m[0] * p[0] + m[4] * p[1] + m[8] * p[2] + m[12],
                            m[1] * p[0] + m[5] * p[1] + m[9] * p[2] + m[13],
                            m[2] * p[0] + m[6] * p[1] + m[10] * p[2] + m[14]);
}

} // namespace

void Bounds::add(const Vector<float, 3>& point) {
    for (int i = 0; i < 3; ++i) {
        low[i] = empty ? point[i] : std::min(low[i], point[i]);
        high[i] = empty ? point[i] : std::max(high[i], point[i]);
    }
    empty = false;
}

float Bounds::radius() const {
    Vector<float, 3> half = (high - low) * 0.5f;
    return std::sqrt(half.dotProduct(half));
}

ModelScene::ModelScene() = default;

ModelScene::~ModelScene() = default;

bool ModelScene::fail(std::string message) {
    errorMessage = std::move(message);
    return false;
}

bool ModelScene::load(const std::string& path) {
    KVTDemosys::TextureList.clear();
    if (!(hasObjExtension(path) ? loadObj(path) : loadSceneFile(path))) {
        return false;
    }
    loadTextures(path);
    return true;
}

bool ModelScene::loadObj(const std::string& path) {
    KVTObjImporter importer;
    if (!importer.readFile(path)) {
        return fail(importer.getErrorMessage());
    }
    KVTSceneWriter writer;
    importer.write(writer, fs::path(path).stem().string());
    ConvertedSceneLoader loader(path, writer.getSceneBytes());
    model.reset(loadWith(loader, errorMessage));
    return model != nullptr;
}

bool ModelScene::loadSceneFile(const std::string& path) {
    KVTSceneLoader loader(path);
    model.reset(loadWith(loader, errorMessage));
    return model != nullptr;
}

// Loads each picture the materials name, as the resource loader does, from beside the file
// or from "../graphics/"; a missing one is reported and its materials stay untextured.
void ModelScene::loadTextures(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    for (const ResourceInfo::TextureInfo& entry : KVTDemosys::TextureList) {
        Texture* texture = nullptr;
        for (const fs::path& candidate :
             {folder / entry.file, folder / ".." / "graphics" / entry.file}) {
            if (texture == nullptr && fs::is_regular_file(candidate)) {
                texture = KVTIO::loadTexture(candidate.string(), entry.target, entry.mipmap,
                                             KVTIO::KVT_RESOURCES_FLAT);
            }
        }
        if (texture == nullptr) {
            std::cout << "brinova-view: texture '" << entry.file << "' not found beside '" << path
                      << "' or in its ../graphics folder" << std::endl;
            continue;
        }
        texture->setFilename(entry.file);
        textures.addTexture(entry.key, texture);
    }
    KVTDemosys::textureDataPool = &textures;
    model->mapTextureData();
    KVTDemosys::textureDataPool = nullptr;
}

Bounds ModelScene::bounds(unsigned int time) const {
    Bounds box;
    for (int i = 0; i < model->countObjects(); ++i) {
        const KVTObject* object = model->getObject(i);
        if (object->getMesh() == nullptr) {
            continue;
        }
        const KVTObject::Matrix4 world = object->getWorldMatrix(time);
        const Vector<float, 3> low = object->getMesh()->getBBoxMin();
        const Vector<float, 3> high = object->getMesh()->getBBoxMax();
        for (int corner = 0; corner < 8; ++corner) {
            box.add(transformPoint(world, Vector<float, 3>(corner & 1 ? high[0] : low[0],
                                                           corner & 2 ? high[1] : low[1],
                                                           corner & 4 ? high[2] : low[2])));
        }
    }
    return box;
}
