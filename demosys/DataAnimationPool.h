#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>

class Animation;

// Camera and object paths by key. Owns its animations.
class DataAnimationPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataAnimationPool();
    ~DataAnimationPool() override;

    void addAnimation(std::string key, Animation* animation);
    // The animation, or null when the key is absent.
    Animation* getAnimation(const std::string& key) const { return animations.get(key); }
    bool exist(const std::string& key) const { return animations.has(key); }
    int size() const override { return animations.size(); }
    std::string toString() const override;

private:
    KeyedObjects<Animation> animations;
};
