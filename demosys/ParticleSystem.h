#pragma once

class Shader;
class Texture;

// A grid of width x height particles drawn as textured point sprites. The particles live in
// two vertex buffers that the owner rewrites by mapping them:
//
// - positions: 3 floats (x, y, z) per particle, in the model space of whatever matrices are
//   current when the sprites are drawn;
// - colours: 4 floats (r, g, b, a), 0 to 1, per particle.
//
// Particle (column i, row j) is element j * width + i of both buffers; the constructor lays
// the particles out on a grid in the x-y plane, spacing apart from the origin given, all white.
//
// Sizes: setPointSize takes a size in pixels of a REFERENCE_WIDTH-wide picture and scales it
// to the width of the picture drawn into, so a sprite covers the same part of the picture at
// any resolution. Sprites are square, centred on their particle.
//
// Drawing adds the sprites to the picture (additive blending weighted by alpha), so they never
// need sorting; depth is tested as the caller set it but never written. The sprite shader gets:
//   "sprite"      sampler2D on unit 0, read at gl_TexCoord[0] (the point-sprite coordinates);
//   "point_size"  the size in pixels of the picture drawn into;
//   "attenuation" the caller's distance attenuation (see drawPointSprites);
// and must write gl_PointSize, with the particle's colour in gl_Color.
class ParticleSystem {
public:
    // The width in pixels at which a sprite's size is its pixel size.
    static constexpr float REFERENCE_WIDTH = 1024.0f;

    ParticleSystem(int width, int height, float spacing, float x, float y, float z);
    ~ParticleSystem();
    ParticleSystem(const ParticleSystem&) = delete;
    ParticleSystem& operator=(const ParticleSystem&) = delete;

    int getWidth() const { return width; }
    int getHeight() const { return height; }
    int getCount() const { return width * height; }

    // Maps the buffer with the GL access (GL_WRITE_ONLY, GL_READ_ONLY, GL_READ_WRITE); its
    // pointer is valid until the matching close.
    void openVertexBuffer(unsigned int access);
    void closeVertexBuffer();
    void openColorBuffer(unsigned int access);
    void closeColorBuffer();
    float* getVertexPointer() const { return vertexPointer; }
    float* getColorPointer() const { return colorPointer; }

    // size in pixels at REFERENCE_WIDTH; targetWidth is the width of the picture drawn into,
    // where 0 (FBO::getWidth of the screen) stands for the screen's viewport.
    void setPointSize(float size, int targetWidth);
    // The sprite size in pixels of the picture drawn into.
    float getPointSize() const { return pixelSize; }

    // Draws every particle with the shader and sprite texture. With attenuation > 0 the shader
    // shrinks sprites with their eye distance d to point_size / (1 + attenuation * d); zero or
    // less keeps every sprite at point_size. A point size of zero draws nothing. GL state is
    // restored afterwards.
    void drawPointSprites(Shader* shader, Texture* sprite, float attenuation);

private:
    void fillGrid(float spacing, float x, float y, float z);

    int width;
    int height;
    unsigned int vertexBufferID = 0;
    unsigned int colorBufferID = 0;
    float* vertexPointer = nullptr;
    float* colorPointer = nullptr;
    float pixelSize = 1.0f;
};
