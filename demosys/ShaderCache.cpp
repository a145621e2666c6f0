#include "ShaderCache.h"

#include "DataObjectPool.h"
#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "PoolLookup.h"
#include "ShaderInstance.h"


ShaderCache::~ShaderCache() {
    for (auto& [name, instance] : instances) {
        delete instance;
    }
    instances.clear();
}

void ShaderCache::addShaderInstance(std::string name, ShaderInstance* instance) {
    if (shaderInstanceExists(name)) {
        KVT_ASSERT(0, "demosys/ShaderCache", "addShaderInstance");
    }
    instances[name] = instance;
}

bool ShaderCache::shaderInstanceExists(const std::string& name) const {
    return instances.count(name) != 0;
}

ShaderInstance* ShaderCache::getShaderInstance(const std::string& name) const {
    auto found = instances.find(name);
    if (found == instances.end()) {
        KVT_ASSERT(0, "demosys/ShaderCache", "getShaderInstance");
    }
    return found->second;
}

Shader* ShaderCache::GetShader(const std::string& name) const {
    return PoolLookup::shader(name, "demosys/ShaderCache", "GetShader");
}

Texture* ShaderCache::GetTexture(const std::string& name) const {
    return PoolLookup::texture(name, "demosys/ShaderCache", "GetTexture");
}

int ShaderCache::GetSceneCount() const {
    return KVTDemosys::sceneDataPool->size();
}

KVTScene* ShaderCache::GetScene(int i) const {
    KVT_ASSERT(i >= 0 && i < KVTDemosys::sceneDataPool->size(), "demosys/ShaderCache", "GetScene");
    return KVTDemosys::sceneDataPool->getObject(i);
}

KVTScene* ShaderCache::GetScene(const std::string& name) const {
    return KVTDemosys::sceneDataPool->getObject(name);
}
