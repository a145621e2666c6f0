#pragma once

#include "Effect.h"

// Shows one of six pictures (the members' names and the two logos), chosen by the "index"
// track, placed and scaled by tracks, over another effect's image: composed in an off-screen
// framebuffer, then copied into the target.
class CreditsEffect : public Effect {
public:
    static constexpr int PICTURE_COUNT = 6;

    Effect* getInstance() override { return new CreditsEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;
    virtual void reset() {}

    // By index: "vask", "lumo", "orin", "quillet", "korvathlogo", "brinovalogo".
    Texture* pictures[PICTURE_COUNT] = {};
    Shader* shader = nullptr;
    FBO* background = nullptr;
    FBO* offscreen = nullptr;

    TrackInterpolate* index = nullptr;
    TrackInterpolate* xpos = nullptr;
    TrackInterpolate* ypos = nullptr;
    TrackInterpolate* scale = nullptr;
    TrackInterpolate* alpha = nullptr;

private:
    // The picture the index names exactly, or null for any other value.
    Texture* selectedPicture(float value) const;
};
