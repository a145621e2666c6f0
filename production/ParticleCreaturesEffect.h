#pragma once

#include "CreatureMotion.h"
#include "Effect.h"

#include <array>
#include <memory>

class SpriteLayer;
class SpriteLevels;

// A small group of luminous jellyfish drifting through the dark, made of point sprites and
// lit by nothing but themselves. Each has a ribbed bell that pulses (the contraction runs
// from the apex to the margin and pushes the animal forward), a string of lights round its
// margin, a bright core, four frilled oral arms and a crown of tentacles that trail behind
// its path: every tentacle point is placed where the bell was a moment before, so the
// tentacles stream out behind a turn and lag each surge. The group's followers swim at
// their own depths and their own pace around the leader.
//
// The picture depends only on the time and the tracks (the trails read the tracks at
// earlier times), so seeking and offline rendering give the same frames. Drawn additively
// into the target in the creatures' view (see CreatureMotion), for the glow to pick up.
class ParticleCreaturesEffect : public Effect {
public:
    static constexpr int MAX_JELLYFISH = 3;

    ParticleCreaturesEffect();
    ~ParticleCreaturesEffect() override;

    Effect* getInstance() override { return new ParticleCreaturesEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    // The "particlesprite" shader and the glowing ring sprite.
    Shader* shader = nullptr;
    Texture* sprite = nullptr;

    // How many jellyfish swim, 0 to 3: the leader first, then the followers, each fading
    // in over one unit (1.5 shows the leader and the first follower at half strength).
    // 0 draws nothing.
    TrackInterpolate* count = nullptr;
    // The group's centre, -1 (left edge) to 1 (right edge); 0 is the middle. The tentacles
    // trail along the path these two tracks draw.
    TrackInterpolate* x = nullptr;
    // -1 (bottom edge) to 1 (top edge); 0 is the middle.
    TrackInterpolate* y = nullptr;
    // The leader's bell diameter in picture heights, typically 0.15 to 0.5; the followers
    // and the spacing of the group scale with it. 0 draws nothing.
    TrackInterpolate* size = nullptr;
    // The pulse phase in pulses: each whole number starts one contraction of the leader's
    // bell (the followers beat a little faster or slower). A track rising by one per bar
    // or per beat makes them swim in time; 0, or any constant, keeps the bells still.
    TrackInterpolate* pulse = nullptr;

    // The sprites drawn in the last frame.
    int getSpriteCount() const;

private:
    static constexpr int TRAIL_POINTS = 36;

    struct Individual;
    // The leader first, then the followers.
    static const Individual GROUP[MAX_JELLYFISH];

    // Where one jellyfish is and how it is posed at this frame.
    struct Pose {
        const Individual* individual;
        CreatureMotion::Vec3 centre;
        CreatureMotion::Frame frame;
        float radius;
        float phase;
        float spin;
        float seconds;
        float strength;
    };

    float trackValue(TrackInterpolate* track, float seconds) const;
    float phaseAt(const Individual& jelly, float seconds) const;
    CreatureMotion::Vec3 driftAt(const Individual& jelly, float radius, float seconds) const;
    CreatureMotion::Vec3 axisAt(const Individual& jelly, float radius, float seconds) const;
    Pose poseAt(const Individual& jelly, float radius, float seconds, float strength) const;
    void sampleTrail(const Pose& pose);

    void addJellyfish(const Pose& pose);
    void addBell(const Pose& pose);
    void addMargin(const Pose& pose);
    void addCore(const Pose& pose);
    void addOralArms(const Pose& pose);
    void addTentacles(const Pose& pose);
    // A point hanging `reach` units below anchor along the pose, pulled towards where the
    // bell was `part` of the trail ago.
    CreatureMotion::Vec3 trailing(const Pose& pose, const CreatureMotion::Vec3& anchor, float part,
                                  float reach) const;
    void addSprite(const Pose& pose, const CreatureMotion::Vec3& position, float heat, float alpha);

    std::unique_ptr<SpriteLevels> pictures;
    std::unique_ptr<SpriteLayer> body;
    std::unique_ptr<SpriteLayer> glow;
    // The bell's offsets from its present place at earlier times, for the trailing parts.
    std::array<CreatureMotion::Vec3, TRAIL_POINTS> trail;
};
