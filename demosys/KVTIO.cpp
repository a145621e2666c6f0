#include "KVTIO.h"

#include "Binary.h"
#include "File.h"

#include <iostream>

int KVTIO::ResourceType = KVTIO::KVT_RESOURCES_FLAT;
bool KVTIO::debug = false;

const std::string KVTIO::ScenePath = "resources/objects/";
const std::string KVTIO::TexturePath = "resources/graphics/";
const std::string KVTIO::MiscPath = "resources/misc/";
const std::string KVTIO::SoundPath = "resources/sound/";
const std::string KVTIO::ShaderPath = "resources/shaders/";
const std::string KVTIO::VideoPath = "resources/video/";
const std::string KVTIO::TrackPath = "resources/tracks/";

void KVTIO::init(int type) {
    ResourceType = type;
    debug = false;
}

File* KVTIO::openResource(const std::string& name, int type) {
    if (type == KVT_RESOURCES_FLAT) {
        return new File(name, File::READ);
    }
    return nullptr;
}

File* KVTIO::loadFile(std::string name, int type) {
    if (debug) {
        std::cout << "Loading file : " << name << std::endl;
    }
    return openResource(name, type);
}

File* KVTIO::loadFile(std::string name) {
    return loadFile(std::move(name), ResourceType);
}

File* KVTIO::loadTextFile(std::string name, int type) {
    if (debug) {
        std::cout << "Loading text file : " << name << std::endl;
    }
    return openResource(name, type);
}

File* KVTIO::loadTextFile(std::string name) {
    return loadTextFile(std::move(name), ResourceType);
}

Binary* KVTIO::loadBinary(std::string name, int type) {
    if (debug) {
        std::cout << "Loading binary file : " << name << std::endl;
    }
    File* file = openResource(name, type);
    Binary* binary = nullptr;
    if (file != nullptr && file->exists()) {
        binary = new Binary(file->getUnsigned());
    }
    delete file;
    return binary;
}

Binary* KVTIO::loadBinary(std::string name) {
    return loadBinary(std::move(name), ResourceType);
}
