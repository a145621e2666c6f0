#include "ResourceDefinition.h"

#include "DataEffectPool.h"
#include "DataFBOPool.h"
#include "Effect.h"
#include "FBO.h"
#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "KVTTime.h"
#include "PoolLookup.h"
#include "ScreenMetrics.h"

namespace {
const char* const Source = "demosys/ResourceDefinition";
}

void ResourceDefinition::DefineDemoParameters(ScreenMetrics* metrics) {
    // A screen chosen in the launcher or on the command line stands.
    if (!metrics->getFullScreenOverride()) {
        metrics->setResolution(1280, 768);
        metrics->setFullscreen(false);
    }
    metrics->setNear(1.0f);
    metrics->setFar(1000.0f);
    KVTDemosys::DemoStartTime.setTimeAsString("00:00:00");
    KVTDemosys::DemoEndTime.setTimeAsString("99:00:00");
}

void ResourceDefinition::AddSection(std::string name, std::string startTime) {
    sections.push_back({std::move(name), KVTTime(startTime).getTicks()});
}

void ResourceDefinition::SetMusic(std::string file) {
    KVTDemosys::MusicFile = std::move(file);
}

void ResourceDefinition::AddTexture(ResourceInfo::TextureInfo info) {
    KVTDemosys::TextureList.push_back(std::move(info));
}

void ResourceDefinition::AddShader(ResourceInfo::ShaderInfo info) {
    KVTDemosys::ShaderList.push_back(std::move(info));
}

void ResourceDefinition::AddScene(ResourceInfo::SceneInfo info) {
    KVTDemosys::SceneList.push_back(std::move(info));
}

void ResourceDefinition::AddAnimation(ResourceInfo::AnimationInfo info) {
    KVTDemosys::AnimationList.push_back(std::move(info));
}

void ResourceDefinition::AddBinary(ResourceInfo::BinaryInfo info) {
    KVTDemosys::BinaryList.push_back(std::move(info));
}

void ResourceDefinition::AddVideo(ResourceInfo::VideoInfo info) {
    KVTDemosys::VideoList.push_back(std::move(info));
}

void ResourceDefinition::AddFBO(std::string key, FBO* fbo) {
    KVTDemosys::fboDataPool->addFBO(std::move(key), fbo);
    FBO::clearNow(fbo);
    FBO::bind(nullptr);
}

void ResourceDefinition::AddEffect(std::string classKey, Effect* effectTemplate) {
    KVTDemosys::effectTemplateDataPool->addEffect(std::move(classKey), effectTemplate);
}

Effect* ResourceDefinition::CreateEffectInstance(std::string classKey, std::string instanceName,
                                                 bool tracked) {
    Effect* effect = KVTDemosys::effectTemplateDataPool->getEffect(classKey);
    KVT_ASSERT(effect != NULL, Source, "CreateEffectInstance");
    Effect* instance = effect->getInstance();
    instance->setTracked(tracked);
    instance->registerTracks();
    KVTDemosys::effectDataPool->addEffect(std::move(instanceName), instance);
    return instance;
}

Shader* ResourceDefinition::GetShader(std::string key) {
    return PoolLookup::shader(key, {Source, "GetShader", __LINE__});
}

Texture* ResourceDefinition::GetTexture(std::string key) {
    return PoolLookup::texture(key, {Source, "GetTexture", __LINE__});
}

FBO* ResourceDefinition::GetFBO(std::string key) {
    return PoolLookup::fbo(key, {Source, "GetFBO", __LINE__});
}

KVTScene* ResourceDefinition::GetScene(std::string key) {
    return PoolLookup::scene(key, {Source, "GetScene", __LINE__});
}

Binary* ResourceDefinition::GetBinary(std::string key) {
    return PoolLookup::binary(key, {Source, "GetBinary", __LINE__});
}

Animation* ResourceDefinition::GetAnimation(std::string key) {
    return PoolLookup::animation(key, {Source, "GetAnimation", __LINE__});
}
