#include "FBO.h"

#include "Geometry.h"
#include "KVTDemosys.h"
#include "ScreenMetrics.h"
#include "Texture.h"

#include <GL/glew.h>

#include <iostream>

namespace {

// currentFBO after the bound framebuffer was deleted: matches no name, so the next bind of
// anything (the screen included) really binds.
const unsigned int UNKNOWN_BINDING = ~0u;

std::string statusMessage(GLenum status) {
    switch (status) {
    case GL_FRAMEBUFFER_COMPLETE_EXT:
        return "Framebuffer is complete.";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT_EXT:
        return "Framebuffer incomplete attachment";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT:
        return "Framebuffer missing attachment";
    case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
        return "Framebuffer unsupported dimension.";
    case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
        return "Framebuffer incoplete formats.";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT:
        return "Framebuffer incomplete draw buffer.";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT:
        return "Framebuffer incomplete read buffer";
    case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
        return "Framebuffer unsupported. Try another format.";
    default:
        return "Unknown framebuffer errror.";
    }
}

} // namespace

unsigned int FBO::currentFBO = 0;

FBO::FBO(int w, int h, bool withDepth, bool withStencil, int internalFormat, unsigned int,
         unsigned int)
    : depth(withDepth), stencil(withStencil), width(w), height(h) {
    glGenFramebuffersEXT(1, &id);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    attachColorTexture(new Texture(w, h, internalFormat, GL_RGBA, GL_UNSIGNED_BYTE));
    if (depth) {
        attachDepthTexture(
            new Texture(w, h, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_BYTE));
    }
    internal_fbo_status();
    restoreCurrentBinding();
}

FBO::FBO(int w, int h) : width(w), height(h) {
    glGenFramebuffersEXT(1, &id);
}

FBO::~FBO() {
    for (Texture* texture : colorBuffers) {
        delete texture;
    }
    delete depthBuffer;
    if (id != 0) {
        glDeleteFramebuffersEXT(1, &id);
    }
    if (currentFBO == id) {
        currentFBO = UNKNOWN_BINDING;
    }
}

void FBO::attachColorTexture(Texture* texture) {
    const GLenum attachment = GL_COLOR_ATTACHMENT0_EXT + static_cast<GLenum>(colorBuffers.size());
    colorBuffers.push_back(texture);
    drawBuffers.push_back(attachment);
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, attachment, GL_TEXTURE_2D, texture->getID(), 0);
}

void FBO::attachDepthTexture(Texture* texture) {
    delete depthBuffer;
    depthBuffer = texture;
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT, GL_TEXTURE_2D,
                              texture->getID(), 0);
}

void FBO::restoreCurrentBinding() {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, currentFBO == UNKNOWN_BINDING ? 0 : currentFBO);
}

void FBO::addColorTextureBuffer(unsigned int internalFormat, unsigned int format) {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    attachColorTexture(
        new Texture(width, height, static_cast<int>(internalFormat), format, GL_UNSIGNED_BYTE));
    restoreCurrentBinding();
}

void FBO::setDepthTexture(unsigned int internalFormat, unsigned int format) {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    attachDepthTexture(
        new Texture(width, height, static_cast<int>(internalFormat), format, GL_UNSIGNED_BYTE));
    depth = true;
    restoreCurrentBinding();
}

void FBO::bindScreen() {
    if (currentFBO == 0) {
        return;
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
    if (const ScreenMetrics* metrics = KVTDemosys::screenMetrics) {
        glViewport(metrics->getViewportX(), metrics->getViewportY(), metrics->getViewportWidth(),
                   metrics->getViewportHeight());
    }
    currentFBO = 0;
}

void FBO::internal_bind() {
    if (internal_is_bound()) {
        return;
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    glViewport(0, 0, width, height);
    currentFBO = id;
    if (colorBuffers.size() >= 2) {
        glDrawBuffers(static_cast<GLsizei>(drawBuffers.size()), drawBuffers.data());
    }
}

void FBO::internal_clear() {
    internal_bind();
    glClear(depthBuffer != nullptr ? GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT
                                   : GL_COLOR_BUFFER_BIT);
    clearFlag = false;
}

void FBO::internal_draw() {
    internal_draw(1.0f);
}

void FBO::internal_draw(float s) {
    if (!valid) {
        return;
    }
    GLint matrixMode = GL_MODELVIEW;
    glGetIntegerv(GL_MATRIX_MODE, &matrixMode);
    Geometry::PushAllMatices();

    Texture* texture = colorBuffers[0];
    texture->bind();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 1);
    glVertex2f(-s, s);
    glTexCoord2f(0, 0);
    glVertex2f(-s, -s);
    glTexCoord2f(1, 0);
    glVertex2f(s, -s);
    glTexCoord2f(1, 1);
    glVertex2f(s, s);
    glEnd();
    texture->release();

    Geometry::PopAllMatrices();
    glMatrixMode(matrixMode);
}

void FBO::internal_bind_color_buffer() {
    if (valid) {
        colorBuffers[0]->bind();
    }
}

bool FBO::internal_fbo_status() {
    const GLenum status = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT);
    errorMessage = statusMessage(status);
    valid = status == GL_FRAMEBUFFER_COMPLETE_EXT;
    if (!valid) {
        std::cout << "FBO " << errorMessage << "(" << status << ") = false" << std::endl;
    }
    return valid;
}

std::string FBO::internal_to_string() const {
    return "FBO(" + std::to_string(width) + "," + std::to_string(height) + ",COLOR_BUFFER" +
           (depth ? ",DEPTH_BUFFER" : "") + (stencil ? ",STENCIL_BUFFER" : "") + ")";
}

void FBO::bind(FBO* fbo) {
    if (fbo != nullptr) {
        fbo->internal_bind();
    } else {
        bindScreen();
    }
}

void FBO::clearLater(FBO* fbo) {
    if (fbo != nullptr) {
        fbo->internal_set_clear_flag();
    }
}

void FBO::clearNow(FBO* fbo) {
    if (fbo != nullptr) {
        fbo->internal_clear();
    }
}

bool FBO::hasClearFlag(FBO* fbo) {
    return fbo != nullptr && fbo->internal_has_clear_flag();
}

void FBO::draw(FBO* fbo) {
    if (fbo != nullptr) {
        fbo->internal_draw();
    }
}

void FBO::draw(FBO* fbo, float halfSize) {
    if (fbo != nullptr) {
        fbo->internal_draw(halfSize);
    }
}

void FBO::bindColorBuffer(FBO* fbo) {
    if (fbo != nullptr) {
        fbo->internal_bind_color_buffer();
    }
}

Texture* FBO::getColorBuffer(FBO* fbo, int index) {
    return fbo != nullptr ? fbo->internal_get_color_buffer(index) : nullptr;
}

Texture* FBO::getDepthBuffer(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_get_depth_buffer() : nullptr;
}

int FBO::getWidth(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_get_width() : 0;
}

int FBO::getHeight(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_get_height() : 0;
}

unsigned int FBO::getID(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_get_id() : 0;
}

bool FBO::isValid(FBO* fbo) {
    return fbo != nullptr && fbo->internal_is_valid();
}

std::string FBO::getErrorMessage(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_get_error_message() : "unknown";
}

bool FBO::fboStatus(FBO* fbo) {
    return fbo != nullptr && fbo->internal_fbo_status();
}

std::string FBO::toString(FBO* fbo) {
    return fbo != nullptr ? fbo->internal_to_string() : "** screen or nullpointer**";
}
