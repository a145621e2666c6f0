#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>

class KVTScene;

// Loaded scenes by key, also by position in key order. Owns its scenes.
class DataObjectPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataObjectPool();
    ~DataObjectPool() override;

    void addObject(std::string key, KVTScene* scene);
    // The scene, or null when the key is absent.
    KVTScene* getObject(const std::string& key) const { return scenes.get(key); }
    // The index-th scene in key order; index must be below size().
    KVTScene* getObject(int index) const { return scenes.at(index)->second; }
    bool exists(const std::string& key) const { return scenes.has(key); }
    int size() const override { return scenes.size(); }
    std::string toString() const override;

private:
    KeyedObjects<KVTScene> scenes;
};
