#include "PostProcessEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

void PostProcessEffect::registerTracks() {
    addTrack("brightness", brightness);
    addTrack("contrast", contrast);
    addTrack("negative", negative);
    addTrack("fade", fade);
    addTrack("fade_r", fade_r);
    addTrack("fade_g", fade_g);
    addTrack("fade_b", fade_b);
    addTrack("noise_strength", noise_strength);
    addTrack("vignett_radius", vignett_radius);
}

void PostProcessEffect::init() {
    noiseOffset = 0.0f;
    gradientScroll[0] = 0.5f;
    gradientScroll[1] = -0.125f;
    thresholdTexture->setTextureWrap(GL_CLAMP_TO_EDGE);
}

void PostProcessEffect::draw(unsigned int time, unsigned int frameTime, FBO* target) {
    Geometry::PushAllMatices();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    FBO::bind(target);
    FBO::clearLater(target);

    shader->use();
    setUniforms(time);
    Geometry::drawUnitQuad();
    shader->release();
    advanceAccumulators(frameTime);

    drawOverlay();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    Geometry::PopAllMatrices();
}

void PostProcessEffect::setUniforms(unsigned int time) {
    shader->setUniform1f("brightness", brightness->getValue(time));
    shader->setUniform1f("contrast", contrast->getValue(time));
    shader->setUniform1f("negative", negative->getValue(time));
    shader->setUniform1f("fade", fade->getValue(time));
    shader->setUniform3f("fade_color", fade_r->getValue(time), fade_g->getValue(time),
                         fade_b->getValue(time));
    shader->setTextureUnit0("image", FBO::getColorBuffer(source, 0));
    shader->setUniform2f("gradient_scroll", gradientScroll[0], gradientScroll[1]);
    shader->setUniform3f("gradient_col0", 0.0f, 0.25f, 0.5f);
    shader->setUniform3f("gradient_col1", 0.0f, 0.5f, 0.25f);
    shader->setUniform1f("vignett_radius", vignett_radius->getValue(time));
    shader->setTextureUnit1("noise", noiseTexture);
    shader->setUniform1f("noise_offset", noiseOffset);
    shader->setUniform1f("noise_strength", noise_strength->getValue(time));
    shader->setTextureUnit2("threshold", thresholdTexture);
}

// The offsets move after the draw, so a frame shows what was accumulated up to the previous
// one. The sums run in double precision, as the frame time is an unsigned count of ms.
void PostProcessEffect::advanceAccumulators(unsigned int frameTime) {
    const double dt = frameTime;
    gradientScroll[0] = static_cast<float>(gradientScroll[0] + dt * 0.00005);
    gradientScroll[1] = static_cast<float>(gradientScroll[1] + dt * -0.00005);
    noiseOffset = static_cast<float>(noiseOffset + dt * 0.00025);
}

// The overlay picture is cropped to its left 15/16 and its part above 0.4727, stretched over
// the whole viewport; its clear texels are rejected by the alpha test.
void PostProcessEffect::drawOverlay() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.0f);
    overlayTexture->bind();
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.4727f);
    glVertex2f(-1.0f, -1.0f);
    glTexCoord2f(0.9375f, 0.4727f);
    glVertex2f(1.0f, -1.0f);
    glTexCoord2f(0.9375f, 1.0f);
    glVertex2f(1.0f, 1.0f);
    glTexCoord2f(0.0f, 1.0f);
    glVertex2f(-1.0f, 1.0f);
    glEnd();
    overlayTexture->release();
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_BLEND);
}
