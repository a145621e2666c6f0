#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <string>
#include <vector>

class FBO;

// The production's render targets by name, also reachable by position in order of addition.
// Owns its framebuffers.
class DataFBOPool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataFBOPool();
    ~DataFBOPool() override;

    void addFBO(std::string key, FBO* fbo);
    // The framebuffer, or null (with a message) when the key is unknown.
    FBO* getFBO(const std::string& key) const;
    bool exists(const std::string& key) const { return fbos.has(key); }
    FBO* GetFBOByIndex(int index) const { return fboList[index]; }
    std::string GetKey(int index) const { return keyList[index]; }
    int size() const override { return fbos.size(); }
    std::string toString() const override;
    // Clears every framebuffer flagged with FBO::clearLater, in key order, then binds the
    // screen. Called once a frame after the effects.
    void clearFlaggedFBOs();

private:
    KeyedObjects<FBO> fbos;
    std::vector<FBO*> fboList;
    std::vector<std::string> keyList;
};
