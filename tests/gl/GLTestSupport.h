// Helpers of the OpenGL tests: reading pixels back and saving them for a look.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace gltest {

struct Rgba {
    int r, g, b, a;
    bool operator==(const Rgba& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
};
std::ostream& operator<<(std::ostream& out, const Rgba& c);

// The pixel at (x, y) of whatever framebuffer is bound, y counted from the bottom.
Rgba pixelAt(int x, int y);
// A block of RGBA bytes, bottom row first.
std::vector<unsigned char> readRgba(int x, int y, int width, int height);
// The same as floats, to see values outside 0..1.
std::vector<float> readRgbFloat(int x, int y, int width, int height);

// Writes bottom-row-first RGBA bytes as a PNG the right way up.
void savePng(const std::string& path, int width, int height,
             const std::vector<unsigned char>& rgba);

// Forgets every resource declaration a production made in the registry's lists.
void clearDeclarations();

// The screen bound, identity matrices, the given viewport, no shader, black clear colour, no
// blending or depth.
void resetState(int viewportWidth, int viewportHeight);

} // namespace gltest

namespace gltest {

// While alive, counts the calls the engine makes to glBindFramebufferEXT and glDrawBuffers:
// GLEW's entry points are swapped for wrappers that count and forward.
class GLCallCounter {
public:
    GLCallCounter();
    ~GLCallCounter();
    GLCallCounter(const GLCallCounter&) = delete;
    GLCallCounter& operator=(const GLCallCounter&) = delete;

    int framebufferBinds() const;
    int drawBuffersCalls() const;
};

} // namespace gltest
