#include "DataAnimationPool.h"

#include "Animation.h"

#include <iostream>

DataAnimationPool::DataAnimationPool() = default;

DataAnimationPool::~DataAnimationPool() {
    std::cout << "[Dispose animationPool]" << std::endl;
}

void DataAnimationPool::addAnimation(std::string key, Animation* animation) {
    ++count;
    animations.put(key, animation);
}

std::string DataAnimationPool::toString() const {
    std::string text = "AnimationPool {\n";
    for (const auto& [key, animation] : animations.map()) {
        text += entryLine("    ", key, animation->toString());
    }
    return text + "}\n";
}
