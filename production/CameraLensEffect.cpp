#include "CameraLensEffect.h"

#include "KVTDemosys.h"
#include "ScreenMetrics.h"
#include "TrackInterpolate.h"

void CameraLensEffect::registerTracks() {
    addTrack("fov", fov);
    addTrack("head", head);
    addTrack("pitch", pitch);
    addTrack("x", x);
    addTrack("y", y);
    addTrack("z", z);
}

void CameraLensEffect::predraw(unsigned int time) {
    KVTDemosys::screenMetrics->setFov(fov->getValue(time));
    Camera& camera = KVTDemosys::camera;
    camera.setPitch(pitch->getValue(time));
    camera.setHeading(head->getValue(time));
    camera.setPosition(Vector<float, 3>(x->getValue(time), y->getValue(time), z->getValue(time)));
}
