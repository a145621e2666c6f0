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

Shader* shader(const std::string& key, const AssertSite& site) {
    Shader* shader = KVTDemosys::shaderDataPool->getShader(key);
    KVT_ASSERT_AT(shader != NULL, site.file, site.function, site.line);
    return shader;
}

Texture* texture(const std::string& key, const AssertSite& site) {
    Texture* tex = KVTDemosys::textureDataPool->getTexture(key);
    KVT_ASSERT_AT(tex!=NULL, site.file, site.function, site.line);
    return tex;
}

FBO* fbo(const std::string& key, const AssertSite& site) {
    FBO* fbo = KVTDemosys::fboDataPool->getFBO(key);
    KVT_ASSERT_AT(fbo != NULL, site.file, site.function, site.line);
    return fbo;
}

KVTScene* scene(const std::string& key, const AssertSite& site) {
    KVTScene* scene = KVTDemosys::sceneDataPool->getObject(key);
    KVT_ASSERT_AT(scene != NULL, site.file, site.function, site.line);
    return scene;
}

Binary* binary(const std::string& key, const AssertSite& site) {
    Binary* bin = KVTDemosys::binaryDataPool->getData(key);
    KVT_ASSERT_AT(bin != NULL, site.file, site.function, site.line);
    return bin;
}

Animation* animation(const std::string& key, const AssertSite& site) {
    Animation* anim = KVTDemosys::animDataPool->getAnimation(key);
    KVT_ASSERT_AT(anim != NULL, site.file, site.function, site.line);
    return anim;
}

Effect* effect(const std::string& key, const AssertSite& site) {
    Effect* effect = KVTDemosys::effectDataPool->getEffect(key);
    KVT_ASSERT_AT(effect != NULL, site.file, site.function, site.line);
    return effect;
}

} // namespace PoolLookup
// clang-format on
