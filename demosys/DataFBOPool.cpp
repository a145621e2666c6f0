#include "DataFBOPool.h"

#include <iostream>

void DataFBOPool::addFBO(std::string key, FBO* fbo) {
    ++count;
    fbos[key] = fbo;
    fboList.push_back(fbo);
    keyList.push_back(std::move(key));
}

FBO* DataFBOPool::getFBO(const std::string& key) const {
    auto found = fbos.find(key);
    if (found == fbos.end()) {
        std::cout << "FBO::getFBO(" << key << ") cannot find the requested VBO" << std::endl;
        return nullptr;
    }
    return found->second;
}
