#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>

class Effect;

// Effects by name: one pool holds the templates by class key, another the instances by
// instance name. Owns its effects.
class DataEffectPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataEffectPool();
    ~DataEffectPool() override;

    void addEffect(std::string key, Effect* effect);
    // Forgets the key; the effect itself stays owned by the pool until it goes.
    void removeEffect(const std::string& key) { effects.erase(key); }
    // The effect, or null when the key is absent.
    Effect* getEffect(const std::string& key) const { return effects.get(key); }
    bool exist(const std::string& key) const { return effects.has(key); }
    // The index-th key in key order; index must be below size().
    std::string getKey(int index) const { return effects.at(index)->first; }
    int size() const override { return effects.size(); }
    std::string toString() const override;

private:
    KeyedObjects<Effect> effects;
};
