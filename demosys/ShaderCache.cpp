#include "ShaderCache.h"

#include "DataObjectPool.h"
#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "PoolLookup.h"
#include "ShaderInstance.h"

// The assertion messages name fixed lines (see KVT_ASSERT_AT).
namespace {
const char* const Source = "demosys/ShaderCache";
}

ShaderCache::~ShaderCache() {
    for (auto& [name, instance] : instances) {
        delete instance;
    }
    instances.clear();
}

void ShaderCache::addShaderInstance(std::string name, ShaderInstance* instance) {
    if (shaderInstanceExists(name)) {
        KVT_ASSERT_AT(0, Source, "addShaderInstance", 50);
    }
    instances[name] = instance;
}

bool ShaderCache::shaderInstanceExists(const std::string& name) const {
    return instances.count(name) != 0;
}

ShaderInstance* ShaderCache::getShaderInstance(const std::string& name) const {
    auto found = instances.find(name);
    if (found == instances.end()) {
        KVT_ASSERT_AT(0, Source, "getShaderInstance", 40);
    }
    return found->second;
}

Shader* ShaderCache::GetShader(const std::string& name) const {
    return PoolLookup::shader(name, {Source, "GetShader", 65});
}

Texture* ShaderCache::GetTexture(const std::string& name) const {
    return PoolLookup::texture(name, {Source, "GetTexture", 72});
}

int ShaderCache::GetSceneCount() const {
    return KVTDemosys::sceneDataPool->size();
}

KVTScene* ShaderCache::GetScene(int i) const {
    KVT_ASSERT_AT(i >= 0 && i < KVTDemosys::sceneDataPool->size(), Source, "GetScene", 90);
    return KVTDemosys::sceneDataPool->getObject(i);
}

KVTScene* ShaderCache::GetScene(const std::string& name) const {
    return KVTDemosys::sceneDataPool->getObject(name);
}
