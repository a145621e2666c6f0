#include "PoolLookup.h"

#include "DataAnimationPool.h"
#include "DataBinaryPool.h"
#include "DataEffectPool.h"
#include "DataFBOPool.h"
#include "DataObjectPool.h"
#include "DataShaderPool.h"
#include "DataTexturePool.h"
#include "KVTAssert.h"
#include "KVTDemosys.h"

// The conditions are spelled as the assertion texts read.
// clang-format off
namespace PoolLookup {

Shader* shader(const std::string& key, const char* source, const char* function) {
    Shader* shader = KVTDemosys::shaderDataPool->getShader(key);
    KVT_ASSERT(shader != NULL, source, function);
    return shader;
}

Texture* texture(const std::string& key, const char* source, const char* function) {
    Texture* tex = KVTDemosys::textureDataPool->getTexture(key);
    KVT_ASSERT(tex!=NULL, source, function);
    return tex;
}

FBO* fbo(const std::string& key, const char* source, const char* function) {
    FBO* fbo = KVTDemosys::fboDataPool->getFBO(key);
    KVT_ASSERT(fbo != NULL, source, function);
    return fbo;
}

KVTScene* scene(const std::string& key, const char* source, const char* function) {
    KVTScene* scene = KVTDemosys::sceneDataPool->getObject(key);
    KVT_ASSERT(scene != NULL, source, function);
    return scene;
}

Binary* binary(const std::string& key, const char* source, const char* function) {
    Binary* bin = KVTDemosys::binaryDataPool->getData(key);
    KVT_ASSERT(bin != NULL, source, function);
    return bin;
}

Animation* animation(const std::string& key, const char* source, const char* function) {
    Animation* anim = KVTDemosys::animDataPool->getAnimation(key);
    KVT_ASSERT(anim != NULL, source, function);
    return anim;
}

Effect* effect(const std::string& key, const char* source, const char* function) {
    Effect* effect = KVTDemosys::effectDataPool->getEffect(key);
    KVT_ASSERT(effect != NULL, source, function);
    return effect;
}

} // namespace PoolLookup
// clang-format on
