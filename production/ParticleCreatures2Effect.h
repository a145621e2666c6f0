#pragma once

#include "CreatureMotion.h"
#include "Effect.h"

#include <array>
#include <memory>

class SpriteLayer;
class SpriteLevels;

// A siphonophore: a long chain of glowing bodies coiling through the water behind a pair of
// swimming bells, made of point sprites and lit by nothing but itself. The head swims a
// slow figure of eight, with a coil wound round it, around the place the tracks give, and
// the chain follows exactly where the head has been (body j is where the head was j
// moments ago), so it sweeps and spirals like a living thing. Each body is a small luminous cup
// with a bright core, trailing two fishing filaments tipped with lures. On every pulse the bells
// contract, the head surges, and a wave of light runs down the chain.
//
// The picture depends only on the time and the tracks (the chain reads the tracks at
// earlier times), so seeking and offline rendering give the same frames. Drawn additively
// into the target in the creatures' view (see CreatureMotion), for the glow to pick up.
class ParticleCreatures2Effect : public Effect {
public:
    static constexpr int MAX_BODIES = 32;

    ParticleCreatures2Effect();
    ~ParticleCreatures2Effect() override;

    Effect* getInstance() override { return new ParticleCreatures2Effect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    // The "particlesprite" shader and the glowing ring sprite.
    Shader* shader = nullptr;
    Texture* sprite = nullptr;

    // How many bodies the chain has behind its head, 0 to 32; each fades in over one unit,
    // so a rising track grows the chain from the head backwards. 0 draws nothing.
    TrackInterpolate* count = nullptr;
    // The centre of the head's course, -1 (left edge) to 1 (right edge); 0 is the middle.
    TrackInterpolate* x = nullptr;
    // -1 (bottom edge) to 1 (top edge); 0 is the middle.
    TrackInterpolate* y = nullptr;
    // The width of the head's figure of eight in picture heights, typically 0.5 to 1; the
    // bodies and the chain's length scale with it. 0 draws nothing.
    TrackInterpolate* size = nullptr;
    // The pulse phase in pulses: each whole number is one contraction of the swimming
    // bells and one wave of light down the chain. A track rising by one per beat makes it
    // pulse on the beat; 0, or any constant, keeps it calm.
    TrackInterpolate* pulse = nullptr;
    // How far the colony has come apart, 0 (one chain) to 1 (a drifting cloud of loose
    // bodies and sparks, about a course's diameter across).
    TrackInterpolate* spread = nullptr;

    // The sprites drawn in the last frame.
    int getSpriteCount() const;

private:
    // The head's past course is sampled at nodes a fixed time apart: a body every
    // NODES_PER_BODY nodes, and beyond the last body the trail its filaments follow.
    static constexpr int NODES_PER_BODY = 6;
    static constexpr int FILAMENT_TRAIL_NODES = 16;
    static constexpr int NODES = MAX_BODIES * NODES_PER_BODY + FILAMENT_TRAIL_NODES + 1;

    // What every part of one frame shares.
    struct Moment {
        float seconds;
        float scale;
        float phase;
        float apart;
    };

    float trackValue(TrackInterpolate* track, float seconds) const;
    CreatureMotion::Vec3 courseAt(float scale, float seconds) const;
    CreatureMotion::Vec3 headAt(float scale, float seconds) const;
    void sampleCourse(const Moment& moment);
    CreatureMotion::Vec3 nodeAt(float place) const;
    // The direction the chain runs at a node: from the head towards the tail.
    CreatureMotion::Vec3 backwardsAt(int node) const;
    float flashAt(const Moment& moment, float body) const;
    CreatureMotion::Vec3 scatter(unsigned int seed, const Moment& moment, float reach) const;

    void addHead(const Moment& moment, float strength);
    void addSwimmingBell(const Moment& moment, const CreatureMotion::Vec3& centre,
                         const CreatureMotion::Frame& axes, float contraction, float strength);
    void addBody(const Moment& moment, int index, float strength);
    void addFilament(const Moment& moment, int node, const CreatureMotion::Vec3& root,
                     unsigned int seed, float length, const CreatureMotion::Colour& lure,
                     float strength);
    // The stem from the head to the last of `bodies`, fading with the bodies it joins.
    void addStem(const Moment& moment, int bodies, float shown);

    std::unique_ptr<SpriteLevels> pictures;
    std::unique_ptr<SpriteLayer> body;
    std::unique_ptr<SpriteLayer> halo;
    std::unique_ptr<SpriteLayer> stem;
    std::array<CreatureMotion::Vec3, NODES> course;
};
