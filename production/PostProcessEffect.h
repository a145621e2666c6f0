#pragma once

#include "Effect.h"

// The final image pass: the frame the other effects left in a staging framebuffer goes once
// through the post-processing shader (brightness, contrast, negative, fade to a colour,
// vignette, a drifting colour gradient, animated grain and a tone curve) into the target, and
// the frame overlay picture is laid over the result.
class PostProcessEffect : public Effect {
public:
    Effect* getInstance() override { return new PostProcessEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    Shader* shader = nullptr;
    Texture* noiseTexture = nullptr;
    Texture* overlayTexture = nullptr;
    Texture* thresholdTexture = nullptr;
    FBO* source = nullptr;

    TrackInterpolate* brightness = nullptr;
    TrackInterpolate* contrast = nullptr;
    TrackInterpolate* negative = nullptr;
    TrackInterpolate* fade = nullptr;
    TrackInterpolate* fade_r = nullptr;
    TrackInterpolate* fade_g = nullptr;
    TrackInterpolate* fade_b = nullptr;
    TrackInterpolate* noise_strength = nullptr;
    TrackInterpolate* vignett_radius = nullptr;

    // Scroll of the noise picture and of the colour gradient, advanced by the frame time
    // after each frame is drawn.
    float noiseOffset = 0.0f;
    float gradientScroll[2] = {0.0f, 0.0f};

private:
    void setUniforms(unsigned int time);
    void advanceAccumulators(unsigned int frameTime);
    void drawOverlay();
};
