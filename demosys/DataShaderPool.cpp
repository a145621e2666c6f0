#include "DataShaderPool.h"

#include "Shader.h"

#include <iostream>

DataShaderPool::DataShaderPool() = default;

DataShaderPool::~DataShaderPool() = default;

void DataShaderPool::addShader(std::string key, Shader* shader) {
    ++count;
    shaders.put(key, shader);
}

std::string DataShaderPool::toString() const {
    std::cout << "Shaders in pool : " << size() << std::endl;
    std::string text = "ShaderPool {\n";
    if (size() == 0) {
        text += "<Empty>\n";
    }
    for (const auto& [key, shader] : shaders.map()) {
        text += entryLine("  ", key, shader->toString());
    }
    return text + "}\n";
}
