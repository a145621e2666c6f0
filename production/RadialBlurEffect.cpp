#include "RadialBlurEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "Shader.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

void RadialBlurEffect::registerTracks() {
    addTrack("num_passes", num_passes);
    addTrack("multiply", multiply);
}

void RadialBlurEffect::init() {
    zoom = 0.0f;
    alpha = 1.0f;
}

// The copies and passes run without the depth test (a scene drawn into one of these
// framebuffers earlier in the frame must not hide them); the caller's state comes back after.
void RadialBlurEffect::draw(unsigned int time, unsigned int, FBO* target) {
    Geometry::PushAllMatices();
    const GLboolean depthTest = glIsEnabled(GL_DEPTH_TEST);
    glDisable(GL_DEPTH_TEST);
    zoom = 1.0f;
    alpha = 1.0f;
    copyInto(accumulator, source);
    copyInto(scene, source);
    FBO::clearNow(work);

    zoomStep = 0.033333335f;
    alphaStep = 1.0f / num_passes->getValue(time);
    // With fewer than thirty passes asked for, the weight goes below zero in the later
    // passes; those passes still run.
    for (int pass = 0; pass < PASSES; ++pass) {
        zoomPass(time);
        alpha -= alphaStep;
        zoom += zoomStep;
    }

    FBO::bind(target);
    screenShader->use();
    screenShader->setTextureUnit0("source0", FBO::getColorBuffer(work, 0));
    screenShader->setTextureUnit1("source1", FBO::getColorBuffer(scene, 0));
    Geometry::drawUnitQuad();
    screenShader->release();
    if (depthTest) {
        glEnable(GL_DEPTH_TEST);
    }
    Geometry::PopAllMatrices();
}

void RadialBlurEffect::copyInto(FBO* into, FBO* from) {
    FBO::bind(into);
    FBO::draw(from);
}

// Blends the enlarged accumulator over the work picture, then makes that the accumulator.
void RadialBlurEffect::zoomPass(unsigned int time) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    zoomBlendShader->use();
    zoomBlendShader->setUniform1f("zoom_factor", zoom);
    zoomBlendShader->setUniform1f("alpha", alpha);
    zoomBlendShader->setUniform1f("multiply", multiply->getValue(time));
    zoomBlendShader->setTextureUnit0("Texture", FBO::getColorBuffer(accumulator, 0));
    FBO::bind(work);
    FBO::draw(accumulator);
    zoomBlendShader->release();
    glDisable(GL_BLEND);
    copyInto(accumulator, work);
}
