#include "ParticleCreatures2Effect.h"

#include "FBO.h"
#include "Geometry.h"
#include "SpriteLayer.h"
#include "SpriteLevels.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

using Vec3 = CreatureMotion::Vec3;

namespace {

const float NODE_SECONDS = 0.05f;
// The head sweeps a figure of eight in this long, and coils round its course in this long.
const float SWEEP_SECONDS = 16.0f;
const float COIL_SECONDS = 3.2f;
// The coil's radius, in course radii.
const float COIL = 0.07f;

const int BELL_RINGS = 6;
const int BELL_SEGMENTS = 20;
const int FLOAT_POINTS = 8;
const int CUP_RINGS = 2;
const int CUP_SEGMENTS = 10;
const int FILAMENTS = 2;
const int FILAMENT_POINTS = 18;
// The float's glow and one for each swimming bell.
const int HEAD_GLOWS = 3;
const int HEAD_SPRITES = 2 * BELL_RINGS * BELL_SEGMENTS + FLOAT_POINTS;
// The cup, its core and the filaments.
const int BODY_SPRITES = CUP_RINGS * CUP_SEGMENTS + 1 + FILAMENTS * FILAMENT_POINTS;

// The light wave runs this many pulses behind from one body to the next.
const float WAVE_DELAY = 0.025f;
// How far a filament follows the chain's motion rather than hanging.
const float FILAMENT_PULL = 0.35f;
// How far a filament may stretch (as a part of its length) when pulled along.
const float STRETCH = 0.4f;
// The forward push of the swimming bells, in course radii.
const float SURGE = 0.1f;
// Sizes in course radii.
const float FINE_SPRITE = 0.022f;
const float HALO_SPRITE = 0.14f;
// Large enough that the rings of neighbouring stem sprites touch in one thread.
const float STEM_SPRITE = 0.05f;
const float BODY_RADIUS = 0.07f;
const float BELL_RADIUS = 0.12f;
const float FILAMENT_LENGTH = 0.6f;

// The lures: every third a touch of Quillet's violet.
const CreatureMotion::Colour VIOLET{0.8f, 0.65f, 1.0f};

unsigned int millis(float seconds) {
    return seconds > 0.0f ? static_cast<unsigned int>(std::lround(seconds * 1000.0f)) : 0u;
}

} // namespace

ParticleCreatures2Effect::ParticleCreatures2Effect() = default;

ParticleCreatures2Effect::~ParticleCreatures2Effect() = default;

void ParticleCreatures2Effect::registerTracks() {
    addTrack("count", count);
    addTrack("x", x);
    addTrack("y", y);
    addTrack("size", size);
    addTrack("pulse", pulse);
    addTrack("spread", spread);
}

void ParticleCreatures2Effect::init() {
    pictures = std::make_unique<SpriteLevels>(sprite);
    body = std::make_unique<SpriteLayer>(HEAD_SPRITES + MAX_BODIES * BODY_SPRITES);
    halo = std::make_unique<SpriteLayer>(MAX_BODIES + HEAD_GLOWS);
    stem = std::make_unique<SpriteLayer>(MAX_BODIES * NODES_PER_BODY);
}

int ParticleCreatures2Effect::getSpriteCount() const {
    return body->getUsed() + halo->getUsed() + stem->getUsed();
}

void ParticleCreatures2Effect::draw(unsigned int time, unsigned int, FBO* target) {
    FBO::bind(target);
    FBO::clearLater(target);

    Moment moment;
    moment.seconds = static_cast<float>(time) * 0.001f;
    // The picture is two units high: a diameter in picture heights is a radius in units.
    moment.scale = size->getValue(time);
    moment.phase = pulse->getValue(time);
    moment.apart = std::max(0.0f, spread->getValue(time));
    const float shown = std::min(count->getValue(time), static_cast<float>(MAX_BODIES));

    const int width = FBO::getWidth(target);
    body->begin(FINE_SPRITE * moment.scale, width);
    halo->begin(HALO_SPRITE * moment.scale, width);
    stem->begin(STEM_SPRITE * moment.scale, width);
    if (moment.scale > 0.0f && shown > 0.0f) {
        sampleCourse(moment);
        addHead(moment, std::min(shown, 1.0f));
        const int bodies = static_cast<int>(std::ceil(shown));
        addStem(moment, bodies, shown);
        for (int j = 0; j < bodies; ++j) {
            addBody(moment, j, std::clamp(shown - static_cast<float>(j), 0.0f, 1.0f));
        }
    }
    body->end();
    halo->end();
    stem->end();

    Geometry::PushAllMatices();
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    CreatureMotion::loadView();
    halo->draw(shader, *pictures);
    stem->draw(shader, *pictures);
    body->draw(shader, *pictures);
    glPopAttrib();
    Geometry::PopAllMatrices();
}

float ParticleCreatures2Effect::trackValue(TrackInterpolate* track, float seconds) const {
    return track->getValue(millis(seconds));
}

// A slow figure of eight around the tracks' place, leaning in depth, with a tight coil
// wound round it: the chain behind the head shows a long sweeping curve that spirals.
Vec3 ParticleCreatures2Effect::courseAt(float scale, float seconds) const {
    const float a = CreatureMotion::TWO_PI * seconds / SWEEP_SECONDS;
    const Vec3 sweep(std::sin(a), 0.45f * std::sin(2.0f * a + 0.6f), 0.6f * std::cos(a));
    const Vec3 tangent = CreatureMotion::unit(
        Vec3(std::cos(a), 0.9f * std::cos(2.0f * a + 0.6f), -0.6f * std::sin(a)));
    const CreatureMotion::Frame round = CreatureMotion::frameAround(tangent);
    const float b = CreatureMotion::TWO_PI * seconds / COIL_SECONDS;
    const Vec3 coil = (round.side * std::cos(b) + round.across * std::sin(b)) * COIL;
    const Vec3 wander(0.12f * std::sin(0.33f * seconds + 1.3f),
                      0.1f * std::sin(0.27f * seconds + 0.4f), 0.0f);
    const Vec3 centre =
        CreatureMotion::picturePoint(trackValue(x, seconds), trackValue(y, seconds));
    return centre + (sweep + coil + wander) * scale;
}

// The course with each pulse's surge: the bells push the head forward and it eases back.
Vec3 ParticleCreatures2Effect::headAt(float scale, float seconds) const {
    const Vec3 here = courseAt(scale, seconds);
    const Vec3 forward = CreatureMotion::unit(here - courseAt(scale, seconds - NODE_SECONDS));
    const float push = CreatureMotion::pulse(trackValue(pulse, seconds));
    return here + forward * (SURGE * scale * push);
}

void ParticleCreatures2Effect::sampleCourse(const Moment& moment) {
    for (int n = 0; n < NODES; ++n) {
        course[n] = headAt(moment.scale, moment.seconds - NODE_SECONDS * static_cast<float>(n));
    }
}

Vec3 ParticleCreatures2Effect::nodeAt(float place) const {
    const float p = std::clamp(place, 0.0f, static_cast<float>(NODES - 1));
    const int n = std::min(static_cast<int>(p), NODES - 2);
    return course[n].linearInterpolate(course[n + 1], p - static_cast<float>(n));
}

Vec3 ParticleCreatures2Effect::backwardsAt(int node) const {
    const int before = std::max(node - 1, 0);
    const int after = std::min(node + 1, NODES - 1);
    const Vec3 along = course[after] - course[before];
    return CreatureMotion::length(along) > 0.0f ? CreatureMotion::unit(along)
                                                : Vec3(1.0f, 0.0f, 0.0f);
}

// How lit up a place of the chain is (in bodies from the head): each pulse sends a wave
// of light from the head to the tail.
float ParticleCreatures2Effect::flashAt(const Moment& moment, float body) const {
    return CreatureMotion::pulse(moment.phase - WAVE_DELAY * std::max(body, 0.0f));
}

// A slowly turning direction of its own for each seed, as far as the spread reaches.
Vec3 ParticleCreatures2Effect::scatter(unsigned int seed, const Moment& moment, float reach) const {
    if (moment.apart <= 0.0f) {
        return Vec3();
    }
    const float turn = CreatureMotion::TWO_PI * CreatureMotion::hash(seed) + 0.2f * moment.seconds;
    const float z = 2.0f * CreatureMotion::hash(seed + 1u) - 1.0f;
    const float ring = std::sqrt(1.0f - z * z);
    const float distance = 0.4f + 0.8f * CreatureMotion::hash(seed + 2u);
    return Vec3(ring * std::cos(turn), ring * std::sin(turn), z) *
           (moment.apart * reach * distance);
}

// Two elongated bells that beat on the pulse and a bright float ahead of them.
void ParticleCreatures2Effect::addHead(const Moment& moment, float strength) {
    const Vec3 forward = backwardsAt(0) * -1.0f;
    const CreatureMotion::Frame axes = CreatureMotion::frameAround(forward);
    const Vec3 head = course[0] + scatter(9001u, moment, 0.5f * moment.scale);
    const float s = moment.scale;
    addSwimmingBell(moment, head + forward * (0.1f * s) + axes.side * (0.05f * s), axes,
                    CreatureMotion::pulse(moment.phase), strength);
    addSwimmingBell(moment, head - forward * (0.06f * s) - axes.side * (0.05f * s), axes,
                    CreatureMotion::pulse(moment.phase - 0.1f), strength);

    const Vec3 tip = head + forward * (0.24f * s);
    for (int p = 0; p < FLOAT_POINTS; ++p) {
        const float a = CreatureMotion::TWO_PI * static_cast<float>(p) / FLOAT_POINTS;
        const float r = 0.025f * s;
        body->add(tip + CreatureMotion::inFrame(axes, r * std::cos(a), 0.0f, r * std::sin(a)),
                  CreatureMotion::heatColour(1.0f), 0.5f * strength);
    }
    halo->add(tip, CreatureMotion::heatColour(0.7f), 0.5f * strength);
}

void ParticleCreatures2Effect::addSwimmingBell(const Moment& moment, const Vec3& centre,
                                               const CreatureMotion::Frame& axes, float contraction,
                                               float strength) {
    const float radius = BELL_RADIUS * moment.scale;
    const float spin = 0.4f * moment.seconds;
    for (int i = 0; i < BELL_RINGS; ++i) {
        const float u = static_cast<float>(i + 1) / BELL_RINGS;
        for (int j = 0; j < BELL_SEGMENTS; ++j) {
            const float angle =
                CreatureMotion::TWO_PI * static_cast<float>(j) / BELL_SEGMENTS + spin;
            const Vec3 local =
                CreatureMotion::bellPoint(u, std::cos(angle), std::sin(angle), 1.4f, contraction) *
                radius;
            const float heat = 0.4f + 0.3f * u + 0.3f * contraction;
            body->add(centre + CreatureMotion::inFrame(axes, local.x(), local.y(), local.z()),
                      CreatureMotion::heatColour(heat), (0.35f + 0.2f * u) * strength);
        }
    }
    halo->add(centre + axes.axis * (0.6f * radius),
              CreatureMotion::heatColour(0.5f + 0.4f * contraction),
              (0.4f + 0.4f * contraction) * strength);
}

// A cup pointing the way the chain swims, a bright core, two filaments; it swells and
// brightens as the light wave passes. Bodies taper towards the tail.
void ParticleCreatures2Effect::addBody(const Moment& moment, int index, float strength) {
    const int node = (index + 1) * NODES_PER_BODY;
    const unsigned int seed = static_cast<unsigned int>(index) * 977u;
    const Vec3 centre = course[node] + scatter(seed, moment, moment.scale);
    const CreatureMotion::Frame axes = CreatureMotion::frameAround(backwardsAt(node) * -1.0f);
    const float taper = 1.0f - 0.5f * static_cast<float>(index) / MAX_BODIES;
    const float flash = flashAt(moment, static_cast<float>(index));
    const float radius = BODY_RADIUS * moment.scale * taper * (1.0f + 0.4f * flash);
    const float spin = 0.5f * moment.seconds + static_cast<float>(index);
    const float loose = 0.15f * moment.scale;

    for (int i = 0; i < CUP_RINGS; ++i) {
        const float u = 0.4f + 0.6f * static_cast<float>(i) / (CUP_RINGS - 1);
        for (int k = 0; k < CUP_SEGMENTS; ++k) {
            const float angle =
                CreatureMotion::TWO_PI * static_cast<float>(k) / CUP_SEGMENTS + spin;
            const Vec3 local =
                CreatureMotion::bellPoint(u, std::cos(angle), std::sin(angle), 1.1f, flash) *
                radius;
            const unsigned int id = seed + static_cast<unsigned int>(i * CUP_SEGMENTS + k) * 13u;
            body->add(centre + CreatureMotion::inFrame(axes, local.x(), local.y(), local.z()) +
                          scatter(id + 5u, moment, loose),
                      CreatureMotion::heatColour(0.45f + 0.3f * u + 0.25f * flash),
                      (0.2f + 0.5f * flash) * strength);
        }
    }
    body->add(centre, CreatureMotion::heatColour(1.0f), 0.8f * strength);
    halo->add(centre, CreatureMotion::heatColour(0.6f + 0.4f * flash),
              (0.35f + 0.65f * flash) * taper * strength);

    const float length = FILAMENT_LENGTH * moment.scale * taper;
    for (int f = 0; f < FILAMENTS; ++f) {
        const float side = f == 0 ? 0.5f : -0.5f;
        const Vec3 root = centre + axes.side * (side * radius) - axes.axis * (0.3f * radius);
        const unsigned int filamentSeed = seed + 400u + static_cast<unsigned int>(f);
        const CreatureMotion::Colour lure =
            index % 3 == 1 && f == 0 ? VIOLET : CreatureMotion::heatColour(0.95f);
        addFilament(moment, node, root, filamentSeed,
                    length * (0.7f + 0.6f * CreatureMotion::hash(filamentSeed)), lure,
                    (0.6f + 0.4f * flash) * strength);
    }
}

// A line hanging from the body, pulled along where the chain has just been, swaying, with a
// lure of light at its tip.
void ParticleCreatures2Effect::addFilament(const Moment& moment, int node, const Vec3& root,
                                           unsigned int seed, float length,
                                           const CreatureMotion::Colour& lure, float strength) {
    const float swayPhase = CreatureMotion::TWO_PI * CreatureMotion::hash(seed + 17u);
    for (int p = 0; p < FILAMENT_POINTS; ++p) {
        const float s = static_cast<float>(p + 1) / FILAMENT_POINTS;
        const float reach = s * length;
        const Vec3 pulled =
            (nodeAt(static_cast<float>(node) + s * FILAMENT_TRAIL_NODES) - course[node]) *
            FILAMENT_PULL;
        const Vec3 hanging =
            CreatureMotion::pulledTo(pulled + Vec3(0.0f, -reach, 0.0f), reach, STRETCH);
        const float wave = CreatureMotion::TWO_PI * (0.3f * moment.seconds - 0.9f * s) + swayPhase;
        const Vec3 sway = Vec3(std::sin(wave), 0.0f, std::cos(0.8f * wave)) * (0.12f * reach);
        const Vec3 position =
            root + hanging + sway + scatter(seed * 31u + p, moment, 0.15f * moment.scale);
        if (p == FILAMENT_POINTS - 1) {
            body->add(position, lure, strength);
        } else {
            body->add(position, CreatureMotion::heatColour(0.3f + 0.25f * (1.0f - s)),
                      0.4f * (1.0f - 0.5f * s) * strength);
        }
    }
}

// The thread that joins the head and the bodies, following the course node by node.
void ParticleCreatures2Effect::addStem(const Moment& moment, int bodies, float shown) {
    for (int n = 0; n < bodies * NODES_PER_BODY; ++n) {
        const float place = static_cast<float>(n) / NODES_PER_BODY;
        const float strength = std::clamp(shown + 1.0f - place, 0.0f, 1.0f);
        const Vec3 position =
            course[n] + scatter(50000u + static_cast<unsigned int>(n), moment, 0.6f * moment.scale);
        const float flash = flashAt(moment, place - 1.0f);
        stem->add(position, CreatureMotion::heatColour(0.45f + 0.3f * flash),
                  (0.25f + 0.35f * flash) * strength);
    }
}
