#pragma once

#include "Effect.h"

// Draws nothing: while active it drives the engine's system camera and field of view from
// its tracks in predraw, before any effect of the frame draws, so every 3D effect of that
// frame sees the animated camera whatever its priority. Angles are in degrees.
class CameraLensEffect : public Effect {
public:
    Effect* getInstance() override { return new CameraLensEffect; }
    void registerTracks() override;
    void predraw(unsigned int time) override;
    void draw(unsigned int, unsigned int, FBO*) override {}

    TrackInterpolate* fov = nullptr;
    TrackInterpolate* head = nullptr;
    TrackInterpolate* pitch = nullptr;
    TrackInterpolate* x = nullptr;
    TrackInterpolate* y = nullptr;
    TrackInterpolate* z = nullptr;
};
