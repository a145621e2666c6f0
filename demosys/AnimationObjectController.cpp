#include "AnimationObjectController.h"

#include "Animation.h"

#include <cmath>

namespace {

float radians(float degrees) {
    return degrees / 180.0f * 3.1415927f;
}

// A rotation by angle about the axis (0 x, 1 y, 2 z), counter-clockwise looking down the
// axis, in OpenGL's element order.
KVTObject::Matrix4 rotation(int axis, float angle) {
    const int a = (axis + 1) % 3;
    const int b = (axis + 2) % 3;
    KVTObject::Matrix4 m = KVTObject::Matrix4::identity();
    m[a * 4 + a] = std::cos(angle);
    m[a * 4 + b] = std::sin(angle);
    m[b * 4 + a] = -std::sin(angle);
    m[b * 4 + b] = std::cos(angle);
    return m;
}

} // namespace

KVTObject::Matrix4 AnimationObjectController::poseMatrix(const Vector<float, 3>& position,
                                                         float pitch, float heading) {
    // The camera's view turns by the pitch after the heading; undoing it turns back the other
    // way round.
    KVTObject::Matrix4 pose = rotation(1, -radians(heading)).mult(rotation(0, -radians(pitch)));
    pose[12] = position.x();
    pose[13] = position.y();
    pose[14] = position.z();
    return pose;
}

void AnimationObjectController::animate(unsigned int timeMs) {
    unsigned int start = startTime.getTicks();
    unsigned int end = endTime.getTicks();
    if (animation == nullptr || object == nullptr || timeMs < start || timeMs > end) {
        return;
    }
    float progress = static_cast<float>(timeMs - start) / static_cast<float>(end - start);
    animation->next(progress);
    object->setMatrix(
        poseMatrix(animation->getPosition(), animation->getPitch(), animation->getHeading()));
}
