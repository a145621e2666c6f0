#pragma once

#include "KVTTime.h"

class Animation;

// Flies the engine camera along an animation path between a start and an end time: the
// path's progress is the fraction of that span that has passed. Refers to the animation,
// which its pool owns.
class AnimationCameraController {
public:
    explicit AnimationCameraController(Animation* path) : animation(path) {}

    void setStartTime(KVTTime time) { startTime = time; }
    void setEndTime(KVTTime time) { endTime = time; }
    // Outside the span, or without a path, the camera is left as it is.
    void animate(unsigned int timeMs);

private:
    Animation* animation;
    KVTTime startTime;
    KVTTime endTime;
};
