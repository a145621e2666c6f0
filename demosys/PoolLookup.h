#pragma once

#include "KVTAssert.h"

#include <string>

class Animation;
class Binary;
class Effect;
class FBO;
class KVTScene;
class Shader;
class Texture;

// Look-ups by key in the registry's pools that must succeed: a missing key is a programming
// error, reported as an assertion at the caller's site (its source file, function and line).
namespace PoolLookup {
Shader* shader(const std::string& key, const AssertSite& site);
Texture* texture(const std::string& key, const AssertSite& site);
FBO* fbo(const std::string& key, const AssertSite& site);
KVTScene* scene(const std::string& key, const AssertSite& site);
Binary* binary(const std::string& key, const AssertSite& site);
Animation* animation(const std::string& key, const AssertSite& site);
Effect* effect(const std::string& key, const AssertSite& site);
} // namespace PoolLookup
