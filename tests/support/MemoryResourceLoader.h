// A resource loader whose shader files come from an in-memory folder: path -> text.
#pragma once

#include "File.h"
#include "ResourceLoader.h"

#include <map>
#include <string>

class MemoryResourceLoader : public ResourceLoader {
public:
    std::map<std::string, std::string> files;
    int opened = 0;

protected:
    File* openShaderFile(const std::string& path) override {
        ++opened;
        File* file = new File(path);
        auto found = files.find(path);
        if (found != files.end()) {
            file->setData(std::vector<unsigned char>(found->second.begin(), found->second.end()));
            file->exists(true);
        }
        return file;
    }
};
