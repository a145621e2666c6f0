#include "DataFBOPool.h"

#include "FBO.h"

#include <iostream>

DataFBOPool::DataFBOPool() = default;

DataFBOPool::~DataFBOPool() = default;

void DataFBOPool::addFBO(std::string key, FBO* fbo) {
    ++count;
    fbos.put(key, fbo);
    fboList.push_back(fbo);
    keyList.push_back(std::move(key));
}

FBO* DataFBOPool::getFBO(const std::string& key) const {
    FBO* fbo = fbos.get(key);
    if (!fbos.has(key)) {
        std::cout << "FBO::getFBO(" << key << ") cannot find the requested VBO" << std::endl;
    }
    return fbo;
}

std::string DataFBOPool::toString() const {
    std::string text = "FBOPool {\n";
    for (const auto& [key, fbo] : fbos.map()) {
        text += entryLine("  ", key, FBO::toString(fbo));
    }
    return text + "}\n";
}

void DataFBOPool::clearFlaggedFBOs() {
    for (const auto& [key, fbo] : fbos.map()) {
        if (FBO::hasClearFlag(fbo)) {
            FBO::clearNow(fbo);
        }
    }
    FBO::bind(nullptr);
}
