#include "Effect.h"

#include "KVTDemosys.h"
#include "PoolLookup.h"
#include "ShaderCache.h"
#include "TrackInterpolate.h"

#include <iostream>

// The look-ups' assertion messages name fixed lines (see KVT_ASSERT_AT).
namespace {
const char* const Source = "demosys/Effect";
}

Effect::~Effect() = default;

void Effect::predraw(unsigned int) {}

void Effect::draw(unsigned int, unsigned int, FBO*) {
    std::cout << "Fallback draw method! This should never happen!" << std::endl;
}

void Effect::postdraw(unsigned int) {}

void Effect::init() {}

Effect* Effect::getInstance() {
    return new Effect;
}

void Effect::registerTracks() {}

void Effect::addTrack(std::string name, TrackInterpolate*& slot) {
    slot = new TrackInterpolate(std::move(name));
    tracks.push_back(slot);
}

Shader* Effect::GetShader(std::string key) {
    return PoolLookup::shader(key, {Source, "GetShader", 54});
}

Texture* Effect::GetTexture(std::string key) {
    return PoolLookup::texture(key, {Source, "GetTexture", 61});
}

FBO* Effect::GetFBO(std::string key) {
    return PoolLookup::fbo(key, {Source, "GetFBO", 68});
}

KVTScene* Effect::GetScene(std::string key) {
    return PoolLookup::scene(key, {Source, "GetScene", 75});
}

Binary* Effect::GetBinary(std::string key) {
    return PoolLookup::binary(key, {Source, "GetBinary", 82});
}

Animation* Effect::GetAnimation(std::string key) {
    return PoolLookup::animation(key, {Source, "GetAnimation", 89});
}

Effect* Effect::GetEffect(std::string key) {
    return PoolLookup::effect(key, {Source, "GetEffect", 96});
}

ShaderInstance* Effect::GetShaderInstance(std::string key) {
    ShaderCache* cache = KVTDemosys::shaderCache;
    return cache != nullptr && cache->shaderInstanceExists(key) ? cache->getShaderInstance(key)
                                                                : nullptr;
}
