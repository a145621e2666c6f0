#include "DataEffectPool.h"

#include "Effect.h"

#include <iostream>

DataEffectPool::DataEffectPool() = default;

DataEffectPool::~DataEffectPool() {
    std::cout << "[Dispose effectPool]" << std::endl;
}

void DataEffectPool::addEffect(std::string key, Effect* effect) {
    ++count;
    effects.put(key, effect);
}

std::string DataEffectPool::toString() const {
    std::string text = "EffectPool {\n";
    for (const auto& [key, effect] : effects.map()) {
        text += entryLine("    ", key, "Effect");
    }
    return text + "}\n";
}
