#include "ParticleCreaturesEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "SpriteLayer.h"
#include "SpriteLevels.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

using Vec3 = CreatureMotion::Vec3;

// One member of the group: its depth, its place beside the leader and its own character.
struct ParticleCreaturesEffect::Individual {
    // z of its path: further ones look smaller and dimmer.
    float depth;
    // From the group's centre, in bell radii (before the perspective shrinks it).
    float offsetX, offsetY;
    // Pulses per unit of the pulse track, and where in its pulse it is at 0.
    float rate, phase;
    float tentacleLength;
    // The bell's height over its radius.
    float bellHeight;
    unsigned int seed;
};

const ParticleCreaturesEffect::Individual ParticleCreaturesEffect::GROUP[MAX_JELLYFISH] = {
    {0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 3.2f, 0.7f, 1u},
    {-1.4f, -2.9f, 1.5f, 0.87f, 0.43f, 2.6f, 0.62f, 2u},
    {-2.5f, 3.2f, -1.1f, 1.13f, 0.71f, 3.0f, 0.76f, 3u},
};

namespace {

const int BELL_RINGS = 11;
const int BELL_SEGMENTS = 40;
// Every fifth column of the bell is a radial canal: eight of them.
const int CANAL_SPACING = 5;
const int MARGIN_LIGHTS = 32;
const int GONADS = 4;
const int GONAD_POINTS = 12;
const int ARMS = 4;
const int ARM_POINTS = 24;
const int TENTACLES = 10;
const int TENTACLE_POINTS = 32;
const int SPRITES_EACH = BELL_RINGS * BELL_SEGMENTS + MARGIN_LIGHTS + GONADS * GONAD_POINTS +
                         ARMS * ARM_POINTS + TENTACLES * TENTACLE_POINTS;

// A tentacle's tip hangs where the bell was this long ago.
const float TRAIL_SECONDS = 1.6f;
// The oral arms are shorter and stiffer: they follow part of that.
const float ARM_TRAIL_PART = 0.5f;
// How far a tentacle may stretch (as a part of its length) when pulled along the trail.
const float STRETCH = 0.4f;
// The forward push of a full contraction, in bell radii.
const float SURGE = 0.3f;
// The velocity is measured over this long: how quickly the bell turns into its path.
const float STEERING_SECONDS = 0.8f;
// Tilt per unit of speed: the bell leans into the direction it drifts.
const float LEAN = 3.0f;
// The bells lean their tops a little towards the camera, showing the core and the round
// of the margin rather than a flat profile.
const float TOWARDS_CAMERA = 0.35f;
// Light fades with depth as exp(FOG * z).
const float FOG = 0.2f;
// Scales every sprite's alpha: the sprites are few enough that each must shine.
const float BRIGHTNESS = 2.4f;
// The sprites' sizes in bell radii.
const float FINE_SPRITE = 0.05f;
const float GLOW_SPRITE = 1.2f;

unsigned int millis(float seconds) {
    return seconds > 0.0f ? static_cast<unsigned int>(std::lround(seconds * 1000.0f)) : 0u;
}

} // namespace

ParticleCreaturesEffect::ParticleCreaturesEffect() = default;

ParticleCreaturesEffect::~ParticleCreaturesEffect() = default;

void ParticleCreaturesEffect::registerTracks() {
    addTrack("count", count);
    addTrack("x", x);
    addTrack("y", y);
    addTrack("size", size);
    addTrack("pulse", pulse);
}

void ParticleCreaturesEffect::init() {
    pictures = std::make_unique<SpriteLevels>(sprite);
    body = std::make_unique<SpriteLayer>(MAX_JELLYFISH * SPRITES_EACH);
    glow = std::make_unique<SpriteLayer>(MAX_JELLYFISH);
}

int ParticleCreaturesEffect::getSpriteCount() const {
    return body->getUsed() + glow->getUsed();
}

void ParticleCreaturesEffect::draw(unsigned int time, unsigned int, FBO* target) {
    FBO::bind(target);
    FBO::clearLater(target);

    const float seconds = static_cast<float>(time) * 0.001f;
    // The picture is two units high: a diameter in picture heights is a radius in units.
    const float radius = size->getValue(time);
    const float shown = count->getValue(time);
    const int width = FBO::getWidth(target);
    body->begin(FINE_SPRITE * radius, width);
    glow->begin(GLOW_SPRITE * radius, width);
    for (int k = 0; k < MAX_JELLYFISH && radius > 0.0f; ++k) {
        const float strength = std::clamp(shown - static_cast<float>(k), 0.0f, 1.0f);
        if (strength <= 0.0f) {
            break;
        }
        addJellyfish(poseAt(GROUP[k], radius, seconds, strength));
    }
    body->end();
    glow->end();

    Geometry::PushAllMatices();
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    CreatureMotion::loadView();
    glow->draw(shader, *pictures);
    body->draw(shader, *pictures);
    glPopAttrib();
    Geometry::PopAllMatrices();
}

float ParticleCreaturesEffect::trackValue(TrackInterpolate* track, float seconds) const {
    return track->getValue(millis(seconds));
}

float ParticleCreaturesEffect::phaseAt(const Individual& jelly, float seconds) const {
    return trackValue(pulse, seconds) * jelly.rate + jelly.phase;
}

// The path without the pulse's surge: the group's place from the tracks, the member's
// offset seen at its depth, and a slow wander of its own.
Vec3 ParticleCreaturesEffect::driftAt(const Individual& jelly, float radius, float seconds) const {
    const Vec3 centre =
        CreatureMotion::picturePoint(trackValue(x, seconds), trackValue(y, seconds));
    const float perspective =
        (CreatureMotion::CAMERA_DISTANCE - jelly.depth) / CreatureMotion::CAMERA_DISTANCE;
    const Vec3 offset(jelly.offsetX * radius, jelly.offsetY * radius, 0.0f);
    const float s = static_cast<float>(jelly.seed);
    const Vec3 wander(std::sin(0.29f * seconds + 1.3f * s),
                      0.7f * std::sin(0.23f * seconds + 2.1f * s),
                      0.8f * std::sin(0.17f * seconds + 0.7f * s));
    return (centre + offset) * perspective + Vec3(0.0f, 0.0f, jelly.depth) +
           wander * (0.8f * radius);
}

// Upright at rest, leaning into the drift and rocking gently. The weight of "up" grows
// with the speed, so even sinking straight down leaves the bell upright, never undefined.
Vec3 ParticleCreaturesEffect::axisAt(const Individual& jelly, float radius, float seconds) const {
    const Vec3 velocity =
        (driftAt(jelly, radius, seconds) - driftAt(jelly, radius, seconds - STEERING_SECONDS)) *
        (1.0f / STEERING_SECONDS);
    const float s = static_cast<float>(jelly.seed);
    const Vec3 rocking(0.14f * std::sin(0.37f * seconds + s), 0.0f,
                       TOWARDS_CAMERA + 0.14f * std::cos(0.31f * seconds + 2.0f * s));
    const Vec3 up(0.0f, 1.0f + LEAN * CreatureMotion::length(velocity), 0.0f);
    return CreatureMotion::unit(up + velocity * LEAN + rocking);
}

ParticleCreaturesEffect::Pose ParticleCreaturesEffect::poseAt(const Individual& jelly, float radius,
                                                              float seconds, float strength) const {
    Pose pose;
    pose.individual = &jelly;
    pose.radius = radius;
    pose.seconds = seconds;
    pose.phase = phaseAt(jelly, seconds);
    const Vec3 axis = axisAt(jelly, radius, seconds);
    pose.frame = CreatureMotion::frameAround(axis);
    pose.centre = driftAt(jelly, radius, seconds) +
                  axis * (SURGE * radius * CreatureMotion::pulse(pose.phase));
    pose.spin = 0.12f * seconds + static_cast<float>(jelly.seed);
    pose.strength = strength * std::exp(FOG * jelly.depth);
    return pose;
}

// The bell's past places, surge included, relative to where it is now. The past surges
// are taken along today's axis: the axis turns slowly next to how fast the bell pulses.
void ParticleCreaturesEffect::sampleTrail(const Pose& pose) {
    const Individual& jelly = *pose.individual;
    for (int m = 0; m < TRAIL_POINTS; ++m) {
        const float past = pose.seconds - TRAIL_SECONDS * static_cast<float>(m + 1) / TRAIL_POINTS;
        const float surge = SURGE * pose.radius * CreatureMotion::pulse(phaseAt(jelly, past));
        trail[m] = driftAt(jelly, pose.radius, past) + pose.frame.axis * surge - pose.centre;
    }
}

void ParticleCreaturesEffect::addJellyfish(const Pose& pose) {
    sampleTrail(pose);
    addTentacles(pose);
    addOralArms(pose);
    addBell(pose);
    addMargin(pose);
    addCore(pose);
}

Vec3 ParticleCreaturesEffect::trailing(const Pose& pose, const Vec3& anchor, float part,
                                       float reach) const {
    const float place = std::clamp(part * TRAIL_POINTS - 1.0f, 0.0f, TRAIL_POINTS - 1.0f);
    const int m = std::min(static_cast<int>(place), TRAIL_POINTS - 2);
    const Vec3 pulled = trail[m].linearInterpolate(trail[m + 1], place - static_cast<float>(m));
    return anchor + CreatureMotion::pulledTo(pulled - pose.frame.axis * reach, reach, STRETCH);
}

void ParticleCreaturesEffect::addSprite(const Pose& pose, const Vec3& position, float heat,
                                        float alpha) {
    body->add(position, CreatureMotion::heatColour(heat), BRIGHTNESS * alpha * pose.strength);
}

// Rings of sprites over the bell, a little scattered so no lattice shows, brighter along
// the eight canals and towards the margin; the contraction runs down from the apex.
void ParticleCreaturesEffect::addBell(const Pose& pose) {
    const Individual& jelly = *pose.individual;
    for (int i = 0; i < BELL_RINGS; ++i) {
        const float u = static_cast<float>(i + 1) / BELL_RINGS;
        const float contraction = CreatureMotion::pulse(pose.phase - 0.15f * u);
        const float marginGlow = CreatureMotion::smoothstep(0.75f, 1.0f, u);
        for (int j = 0; j < BELL_SEGMENTS; ++j) {
            const unsigned int id = (jelly.seed * BELL_RINGS + i) * BELL_SEGMENTS + j;
            const bool canal = j % CANAL_SPACING == 0;
            const float scatter = canal ? 0.0f : CreatureMotion::hash(id) - 0.5f;
            const float angle =
                CreatureMotion::TWO_PI * (static_cast<float>(j) + 0.6f * scatter) / BELL_SEGMENTS +
                pose.spin;
            const float along = std::min(1.0f, u - CreatureMotion::hash(id + 7919u) / BELL_RINGS);
            const Vec3 local = CreatureMotion::bellPoint(along, std::cos(angle), std::sin(angle),
                                                         jelly.bellHeight, contraction) *
                               pose.radius;
            const float heat =
                0.3f + (canal ? 0.3f : 0.0f) + 0.35f * marginGlow + 0.25f * contraction;
            // Rings near the apex are short: thinner there, so the apex does not glare.
            const float density = std::clamp(1.3f * std::sin(1.6f * u), 0.3f, 1.0f);
            const float alpha = (0.16f + (canal ? 0.16f : 0.0f) + 0.2f * marginGlow) * density;
            addSprite(pose,
                      pose.centre +
                          CreatureMotion::inFrame(pose.frame, local.x(), local.y(), local.z()),
                      heat, alpha);
        }
    }
}

// A string of lights round the margin that twinkle one after another.
void ParticleCreaturesEffect::addMargin(const Pose& pose) {
    const Individual& jelly = *pose.individual;
    const float contraction = CreatureMotion::pulse(pose.phase - 0.15f);
    for (int l = 0; l < MARGIN_LIGHTS; ++l) {
        const float angle =
            CreatureMotion::TWO_PI * (static_cast<float>(l) + 0.5f) / MARGIN_LIGHTS + pose.spin;
        const Vec3 local = CreatureMotion::bellPoint(1.0f, std::cos(angle), std::sin(angle),
                                                     jelly.bellHeight, contraction) *
                           pose.radius;
        const float twinkle =
            0.5f + 0.5f * std::sin(2.3f * pose.seconds + 1.7f * static_cast<float>(l));
        addSprite(pose,
                  pose.centre +
                      CreatureMotion::inFrame(pose.frame, local.x(), local.y(), local.z()),
                  0.7f + 0.25f * twinkle, 0.3f + 0.35f * twinkle);
    }
}

// Four horseshoes of light under the apex, the brightest part, in a soft glow.
void ParticleCreaturesEffect::addCore(const Pose& pose) {
    const Individual& jelly = *pose.individual;
    const float contraction = CreatureMotion::pulse(pose.phase);
    const float inward = 1.0f - 0.2f * contraction;
    const float along = 0.62f * jelly.bellHeight * pose.radius;
    for (int g = 0; g < GONADS; ++g) {
        const float around =
            pose.spin + CreatureMotion::TWO_PI * (static_cast<float>(g) + 0.5f) / GONADS;
        const float cx = 0.36f * inward * std::cos(around);
        const float cz = 0.36f * inward * std::sin(around);
        for (int p = 0; p < GONAD_POINTS; ++p) {
            // Four fifths of a loop, open towards the axis.
            const float a = around + 0.6f + 5.0f * static_cast<float>(p) / GONAD_POINTS;
            const float lx = (cx + 0.14f * std::cos(a)) * pose.radius;
            const float lz = (cz + 0.14f * std::sin(a)) * pose.radius;
            addSprite(pose, pose.centre + CreatureMotion::inFrame(pose.frame, lx, along, lz), 0.95f,
                      0.45f);
        }
    }
    glow->add(pose.centre + pose.frame.axis * (0.5f * jelly.bellHeight * pose.radius),
              CreatureMotion::heatColour(0.6f), (0.25f + 0.2f * contraction) * pose.strength);
}

// Frilled ribbons from under the bell: a short trailing line with sprites winding round it.
void ParticleCreaturesEffect::addOralArms(const Pose& pose) {
    const float length = 1.6f * pose.radius;
    for (int a = 0; a < ARMS; ++a) {
        const float around = pose.spin + CreatureMotion::TWO_PI * static_cast<float>(a) / ARMS;
        const Vec3 root =
            pose.centre +
            CreatureMotion::inFrame(pose.frame, 0.08f * pose.radius * std::cos(around),
                                    0.1f * pose.radius, 0.08f * pose.radius * std::sin(around));
        for (int p = 0; p < ARM_POINTS; ++p) {
            const float s = static_cast<float>(p + 1) / ARM_POINTS;
            const Vec3 line = trailing(pose, root, s * ARM_TRAIL_PART, s * length);
            const float wind = around + 9.0f * s - 1.3f * pose.seconds;
            const float frill = 0.12f * pose.radius * (1.0f - 0.6f * s) *
                                (0.8f + 0.2f * std::sin(40.0f * s + static_cast<float>(a)));
            const Vec3 position = line + CreatureMotion::inFrame(pose.frame, frill * std::cos(wind),
                                                                 0.0f, frill * std::sin(wind));
            addSprite(pose, position, 0.62f - 0.3f * s, 0.3f * (1.0f - 0.5f * s));
        }
    }
}

// Fine lines from the margin, splaying out a little, swaying, trailing the bell's path,
// with a few brighter stinging cells along them.
void ParticleCreaturesEffect::addTentacles(const Pose& pose) {
    const Individual& jelly = *pose.individual;
    const float contraction = CreatureMotion::pulse(pose.phase - 0.15f);
    for (int t = 0; t < TENTACLES; ++t) {
        const unsigned int id = jelly.seed * TENTACLES + t;
        const float around =
            pose.spin + CreatureMotion::TWO_PI * (static_cast<float>(t) + 0.5f) / TENTACLES;
        const float c = std::cos(around);
        const float sn = std::sin(around);
        const Vec3 rim =
            CreatureMotion::bellPoint(1.0f, c, sn, jelly.bellHeight, contraction) * pose.radius;
        const Vec3 root =
            pose.centre + CreatureMotion::inFrame(pose.frame, rim.x(), rim.y(), rim.z());
        const Vec3 outward = CreatureMotion::inFrame(pose.frame, c, 0.0f, sn);
        const float length =
            jelly.tentacleLength * pose.radius * (0.55f + 0.75f * CreatureMotion::hash(id));
        const float swayPhase = CreatureMotion::TWO_PI * CreatureMotion::hash(id + 31u);
        for (int p = 0; p < TENTACLE_POINTS; ++p) {
            // Closer together near the root, where the tentacle is bright.
            const float s = std::pow(static_cast<float>(p + 1) / TENTACLE_POINTS, 1.3f);
            const float wave =
                CreatureMotion::TWO_PI * (0.27f * pose.seconds - 1.1f * s) + swayPhase;
            const float sway = 0.5f * pose.radius * std::pow(s, 1.5f);
            const Vec3 position = trailing(pose, root, s, s * length) +
                                  outward * (0.3f * pose.radius * s * (1.0f - s)) +
                                  CreatureMotion::inFrame(pose.frame, sway * std::sin(wave), 0.0f,
                                                          sway * std::cos(0.83f * wave + 1.0f));
            const bool sting = CreatureMotion::hash(id * TENTACLE_POINTS + p + 101u) < 0.07f;
            const float heat = sting ? 0.75f : 0.18f + 0.3f * (1.0f - s);
            addSprite(pose, position, heat,
                      (sting ? 0.45f : 0.32f) * std::pow(1.0f - 0.9f * s, 1.2f));
        }
    }
}
