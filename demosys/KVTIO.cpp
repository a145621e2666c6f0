#include "KVTIO.h"

#include "Binary.h"
#include "File.h"
#include "Image.h"
#include "Texture.h"
#include "archive/arc.h"

#include <GL/glew.h>

#include <GL/glu.h>

#include <algorithm>
#include <iostream>

int KVTIO::ResourceType = KVTIO::KVT_RESOURCES_FLAT;
std::string KVTIO::openingError;
bool KVTIO::debug = false;

const std::string KVTIO::ScenePath = "resources/objects/";
const std::string KVTIO::TexturePath = "resources/graphics/";
const std::string KVTIO::MiscPath = "resources/misc/";
const std::string KVTIO::SoundPath = "resources/sound/";
const std::string KVTIO::ShaderPath = "resources/shaders/";
const std::string KVTIO::VideoPath = "resources/video/";
const std::string KVTIO::TrackPath = "resources/tracks/";

namespace {
const char* const ARCHIVE_NAME = "resources.7z";
}

void KVTIO::init(int type) {
    ResourceType = type;
    openingError.clear();
    if (type == KVT_RESOURCES_7Z && !arc_load(ARCHIVE_NAME)) {
        openingError = arc_getError();
    }
    debug = false;
}

void KVTIO::destroy() {
    if (ResourceType == KVT_RESOURCES_7Z) {
        arc_close();
    }
}

File* KVTIO::openResource(const std::string& name, int type) {
    if (type == KVT_RESOURCES_FLAT) {
        return new File(name, File::READ);
    }
    if (type == KVT_RESOURCES_7Z) {
        File* file = new File(name);
        arc_getFile(file);
        return file;
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

namespace {

void setTextureFilters(GLenum target, bool mipmap) {
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

// Uploads RGB or RGBA pixels (other depths upload nothing), building the mipmap chain with
// GLU when asked. Rows are tightly packed, so the unpack alignment is 1 while uploading.
void uploadPixels(const Image& image, GLenum target, bool mipmap) {
    const int components = image.getBpp() == 32 ? 4 : image.getBpp() == 24 ? 3 : 0;
    if (components == 0) {
        return;
    }
    const GLenum format = components == 4 ? GL_RGBA : GL_RGB;
    const int width = image.getWidth();
    const int height = image.getHeight();
    const int length = std::max(width, height);
    const unsigned char* pixels = image.getData();
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    if (target == GL_TEXTURE_1D && mipmap) {
        gluBuild1DMipmaps(target, components, length, format, GL_UNSIGNED_BYTE, pixels);
    } else if (target == GL_TEXTURE_1D) {
        glTexImage1D(target, 0, format, length, 0, format, GL_UNSIGNED_BYTE, pixels);
    } else if (mipmap) {
        gluBuild2DMipmaps(target, components, width, height, format, GL_UNSIGNED_BYTE, pixels);
    } else {
        glTexImage2D(target, 0, format, width, height, 0, format, GL_UNSIGNED_BYTE, pixels);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

void printUploadErrors(const std::string& name) {
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
        const GLubyte* text = gluErrorString(error);
        std::cout << "[GL_ERROR] '" << (text != nullptr ? reinterpret_cast<const char*>(text) : "")
                  << "' in ->" << name << std::endl;
    }
}

Texture* uploadTexture(const Image& image, const std::string& name, unsigned int target,
                       bool mipmap) {
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(target, id);
    setTextureFilters(target, mipmap);
    uploadPixels(image, target, mipmap);
    glBindTexture(target, 0);
    printUploadErrors(name);

    Texture* texture = new Texture(name, id);
    texture->setSize(image.getWidth(), image.getHeight());
    texture->setBPP(image.getBpp());
    texture->setFileSize(static_cast<int>(image.getDataSize()));
    texture->setType(target);
    texture->isMipmapped(mipmap);
    return texture;
}

// The decoded picture of a loose file or an archive entry; exists() tells whether it worked.
Image readImage(const std::string& name, int type) {
    if (type == KVTIO::KVT_RESOURCES_FLAT) {
        return Image(name.c_str());
    }
    Image image;
    if (type == KVTIO::KVT_RESOURCES_7Z) {
        image.setFileName(name);
        arc_getImage(&image);
    }
    return image;
}

} // namespace

Texture* KVTIO::loadTexture(std::string name, unsigned int target, bool mipmap, int type) {
    if (debug) {
        std::cout << "Loading texture : " << name << std::endl;
    }
    const Image image = readImage(name, type);
    return image.exists() ? uploadTexture(image, name, target, mipmap) : nullptr;
}

Texture* KVTIO::loadTexture(std::string name, unsigned int target, bool mipmap) {
    return loadTexture(std::move(name), target, mipmap, ResourceType);
}
