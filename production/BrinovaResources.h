#pragma once

#include "ResourceDefinition.h"

// Brinova's resource list: the music, the part of it played, the pictures, the shaders, the
// framebuffers (the screen effects' sized by the chosen quality), the effect classes and the
// named instances the sync tracks drive, each handed its resources by key.
class BrinovaResources : public ResourceDefinition {
public:
    // The side of the main (S) and half-size (H) screen-effect framebuffers at a quality
    // level of 0 to 3 on a screen of the given width.
    struct ScreenBufferSizes {
        int main;
        int half;
    };
    static ScreenBufferSizes screenBufferSizes(int quality, int screenWidth);

    void DefineDemoParameters(ScreenMetrics* metrics) override;
    void DefineResouces() override;
    void DefineEffects() override;
    void DefineEffectInstances() override;

private:
    void defineTextures();
    void defineShaders();
    void defineScreenFramebuffers();
    void defineUnderwater();
    void definePostProcess();
    void defineGlow();
    void defineCreatures();
    void defineFluid();
    void defineCredits();
    void defineRadialBlur();
};
