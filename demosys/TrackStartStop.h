#pragma once

#include "Track.h"

class FBO;

// When, in which order and into which render target an effect draws: intervals of
// start/stop keyframes. Lower priorities draw first. Holds only TrackStartStopKeyFrame
// keyframes.
class TrackStartStop : public Track {
public:
    explicit TrackStartStop(int drawPriority);

    // The target of the interval holding row; null for the screen or outside intervals.
    FBO* getRenderTarget(unsigned int row) const;
    // Start row of the interval holding row; 0 outside, and 0 on an interval's stop row.
    unsigned int getStartRow(unsigned int row) const;

    int priority;
    bool enabled = true;
};
