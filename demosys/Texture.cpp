#include "Texture.h"

#include "Geometry.h"
#include "KVTDemosys.h"

#include <GL/glew.h>

Texture::Texture(std::string name, unsigned int textureId) : id(textureId), filename(name) {
    setDefaults();
}

Texture::Texture(int w, int h, int internalFormat, unsigned int format, unsigned int)
    : width(w), height(h) {
    setDefaults();
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, w, h, 0, format, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
}

Texture::Texture(int w, int h, unsigned int target, int internalFormat, unsigned int format,
                 const unsigned char* pixels)
    : width(w), height(h) {
    setDefaults();
    type = target;
    glGenTextures(1, &id);
    bind();
    KVTDemosys::glErrPrint(":init()");
    if (type == GL_TEXTURE_1D) {
        glTexImage1D(type, 0, internalFormat, w, 0, format, GL_UNSIGNED_BYTE, pixels);
    } else {
        glTexImage2D(type, 0, internalFormat, w, h, 0, format, GL_UNSIGNED_BYTE, pixels);
    }
    KVTDemosys::glErrPrint(":init()");
    release();
}

Texture::~Texture() {
    glDeleteTextures(1, &id);
}

void Texture::setDefaults() {
    type = GL_TEXTURE_2D;
    interpolation = GL_LINEAR;
    wrapS = GL_CLAMP_TO_EDGE;
    wrapT = GL_CLAMP_TO_EDGE;
    env = GL_REPLACE;
}

void Texture::updateTexture(int w, int h, int internalFormat, unsigned int format,
                            const unsigned char* pixels) {
    type = GL_TEXTURE_2D;
    interpolation = GL_LINEAR;
    mipmapped = false;
    bpp = 32;
    fileSize = 0;
    setSize(w, h);
    bind();
    glTexParameteri(type, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(type, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(type, 0, internalFormat, w, h, 0, format, GL_UNSIGNED_BYTE, pixels);
    release();
}

void Texture::bind() {
    glEnable(type);
    glBindTexture(type, id);
    const GLint minFilter = mipmapped ? GL_LINEAR_MIPMAP_LINEAR : interpolation;
    const GLint magFilter = mipmapped ? GL_LINEAR : interpolation;
    glTexParameteri(type, GL_TEXTURE_MIN_FILTER, minFilter);
    glTexParameteri(type, GL_TEXTURE_MAG_FILTER, magFilter);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, env);
    glTexParameteri(type, GL_TEXTURE_WRAP_S, wrapS);
    glTexParameteri(type, GL_TEXTURE_WRAP_T, wrapT);
}

void Texture::release() {
    glBindTexture(type, 0);
    glDisable(type);
}

void Texture::drawQuad(float left, float top, float right, float bottom) {
    bind();
    glBegin(GL_QUADS);
    glTexCoord2f(0, 1);
    glVertex2f(left, top);
    glTexCoord2f(0, 0);
    glVertex2f(left, bottom);
    glTexCoord2f(1, 0);
    glVertex2f(right, bottom);
    glTexCoord2f(1, 1);
    glVertex2f(right, top);
    glEnd();
    release();
}

void Texture::drawQuadScaled(Vector<float, 2> size) {
    drawQuadScaled(size, Vector<float, 2>(0, 0));
}

void Texture::drawQuadScaled(Vector<float, 2> size, Vector<float, 2> position) {
    const float halfW = size.x() / 2;
    const float halfH = size.y() / 2;
    drawQuad(position.x() - halfW, position.y() + halfH, position.x() + halfW,
             position.y() - halfH);
}

void Texture::drawQuadFS() {
    Geometry::PushAllMatices();
    drawQuad(-1, 1, 1, -1);
    Geometry::PopAllMatrices();
}

void Texture::drawBlended(unsigned int srcFactor, unsigned int dstFactor, float left, float top,
                          float right, float bottom) {
    Geometry::PushAllMatices();
    glEnable(GL_BLEND);
    glBlendFunc(srcFactor, dstFactor);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0);
    drawQuad(left, top, right, bottom);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_BLEND);
    Geometry::PopAllMatrices();
}

void Texture::drawQuadBlendFS(unsigned int srcFactor, unsigned int dstFactor) {
    drawBlended(srcFactor, dstFactor, -1, 1, 1, -1);
}

void Texture::drawQuadScaledBlend(unsigned int srcFactor, unsigned int dstFactor,
                                  Vector<float, 2> size, Vector<float, 2> position) {
    drawBlended(srcFactor, dstFactor, position.x(), position.y(), position.x() + size.x(),
                position.y() - size.y());
}

std::string Texture::toString() const {
    std::string text = "Texture {file='" + filename + "',id=" + std::to_string(id) + "',size='" +
                       std::to_string(width) + "," + std::to_string(height) + "',bpp='" +
                       std::to_string(bpp) + "'";
    if (mipmapped) {
        text += " mipmapped ";
    }
    text += "dimtype=";
    if (type == GL_TEXTURE_1D) {
        text += "GL_TEXTURE_1D ";
    } else if (type == GL_TEXTURE_2D) {
        text += "GL_TEXTURE_2D ";
    } else if (type == GL_TEXTURE_3D) {
        text += "GL_TEXTURE_3D ";
    }
    return text + "}\n";
}
