#pragma once

#include <string>

class Animation;
class Binary;
class Effect;
class FBO;
class KVTScene;
class Shader;
class Texture;

// Look-ups by key in the registry's pools that must succeed: a missing key is a programming
// error, reported as an assertion naming the caller's source file and function.
namespace PoolLookup {
Shader* shader(const std::string& key, const char* source, const char* function);
Texture* texture(const std::string& key, const char* source, const char* function);
FBO* fbo(const std::string& key, const char* source, const char* function);
KVTScene* scene(const std::string& key, const char* source, const char* function);
Binary* binary(const std::string& key, const char* source, const char* function);
Animation* animation(const std::string& key, const char* source, const char* function);
Effect* effect(const std::string& key, const char* source, const char* function);
} // namespace PoolLookup
