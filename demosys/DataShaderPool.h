#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>

class Shader;

// Loaded shader programs by key. Owns its shaders.
class DataShaderPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataShaderPool();
    ~DataShaderPool() override;

    void addShader(std::string key, Shader* shader);
    // The shader, or null when the key is absent.
    Shader* getShader(const std::string& key) const { return shaders.get(key); }
    bool exists(const std::string& key) const { return shaders.has(key); }
    int size() const override { return shaders.size(); }
    // Also prints how many shaders the pool holds.
    std::string toString() const override;

private:
    KeyedObjects<Shader> shaders;
};
