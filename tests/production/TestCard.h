#pragma once

#include "DemoMain.h"
#include "Effect.h"
#include "ResourceDefinition.h"

class FBO;
class Shader;
class TrackInterpolate;

// The test card: a tiny production that exercises the engine's whole chain (loader, shader
// preprocessor, sync tracks, priorities, render targets, clearLater, end time) with three
// effect classes and flat colours that tests can check pixel by pixel.
namespace testcard {

// Fills its target with a colour from its tracks.
class BackgroundEffect : public Effect {
public:
    Effect* getInstance() override { return new BackgroundEffect; }
    void registerTracks() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    Shader* flat = nullptr;
    TrackInterpolate* red = nullptr;
    TrackInterpolate* green = nullptr;
    TrackInterpolate* blue = nullptr;
};

// A box one unit wide and high (in screen units of -1 to 1) whose left edge follows x.
class BoxEffect : public Effect {
public:
    Effect* getInstance() override { return new BoxEffect; }
    void registerTracks() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    Shader* flat = nullptr;
    TrackInterpolate* x = nullptr;
    TrackInterpolate* y = nullptr;
    TrackInterpolate* red = nullptr;
    TrackInterpolate* green = nullptr;
    TrackInterpolate* blue = nullptr;
};

// Blends a framebuffer's picture over its target.
class CompositeEffect : public Effect {
public:
    Effect* getInstance() override { return new CompositeEffect; }
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    Shader* copy = nullptr;
    FBO* source = nullptr;
};

class TestCardResources : public ResourceDefinition {
public:
    void DefineDemoParameters(ScreenMetrics* metrics) override;
    void DefineResouces() override;
    void DefineEffects() override;
    void DefineEffectInstances() override;
};

DemoMain::Production production();

// For a run inside a test's process: the test card's parts into the registry and a 160x90
// window into metrics, ready for Demo::load. The caller deletes KVTDemosys::resources after
// Demo::dispose.
void installForLoop(ScreenMetrics& metrics);

} // namespace testcard
