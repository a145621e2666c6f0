#include "GLTestSupport.h"

#include "FBO.h"
#include "KVTDemosys.h"

#include <GL/glew.h>

#include <stb_image_write.h>

namespace gltest {

std::ostream& operator<<(std::ostream& out, const Rgba& c) {
    return out << "(" << c.r << "," << c.g << "," << c.b << "," << c.a << ")";
}

Rgba pixelAt(int x, int y) {
    const std::vector<unsigned char> p = readRgba(x, y, 1, 1);
    return Rgba{p[0], p[1], p[2], p[3]};
}

std::vector<unsigned char> readRgba(int x, int y, int width, int height) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

std::vector<float> readRgbFloat(int x, int y, int width, int height) {
    std::vector<float> pixels(static_cast<std::size_t>(width) * height * 3);
    glReadPixels(x, y, width, height, GL_RGB, GL_FLOAT, pixels.data());
    return pixels;
}

void savePng(const std::string& path, int width, int height,
             const std::vector<unsigned char>& rgba) {
    const std::size_t stride = static_cast<std::size_t>(width) * 4;
    std::vector<unsigned char> topFirst;
    for (int row = height - 1; row >= 0; --row) {
        topFirst.insert(topFirst.end(), rgba.begin() + stride * row,
                        rgba.begin() + stride * (row + 1));
    }
    stbi_write_png(path.c_str(), width, height, 4, topFirst.data(), static_cast<int>(stride));
}

void clearDeclarations() {
    KVTDemosys::TextureList.clear();
    KVTDemosys::ShaderList.clear();
    KVTDemosys::SceneList.clear();
    KVTDemosys::AnimationList.clear();
    KVTDemosys::BinaryList.clear();
    KVTDemosys::VideoList.clear();
    KVTDemosys::MusicFile.clear();
}

void resetState(int viewportWidth, int viewportHeight) {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
    FBO::currentFBO = 0;
    glUseProgram(0);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glViewport(0, 0, viewportWidth, viewportHeight);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_ALPHA_TEST);
    glClearColor(0, 0, 0, 0);
    glColor4f(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

} // namespace gltest

namespace gltest {

namespace {

PFNGLBINDFRAMEBUFFEREXTPROC realBindFramebuffer = nullptr;
PFNGLDRAWBUFFERSPROC realDrawBuffers = nullptr;
int bindCount = 0;
int drawBuffersCount = 0;

void GLAPIENTRY countingBindFramebuffer(GLenum target, GLuint framebuffer) {
    ++bindCount;
    realBindFramebuffer(target, framebuffer);
}

void GLAPIENTRY countingDrawBuffers(GLsizei n, const GLenum* buffers) {
    ++drawBuffersCount;
    realDrawBuffers(n, buffers);
}

} // namespace

GLCallCounter::GLCallCounter() {
    bindCount = 0;
    drawBuffersCount = 0;
    realBindFramebuffer = __glewBindFramebufferEXT;
    realDrawBuffers = __glewDrawBuffers;
    __glewBindFramebufferEXT = countingBindFramebuffer;
    __glewDrawBuffers = countingDrawBuffers;
}

GLCallCounter::~GLCallCounter() {
    __glewBindFramebufferEXT = realBindFramebuffer;
    __glewDrawBuffers = realDrawBuffers;
}

int GLCallCounter::framebufferBinds() const {
    return bindCount;
}

int GLCallCounter::drawBuffersCalls() const {
    return drawBuffersCount;
}

} // namespace gltest
