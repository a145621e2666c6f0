#include "CreditsEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

void CreditsEffect::registerTracks() {
    addTrack("index", index);
    addTrack("xpos", xpos);
    addTrack("ypos", ypos);
    addTrack("scale", scale);
    addTrack("alpha", alpha);
}

void CreditsEffect::init() {
    reset();
    for (Texture* picture : pictures) {
        picture->setTextureWrap(GL_CLAMP_TO_EDGE);
    }
}

Texture* CreditsEffect::selectedPicture(float value) const {
    for (int i = 0; i < PICTURE_COUNT; ++i) {
        if (value == static_cast<float>(i)) {
            return pictures[i];
        }
    }
    return nullptr;
}

// An index between pictures sets no picture: the sampler keeps whatever unit 0 holds.
void CreditsEffect::draw(unsigned int time, unsigned int, FBO* target) {
    const GLboolean depthTest = glIsEnabled(GL_DEPTH_TEST);
    glDisable(GL_DEPTH_TEST);
    FBO::bind(offscreen);
    FBO::clearLater(offscreen);
    shader->use();
    if (Texture* picture = selectedPicture(index->getValue(time))) {
        shader->setTextureUnit0("source0", picture);
    }
    shader->setTextureUnit1("source1", FBO::getColorBuffer(background, 0));
    shader->setUniform1f("source0_opacity", alpha->getValue(time));
    shader->setUniform1f("source1_opacity", 1.0f);
    shader->setUniform2f("position", xpos->getValue(time), ypos->getValue(time));
    const float width = scale->getValue(time);
    // The names and logos are eight times wider than high: five times the horizontal
    // scale keeps them close to that shape on a 16:9 screen.
    shader->setUniform2f("scale", width, 5.0f * width);
    Geometry::drawUnitQuadFullscreen();
    shader->release();

    FBO::bind(target);
    FBO::draw(offscreen);
    if (depthTest) {
        glEnable(GL_DEPTH_TEST);
    }
}
