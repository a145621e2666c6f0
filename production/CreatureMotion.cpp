#include "CreatureMotion.h"

#include "ParticleSystem.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

namespace {

const float NEAR_PLANE = 0.5f;
const float FAR_PLANE = 20.0f;

// The bell's polar angle at its margin: a little past a quarter turn, so the margin curls
// back in like a velum.
const float MARGIN_ANGLE = 1.7f;
// How far the margin closes (as a part of the radius) and the bell grows (as a part of its
// height) when fully contracted.
const float MARGIN_CLOSE = 0.34f;
const float CONTRACTED_GROWTH = 0.18f;

// The part of a pulse spent contracting; the rest relaxes.
const float CONTRACTION_PART = 0.2f;

const CreatureMotion::Colour TEAL{0.059f, 0.435f, 0.502f};
const CreatureMotion::Colour CYAN{0.62f, 0.94f, 1.0f};
const CreatureMotion::Colour WHITE{1.0f, 1.0f, 1.0f};

} // namespace

void CreatureMotion::loadView() {
    const float top = NEAR_PLANE / CAMERA_DISTANCE;
    glMatrixMode(GL_PROJECTION);
    glFrustum(-top * ASPECT, top * ASPECT, -top, top, NEAR_PLANE, FAR_PLANE);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0.0f, 0.0f, -CAMERA_DISTANCE);
}

// A picture's height is 2 units at z = 0, so one unit is half the reference width in
// pixels; the shader then divides by 1 + ATTENUATION * distance, which this undoes for
// sprites at the camera's distance.
float CreatureMotion::spritePixels(float worldSize) {
    return worldSize * 0.5f * ParticleSystem::REFERENCE_WIDTH *
           (1.0f + ATTENUATION * CAMERA_DISTANCE);
}

CreatureMotion::Vec3 CreatureMotion::picturePoint(float x, float y) {
    return Vec3(x * ASPECT, y, 0.0f);
}

float CreatureMotion::hash(unsigned int seed) {
    unsigned int h = seed * 0x9E3779B9u + 0x7F4A7C15u;
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    h ^= h >> 16;
    return static_cast<float>(h >> 8) / 16777216.0f;
}

float CreatureMotion::smoothstep(float edge0, float edge1, float x) {
    const float t = std::clamp((x - edge0) / (edge1 - edge0), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

float CreatureMotion::pulse(float phase) {
    const float f = phase - std::floor(phase);
    if (f < CONTRACTION_PART) {
        return smoothstep(0.0f, CONTRACTION_PART, f);
    }
    return 1.0f - smoothstep(CONTRACTION_PART, 1.0f, f);
}

CreatureMotion::Colour CreatureMotion::heatColour(float heat) {
    const float h = std::clamp(heat, 0.0f, 1.0f);
    return h < 0.5f ? mix(TEAL, CYAN, h * 2.0f) : mix(CYAN, WHITE, h * 2.0f - 1.0f);
}

CreatureMotion::Colour CreatureMotion::mix(const Colour& a, const Colour& b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

float CreatureMotion::length(const Vec3& v) {
    return std::sqrt(v.dotProduct(v));
}

CreatureMotion::Vec3 CreatureMotion::unit(const Vec3& v) {
    const float l = length(v);
    return l > 0.0f ? v * (1.0f / l) : v;
}

CreatureMotion::Vec3 CreatureMotion::pulledTo(const Vec3& v, float length, float stretch) {
    const float l = CreatureMotion::length(v);
    if (l <= 0.0f || length <= 0.0f) {
        return Vec3();
    }
    const float allowed = length * (1.0f + stretch * std::tanh((l / length - 1.0f) / stretch));
    return v * (allowed / l);
}

// The side direction is taken across the view direction, so a bell seen from the camera
// turns about an axis that stays steady as the creature tilts.
CreatureMotion::Frame CreatureMotion::frameAround(const Vec3& axis) {
    const Vec3 toCamera(0.0f, 0.0f, 1.0f);
    Vec3 side = axis.crossProduct(toCamera);
    if (length(side) < 1e-4f) {
        side = Vec3(1.0f, 0.0f, 0.0f);
    }
    side = unit(side);
    return {axis, side, side.crossProduct(axis)};
}

CreatureMotion::Vec3 CreatureMotion::inFrame(const Frame& frame, float side, float along,
                                             float across) {
    return frame.side * side + frame.axis * along + frame.across * across;
}

CreatureMotion::Vec3 CreatureMotion::bellPoint(float u, float cosAngle, float sinAngle,
                                               float height, float contraction) {
    const float polar = u * MARGIN_ANGLE;
    const float radius = std::sin(polar) * (1.0f - MARGIN_CLOSE * contraction * u * u);
    const float y = height * std::cos(polar) * (1.0f + CONTRACTED_GROWTH * contraction);
    return Vec3(radius * cosAngle, y, radius * sinAngle);
}
