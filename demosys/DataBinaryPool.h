#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>

class Binary;

// Binary resources by key, also by position in key order. Owns its binaries.
class DataBinaryPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataBinaryPool();
    ~DataBinaryPool() override;

    void addData(std::string key, Binary* binary);
    // The binary, or null when the key is absent.
    Binary* getData(const std::string& key) const { return binaries.get(key); }
    // The index-th binary in key order; index must be below size().
    Binary* getData(int index) const { return binaries.at(index)->second; }
    bool exist(const std::string& key) const { return binaries.has(key); }
    int size() const override { return binaries.size(); }
    std::string toString() const override;

private:
    KeyedObjects<Binary> binaries;
};
