#include "DataObjectPool.h"

#include "KVTScene.h"

#include <iostream>

DataObjectPool::DataObjectPool() = default;

DataObjectPool::~DataObjectPool() {
    std::cout << "[Dispose objectPool]" << std::endl;
}

void DataObjectPool::addObject(std::string key, KVTScene* scene) {
    ++count;
    scenes.put(key, scene);
}

std::string DataObjectPool::toString() const {
    std::string text = "DataObjectPool {\n";
    for (const auto& [key, scene] : scenes.map()) {
        text += entryLine("    ", key, scene->toString());
    }
    return text + "}\n";
}
