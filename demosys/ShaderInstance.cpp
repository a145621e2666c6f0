#include "ShaderInstance.h"

#include "KVTMaterial.h"
#include "Shader.h"

void ShaderInstance::use(KVTMaterial* material) {
    material->use();
    shader->use();
}

void ShaderInstance::release() {
    shader->release();
}
