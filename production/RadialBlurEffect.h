#pragma once

#include "Effect.h"

// A zoom blur: the picture is redrawn over itself thirty times, each time slightly enlarged
// about the centre and with less weight, and the smeared result is laid over the unblurred
// scene with the "screen" blend.
class RadialBlurEffect : public Effect {
public:
    // The number of zoom passes is fixed; "num_passes" only sets how fast the weight falls.
    static constexpr int PASSES = 30;

    Effect* getInstance() override { return new RadialBlurEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    Shader* zoomBlendShader = nullptr;
    Shader* screenShader = nullptr;
    FBO* source = nullptr;
    FBO* scene = nullptr;
    FBO* accumulator = nullptr;
    FBO* work = nullptr;

    float zoom = 0.0f;
    float zoomStep = 0.0f;
    float alpha = 0.0f;
    float alphaStep = 0.0f;

    TrackInterpolate* num_passes = nullptr;
    TrackInterpolate* multiply = nullptr;

private:
    static void copyInto(FBO* into, FBO* from);
    void zoomPass(unsigned int time);
};
