#include "DataTexturePool.h"

#include "KVTUtils.h"
#include "Texture.h"

#include <iostream>

namespace {

std::string megabytes(long bytes) {
    return KVTUtils::float2string(static_cast<float>(bytes * 0.0009765625 * 0.0009765625));
}

} // namespace

DataTexturePool::DataTexturePool() = default;

DataTexturePool::~DataTexturePool() {
    std::cout << "[Dispose texturePool]" << std::endl;
}

void DataTexturePool::addTexture(std::string key, Texture* texture) {
    ++count;
    fileMap[texture->getFilename()] = key;
    textures.put(key, texture);
}

void DataTexturePool::addTexture(std::string key, std::string file, unsigned int id) {
    addTexture(std::move(key), new Texture(std::move(file), id));
}

unsigned int DataTexturePool::getTextureIDbyAlias(const std::string& key) const {
    const Texture* texture = textures.get(key);
    return texture != nullptr ? texture->getID() : 0;
}

unsigned int DataTexturePool::getTextureIDbyFilename(const std::string& file) const {
    auto found = fileMap.find(file);
    return found != fileMap.end() ? getTextureIDbyAlias(found->second) : 0;
}

std::vector<unsigned int> DataTexturePool::getTexVector() const {
    std::vector<unsigned int> ids;
    for (const auto& [key, texture] : textures.map()) {
        ids.push_back(texture->getID());
    }
    return ids;
}

long DataTexturePool::getTextureTotalMemsize() const {
    long total = 0;
    for (const auto& [key, texture] : textures.map()) {
        total += texture->getMemorySize();
    }
    return total;
}

long DataTexturePool::getTextureTotalFilesize() const {
    long total = 0;
    for (const auto& [key, texture] : textures.map()) {
        total += texture->getFileSize();
    }
    return total;
}

std::string DataTexturePool::toString() const {
    const long memory = getTextureTotalMemsize();
    const long files = getTextureTotalFilesize();
    std::string text = "DataTexturePool {\n";
    text += "    total memory size : " + megabytes(memory) + " MB - " + std::to_string(memory) +
            " bytes\n";
    text +=
        "    total file size : " + megabytes(files) + " mb - " + std::to_string(files) + " bytes\n";
    text += "    numTextures = " + std::to_string(count) + "\n";
    for (const auto& [key, texture] : textures.map()) {
        text += entryLine("    ", key, texture->toString());
    }
    return text + "}\n";
}
