// A scene loader whose files come from memory (path -> bytes) and whose meshes are kept as
// their de-indexed floats instead of going to OpenGL, so scenes load without a context.
#pragma once

#include "File.h"
#include "KVTSceneLoader.h"

#include <map>
#include <string>
#include <vector>

class MemorySceneLoader : public KVTSceneLoader {
public:
    struct Upload {
        int corners;
        int vertexFloats;
        int normalFloats;
        int uvFloats;
        std::vector<float> data;
    };

    using KVTSceneLoader::KVTSceneLoader;

    std::map<std::string, std::vector<unsigned char>> files;
    std::vector<Upload> uploads;

protected:
    File* openFile(const std::string& path) override {
        File* file = new File(path);
        auto found = files.find(path);
        if (found != files.end()) {
            file->setData(found->second);
            file->exists(true);
        }
        return file;
    }

    void uploadMesh(VBO*, int corners, int vertexFloats, int normalFloats, int uvFloats,
                    const std::vector<float>& data) override {
        uploads.push_back(Upload{corners, vertexFloats, normalFloats, uvFloats, data});
    }
};
