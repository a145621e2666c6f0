#pragma once

#include "DataPool.h"

#include <map>
#include <string>
#include <vector>

class FBO;

// The production's render targets by name, also reachable by position in order of addition.
class DataFBOPool : public DataPool {
public:
    void addFBO(std::string key, FBO* fbo);
    // The framebuffer, or null (with a message) when the key is unknown.
    FBO* getFBO(const std::string& key) const;
    bool exists(const std::string& key) const { return fbos.count(key) != 0; }
    FBO* GetFBOByIndex(int index) const { return fboList[index]; }
    std::string GetKey(int index) const { return keyList[index]; }
    int size() const override { return static_cast<int>(fbos.size()); }

private:
    std::map<std::string, FBO*> fbos;
    std::vector<FBO*> fboList;
    std::vector<std::string> keyList;
};
