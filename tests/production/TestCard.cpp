#include "TestCard.h"

#include "FBO.h"
#include "Geometry.h"
#include "KVTDemosys.h"
#include "ProgressBar.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "ShaderCache.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

namespace testcard {

namespace {

// Draws an axis-aligned rectangle in screen units with the current shader.
void drawRectangle(float left, float bottom, float right, float top) {
    Geometry::PushAllMatices();
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(left, bottom);
    glTexCoord2f(1, 0);
    glVertex2f(right, bottom);
    glTexCoord2f(1, 1);
    glVertex2f(right, top);
    glTexCoord2f(0, 1);
    glVertex2f(left, top);
    glEnd();
    Geometry::PopAllMatrices();
}

void drawFlat(Shader* flat, FBO* target, float r, float g, float b, float left, float right,
              float bottom, float top) {
    FBO::bind(target);
    FBO::clearLater(target);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    flat->use();
    flat->setUniform4f("colour", r, g, b, 1.0f);
    drawRectangle(left, bottom, right, top);
    flat->release();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
}

} // namespace

void BackgroundEffect::registerTracks() {
    addTrack("red", red);
    addTrack("green", green);
    addTrack("blue", blue);
}

void BackgroundEffect::draw(unsigned int time, unsigned int, FBO* target) {
    drawFlat(flat, target, red->getValue(time), green->getValue(time), blue->getValue(time), -1.0f,
             1.0f, -1.0f, 1.0f);
}

void BoxEffect::registerTracks() {
    addTrack("x", x);
    addTrack("y", y);
    addTrack("red", red);
    addTrack("green", green);
    addTrack("blue", blue);
}

void BoxEffect::draw(unsigned int time, unsigned int, FBO* target) {
    float left = x->getValue(time);
    float middle = y->getValue(time);
    drawFlat(flat, target, red->getValue(time), green->getValue(time), blue->getValue(time), left,
             left + 1.0f, middle - 0.5f, middle + 0.5f);
}

void CompositeEffect::draw(unsigned int, unsigned int, FBO* target) {
    FBO::bind(target);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    copy->use();
    copy->setTextureUnit0("picture", FBO::getColorBuffer(source, 0));
    FBO::draw(source);
    copy->release();
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
}

void TestCardResources::DefineDemoParameters(ScreenMetrics* metrics) {
    ResourceDefinition::DefineDemoParameters(metrics);
    KVTDemosys::DemoStartTime.setTimeAsString("00:00:000");
    KVTDemosys::DemoEndTime.setTimeAsString("00:04:000");
    SetMusic("testcard.flac");
    SetTempo(120.0);
    AddSection("red", "00:00:000");
    AddSection("green", "00:02:000");
}

void TestCardResources::DefineResouces() {
    // The second parameter becomes a define; the first names the shader only.
    AddShader({"flat", "flat", {"flat", "BRIGHTNESS 1.0"}});
    AddShader({"copy", "copy", {}});
    AddTexture({"check", "Check.png", GL_TEXTURE_2D, true});
    AddFBO("offscreen", new FBO(256, 144, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE));
}

void TestCardResources::DefineEffects() {
    AddEffect("BackgroundEffect", new BackgroundEffect);
    AddEffect("BoxEffect", new BoxEffect);
    AddEffect("CompositeEffect", new CompositeEffect);
}

void TestCardResources::DefineEffectInstances() {
    auto* background = static_cast<BackgroundEffect*>(
        CreateEffectInstance("BackgroundEffect", "background", true));
    background->flat = GetShader("flat");
    for (const char* name : {"box", "cover"}) {
        auto* box = static_cast<BoxEffect*>(CreateEffectInstance("BoxEffect", name, true));
        box->flat = GetShader("flat");
    }
    auto* composite =
        static_cast<CompositeEffect*>(CreateEffectInstance("CompositeEffect", "composite", true));
    composite->copy = GetShader("copy");
    composite->source = GetFBO("offscreen");
}

DemoMain::Production production() {
    return DemoMain::Production{[] { return new ProgressBar; }, [] { return new ShaderCache; },
                                [] { return new TestCardResources; }, TESTCARD_SOURCE_FOLDER};
}

void installForLoop(ScreenMetrics& metrics) {
    DemoMain::Production parts = production();
    KVTDemosys::pBar = parts.makeProgressBar();
    KVTDemosys::shaderCache = parts.makeShaderCache();
    KVTDemosys::resources = parts.makeResources();
    metrics.setResolution(160, 90);
    metrics.setFullscreen(false);
    metrics.setFullscreenOverride(true);
}

} // namespace testcard
