#include "BrinovaShaderCache.h"

#include "KVTObject.h"
#include "KVTScene.h"
#include "ShaderInstance.h"

BrinovaShaderCache::BrinovaShaderCache() = default;

BrinovaShaderCache::~BrinovaShaderCache() = default;

void BrinovaShaderCache::init() {
    standardLight = std::make_unique<ShaderInstance>(GetShader("standard_light"));
    for (int s = 0; s < GetSceneCount(); ++s) {
        KVTScene* scene = GetScene(s);
        for (int o = 0; o < scene->countObjects(); ++o) {
            scene->getObject(o)->setShaderInstance(standardLight.get());
        }
    }
}
