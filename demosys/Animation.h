#pragma once

#include "Keyframe.h"
#include "Vector.h"

#include <string>
#include <vector>

class AnimationCameraController;
class AnimationObjectController;

// A path of keyframes evaluated at a progress between 0 and 1, by linear or Catmull-Rom
// interpolation. Owns its keyframes.
class Animation {
public:
    static const int LINEAR = 0;
    static const int CATMULL_ROM = 1;

    Animation() = default;
    ~Animation();
    Animation(const Animation&) = delete;
    Animation& operator=(const Animation&) = delete;

    // Takes ownership of the keyframe.
    void addKeyframe(Keyframe* keyframe);
    Keyframe* getKeyFrame(int i) const;
    int countKeyFrames() const { return static_cast<int>(keyframes.size()); }
    void setInterpolationType(int type) { interpolationType = type; }

    // Evaluates the path at progress t into position, pitch and heading. Linear paths end
    // just before their last keyframe; Catmull-Rom paths run from the second keyframe to the
    // one before the last. Out of range, a line saying so is printed and the state is kept.
    void next(double t);
    Vector<float, 3> getPosition() const { return position; }
    float getPitch() const { return pitch; }
    float getHeading() const { return heading; }

    // A new controller flying the engine camera along this path; the caller owns it.
    AnimationCameraController* getCameraController();
    // A new controller moving a scene object along this path; the caller owns it.
    AnimationObjectController* getObjectController();
    std::string toString() const;
    void print() const;

private:
    void nextLinear(double t);
    void nextCatmullRom(double t);

    std::vector<Keyframe*> keyframes;
    Vector<float, 3> position;
    float pitch = 0;
    float heading = 0;
    int interpolationType = LINEAR;
};
