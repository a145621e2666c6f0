#pragma once

#include "Effect.h"

// A bloom: a separable Gaussian blur of the source (a horizontal pass, then a vertical one,
// each with its own brightness and contrast so the first can keep only what is bright) laid
// back over the unblurred source with the "screen" blend.
class GlowEffect : public Effect {
public:
    Effect* getInstance() override { return new GlowEffect; }
    void registerTracks() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    // Receives the vertical pass: the finished blur.
    FBO* blurred = nullptr;
    // Assigned by the production but not drawn into.
    FBO* blurX = nullptr;
    // Receives the horizontal pass.
    FBO* horizontal = nullptr;
    FBO* source = nullptr;
    Shader* blurXShader = nullptr;
    Shader* blurYShader = nullptr;
    Shader* screenShader = nullptr;
    // Assigned by the production but not used.
    Shader* brightnessContrastShader = nullptr;
    Texture* kernel = nullptr;

    TrackInterpolate* pre_brightness = nullptr;
    TrackInterpolate* pre_contrast = nullptr;
    TrackInterpolate* post_brightness = nullptr;
    TrackInterpolate* post_contrast = nullptr;
    TrackInterpolate* blur_radius = nullptr;
    TrackInterpolate* kernel_amp = nullptr;

private:
    void blurPass(Shader* shader, FBO* from, FBO* into, float brightness, float contrast,
                  unsigned int time);
};
