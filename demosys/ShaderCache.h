#pragma once

#include <map>
#include <string>

class KVTScene;
class Shader;
class ShaderInstance;
class Texture;

// The production's named shader instances, made once in init() after everything is loaded
// and handed to scene objects and effects by name. Owns the instances it holds. Every
// lookup failure is a programming error and stops the program with an assertion.
class ShaderCache {
public:
    ShaderCache() = default;
    virtual ~ShaderCache();
    ShaderCache(const ShaderCache&) = delete;
    ShaderCache& operator=(const ShaderCache&) = delete;

    // Builds the instances; the base has none.
    virtual void init() {}

    // The name must be new.
    void addShaderInstance(std::string name, ShaderInstance* instance);
    bool shaderInstanceExists(const std::string& name) const;
    ShaderInstance* getShaderInstance(const std::string& name) const;

    // Loaded resources by key, for init(): the key must exist.
    Shader* GetShader(const std::string& name) const;
    Texture* GetTexture(const std::string& name) const;
    // The loaded scenes, to give their objects shader instances: by position in key order
    // (i must be below GetSceneCount()), or by key (null when absent).
    int GetSceneCount() const;
    KVTScene* GetScene(int i) const;
    KVTScene* GetScene(const std::string& name) const;

private:
    std::map<std::string, ShaderInstance*> instances;
};
