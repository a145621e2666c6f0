#pragma once

#include "KVTObject.h"
#include "KVTTime.h"
#include "Vector.h"

class Animation;

// Moves a scene object along an animation path between a start and an end time, as the
// camera controller flies the camera: the path's progress is the fraction of that span that
// has passed. The object's local matrix becomes the path's pose, placed where a camera on
// the same path would stand and turned the way it would look (an object with keyframes of
// its own is drawn by those instead). Refers to the animation, which its pool owns, and to
// the object, which its scene owns.
class AnimationObjectController {
public:
    explicit AnimationObjectController(Animation* path) : animation(path) {}

    void setObject(KVTObject* target) { object = target; }
    void setStartTime(KVTTime time) { startTime = time; }
    void setEndTime(KVTTime time) { endTime = time; }
    // Outside the span, or without a path or an object, the object is left as it is.
    void animate(unsigned int timeMs);

    // Translation to the position, turned by the heading about y, then tilted by the pitch
    // about x (degrees): the inverse of the camera's view for that pose.
    static KVTObject::Matrix4 poseMatrix(const Vector<float, 3>& position, float pitch,
                                         float heading);

private:
    Animation* animation;
    KVTObject* object = nullptr;
    KVTTime startTime;
    KVTTime endTime;
};
