#include "KVTScene.h"

#include "DataTexturePool.h"
#include "KVTAssert.h"
#include "KVTCamera.h"
#include "KVTDemosys.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObject.h"
#include "VBO.h"

#include <GL/glew.h>

#include <cstddef> // NULL, as the assertion text spells it
#include <iostream>

KVTScene::KVTScene() = default;

KVTScene::~KVTScene() {
    for (KVTObject* object : objects) {
        delete object;
    }
    for (VBO* mesh : meshes) {
        delete mesh;
    }
}

void KVTScene::AddObject(KVTObject* object) {
    objects.push_back(object);
}

KVTObject* KVTScene::getObject(const std::string& name) const {
    for (auto at = objects.rbegin(); at != objects.rend(); ++at) {
        if ((*at)->getName() == name) {
            return *at;
        }
    }
    return nullptr;
}

void KVTScene::mapTextureData() {
    DataTexturePool* pool = KVTDemosys::textureDataPool;
    KVT_ASSERT(pool != NULL, "demosys/KVTScene", "mapTextureData");
    const std::map<std::string, std::string> files = pool->getFilemap();
    for (KVTMaterial* material : materials.objects()) {
        const std::string& file = material->getDiffuseMap();
        if (file.empty()) {
            continue;
        }
        auto found = files.find(file);
        Texture* texture = found != files.end() ? pool->getTexture(found->second) : nullptr;
        if (texture == nullptr) {
            std::cout << "ERROR : Texture '" << file << "' of material '" << material->getName()
                      << "' is not loaded" << std::endl;
        }
        material->setDiffuseTexture(texture);
    }
}

void KVTScene::draw(unsigned int time) const {
    int applied = 0;
    for (const auto& [name, light] : lights.map()) {
        if (applied == MAX_LIGHTS) {
            break;
        }
        light->apply(applied++, time);
    }
    if (applied > 0) {
        glEnable(GL_LIGHTING);
    }
    for (const KVTObject* object : objects) {
        object->draw(time);
    }
    if (applied > 0) {
        glDisable(GL_LIGHTING);
    }
    for (int i = 0; i < applied; ++i) {
        KVTLight::disable(i);
    }
}

std::string KVTScene::toString() const {
    return "KVTScene { objects = " + std::to_string(countObjects()) +
           ", meshes = " + std::to_string(countMeshes()) +
           ", materials = " + std::to_string(countMaterials()) +
           ", lights = " + std::to_string(countLights()) +
           ", cameras = " + std::to_string(countCameras()) + " }";
}
