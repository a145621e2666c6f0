#pragma once

#include "TrackKeyFrame.h"

// A keyframe of a parameter track: the value at its row and how the value moves on to the
// next keyframe (see TrackInterpolate for the interpolation codes).
class TrackKeyFrameInterpolate : public TrackKeyFrame {
public:
    TrackKeyFrameInterpolate() = default;
    TrackKeyFrameInterpolate(unsigned int keyRow, int how, float keyValue)
        : value(keyValue), interpolation(how) {
        row = keyRow;
    }

    float value = 0.0f;
    int interpolation = 0;
};
