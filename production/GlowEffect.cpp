#include "GlowEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "Shader.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

void GlowEffect::registerTracks() {
    addTrack("pre_brightness", pre_brightness);
    addTrack("pre_contrast", pre_contrast);
    addTrack("post_brightness", post_brightness);
    addTrack("post_contrast", post_contrast);
    addTrack("blur_radius", blur_radius);
    addTrack("kernel_amp", kernel_amp);
}

void GlowEffect::draw(unsigned int time, unsigned int, FBO* target) {
    Geometry::PushAllMatices();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);

    blurPass(blurXShader, source, horizontal, pre_brightness->getValue(time),
             pre_contrast->getValue(time), time);
    blurPass(blurYShader, horizontal, blurred, post_brightness->getValue(time),
             post_contrast->getValue(time), time);

    FBO::bind(target);
    FBO::clearLater(target);
    screenShader->use();
    screenShader->setTextureUnit0("source0", FBO::getColorBuffer(blurred, 0));
    screenShader->setTextureUnit1("source1", FBO::getColorBuffer(source, 0));
    Geometry::drawUnitQuad();
    screenShader->release();

    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    Geometry::PopAllMatrices();
}

// One direction of the blur from one framebuffer into another; the step between taps is
// the blur radius over the width of the picture read.
void GlowEffect::blurPass(Shader* shader, FBO* from, FBO* into, float brightness, float contrast,
                          unsigned int time) {
    FBO::bind(into);
    FBO::clearLater(into);
    shader->use();
    shader->setTextureUnit0("source", FBO::getColorBuffer(from, 0));
    shader->setTextureUnit1("kernel", kernel);
    shader->setUniform1f("blur_radius", blur_radius->getValue(time));
    shader->setUniform1f("texture_size", static_cast<float>(FBO::getWidth(from)));
    shader->setUniform1f("adjustment", kernel_amp->getValue(time));
    shader->setUniform1f("brightness", brightness);
    shader->setUniform1f("contrast", contrast);
    Geometry::drawUnitQuad();
    shader->release();
}
