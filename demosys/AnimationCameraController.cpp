#include "AnimationCameraController.h"

#include "Animation.h"
#include "KVTDemosys.h"

void AnimationCameraController::animate(unsigned int timeMs) {
    unsigned int start = startTime.getTicks();
    unsigned int end = endTime.getTicks();
    if (animation == nullptr || timeMs < start || timeMs > end) {
        return;
    }
    float progress = static_cast<float>(timeMs - start) / static_cast<float>(end - start);
    animation->next(progress);
    Camera& camera = KVTDemosys::camera;
    camera.setPosition(animation->getPosition());
    camera.setPitch(animation->getPitch());
    camera.setHeading(animation->getHeading());
    camera.setGLMatrixes();
}
