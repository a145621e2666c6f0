#pragma once

#include "CreatureMotion.h"

#include <memory>

class ParticleSystem;
class Shader;
class SpriteLevels;

// A fixed number of point sprites of one size that a creature rewrites every frame: between
// begin() and end() it adds particles one by one into the mapped buffers; end() parks the
// slots left over outside the view, fully transparent, so a frame may use any number up to
// the capacity without allocating. Drawn through the engine's ParticleSystem (additive).
//
// Sprites are never drawn smaller than SMALLEST_PIXELS across (in small framebuffers they
// would flicker as they cross pixel centres): below that they keep that size and their
// light is thinned by the area they gained, so the picture's brightness stays the same.
class SpriteLayer {
public:
    // Needs a current OpenGL context: the buffers are made here.
    explicit SpriteLayer(int capacity);
    ~SpriteLayer();
    SpriteLayer(const SpriteLayer&) = delete;
    SpriteLayer& operator=(const SpriteLayer&) = delete;

    static constexpr float SMALLEST_PIXELS = 2.0f;

    // Starts a frame of sprites each worldSize units high at z = 0 (nearer ones larger) for
    // a target of the given width (0: the screen).
    void begin(float worldSize, int targetWidth);
    // Alpha above 1 counts as 1, as OpenGL clamps it. Ignored once the layer is full.
    void add(const CreatureMotion::Vec3& position, const CreatureMotion::Colour& colour,
             float alpha);
    void end();

    // Draws the sprites added since begin into the bound target, with the level of the
    // sprite picture that suits their size; nothing when none was added.
    void draw(Shader* shader, const SpriteLevels& picture);

    int getCapacity() const;
    // The sprites' size in pixels at the camera's distance, as drawn.
    float getPixels() const;
    // The particles added in the last frame.
    int getUsed() const { return used; }

private:
    std::unique_ptr<ParticleSystem> particles;
    float* positions = nullptr;
    float* colours = nullptr;
    int used = 0;
    // The alpha factor that makes up for sprites drawn larger than asked.
    float thinning = 1.0f;
};
