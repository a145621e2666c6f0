#pragma once

#include "TrackKeyFrame.h"

#include <string>

class FBO;

// A keyframe of a start/stop track. A start keyframe names the render target its interval
// draws into; a null fbo is the screen. Stop keyframes keep the defaults.
class TrackStartStopKeyFrame : public TrackKeyFrame {
public:
    TrackStartStopKeyFrame() = default;
    TrackStartStopKeyFrame(unsigned int keyRow, int keyType) : TrackKeyFrame(keyRow, keyType) {}

    std::string target = "screen";
    FBO* fbo = nullptr;
};
