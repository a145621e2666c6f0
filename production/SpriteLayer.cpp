#include "SpriteLayer.h"

#include "ParticleSystem.h"
#include "SpriteLevels.h"

#include <GL/glew.h>

#include <algorithm>

namespace {

// Far outside the view at any creature's scale, so parked sprites are clipped away whole.
const float PARKED = 1.0e4f;

// The size in pixels of a sprite at the camera's distance, where the attenuation divides
// the point size by this.
float pixelsAtCamera(float pointSize) {
    return pointSize / (1.0f + CreatureMotion::ATTENUATION * CreatureMotion::CAMERA_DISTANCE);
}

} // namespace

SpriteLayer::SpriteLayer(int capacity)
    : particles(std::make_unique<ParticleSystem>(capacity, 1, 0.0f, PARKED, PARKED, 0.0f)) {}

SpriteLayer::~SpriteLayer() = default;

float SpriteLayer::getPixels() const {
    return pixelsAtCamera(particles->getPointSize());
}

int SpriteLayer::getCapacity() const {
    return particles->getCount();
}

void SpriteLayer::begin(float worldSize, int targetWidth) {
    const float asked = CreatureMotion::spritePixels(worldSize);
    particles->setPointSize(asked, targetWidth);
    const float pixels = pixelsAtCamera(particles->getPointSize());
    thinning = 1.0f;
    if (pixels > 0.0f && pixels < SMALLEST_PIXELS) {
        const float growth = SMALLEST_PIXELS / pixels;
        particles->setPointSize(asked * growth, targetWidth);
        thinning = 1.0f / (growth * growth);
    }
    particles->openVertexBuffer(GL_WRITE_ONLY);
    particles->openColorBuffer(GL_WRITE_ONLY);
    positions = particles->getVertexPointer();
    colours = particles->getColorPointer();
    used = 0;
}

void SpriteLayer::add(const CreatureMotion::Vec3& position, const CreatureMotion::Colour& colour,
                      float alpha) {
    if (used == getCapacity()) {
        return;
    }
    float* p = positions + used * 3;
    p[0] = position.x();
    p[1] = position.y();
    p[2] = position.z();
    float* c = colours + used * 4;
    c[0] = colour.r;
    c[1] = colour.g;
    c[2] = colour.b;
    c[3] = std::min(alpha, 1.0f) * thinning;
    ++used;
}

void SpriteLayer::end() {
    for (int i = used; i < getCapacity(); ++i) {
        float* p = positions + i * 3;
        p[0] = PARKED;
        p[1] = PARKED;
        p[2] = 0.0f;
        float* c = colours + i * 4;
        c[0] = c[1] = c[2] = c[3] = 0.0f;
    }
    particles->closeVertexBuffer();
    particles->closeColorBuffer();
    positions = nullptr;
    colours = nullptr;
}

void SpriteLayer::draw(Shader* shader, const SpriteLevels& picture) {
    if (used == 0) {
        return;
    }
    particles->drawPointSprites(shader, picture.forPixels(getPixels()),
                                CreatureMotion::ATTENUATION);
}
