#pragma once

#include "DataPool.h"
#include "KeyedObjects.h"

#include <map>
#include <string>
#include <vector>

class Texture;

// Loaded textures by key, plus which key each file was last added under, so the loader can
// share one file among declarations. Owns its textures.
class DataTexturePool : public DataPool {
public:
    // Out of line, where the held type is complete.
    DataTexturePool();
    ~DataTexturePool() override;

    void addTexture(std::string key, Texture* texture);
    // Wraps a texture object that already exists, made from the named file.
    void addTexture(std::string key, std::string file, unsigned int id);
    // The texture, or null when the key is absent.
    Texture* getTexture(const std::string& key) const { return textures.get(key); }
    bool exist(const std::string& key) const { return textures.has(key); }
    bool isFileInPool(const std::string& file) const { return fileMap.count(file) != 0; }
    // The OpenGL texture name, 0 when the key (or file) is unknown.
    unsigned int getTextureIDbyAlias(const std::string& key) const;
    unsigned int getTextureIDbyFilename(const std::string& file) const;
    std::map<std::string, std::string> getFilemap() const { return fileMap; }
    const std::map<std::string, Texture*>& getTextureMap() const { return textures.map(); }
    // The OpenGL texture names in key order.
    std::vector<unsigned int> getTexVector() const;
    long getTextureTotalMemsize() const;
    long getTextureTotalFilesize() const;
    int size() const override { return textures.size(); }
    std::string toString() const override;

private:
    KeyedObjects<Texture> textures;
    // File name to the key it was last added under.
    std::map<std::string, std::string> fileMap;
};
