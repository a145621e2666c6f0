#include "Animation.h"

#include "AnimationCameraController.h"
#include "AnimationObjectController.h"
#include "KVTAssert.h"

#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace {

// A whole number held in a double, without fraction digits ("1", "-2"); also safe for
// values no int can hold.
std::string wholeNumberText(double value) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(0) << value;
    return out.str();
}

// The Catmull-Rom blend of four values at f, with the curve passing through b (f = 0) and
// c (f = 1).
template <typename T> T catmullRom(const T& a, const T& b, const T& c, const T& d, float f) {
    const float f2 = f * f;
    const float f3 = f2 * f;
    const float w0 = -f3 + 2 * f2 - f;
    const float w1 = 3 * f3 - 5 * f2 + 2;
    const float w2 = -3 * f3 + 4 * f2 + f;
    const float w3 = f3 - f2;
    return (a * w0 + b * w1 + c * w2 + d * w3) * 0.5f;
}

} // namespace

Animation::~Animation() {
    for (Keyframe* keyframe : keyframes) {
        delete keyframe;
    }
}

void Animation::addKeyframe(Keyframe* keyframe) {
    keyframes.push_back(keyframe);
}

Keyframe* Animation::getKeyFrame(int i) const {
    KVT_ASSERT(i >= 0 && i < countKeyFrames(), "demosys/Animation", "getKeyFrame");
    return keyframes[i];
}

void Animation::next(double t) {
    if (interpolationType == LINEAR) {
        nextLinear(t);
    } else if (interpolationType == CATMULL_ROM) {
        nextCatmullRom(t);
    }
}

// A progress below 0 (or not a number) counts as out of range too, rather than reading
// before the first keyframe.
void Animation::nextLinear(double t) {
    const int k = countKeyFrames();
    const double x = (k - 1) * t;
    const double whole = std::floor(x);
    if (!(whole >= 0 && whole < k - 1)) {
        std::cout << "OUT OF RANGE " << wholeNumberText(whole) << std::endl;
        return;
    }
    const int i = static_cast<int>(whole);
    const float f = static_cast<float>(x - whole);
    const Keyframe& a = *keyframes[i];
    const Keyframe& b = *keyframes[i + 1];
    pitch = a.getPitch() + (b.getPitch() - a.getPitch()) * f;
    heading = a.getHeading() + (b.getHeading() - a.getHeading()) * f;
    position = a.getPosition().linearInterpolate(b.getPosition(), f);
}

void Animation::nextCatmullRom(double t) {
    const int k = countKeyFrames();
    const double x = (k - 3) * t;
    const double whole = std::floor(x);
    if (!(whole >= 0 && whole <= k - 4)) {
        std::cout << "OUT OF RANGE [" << k - 4 << "] -> " << wholeNumberText(whole) << std::endl;
        return;
    }
    const int i = static_cast<int>(whole);
    const float f = static_cast<float>(x - whole);
    const Keyframe& p0 = *keyframes[i];
    const Keyframe& p1 = *keyframes[i + 1];
    const Keyframe& p2 = *keyframes[i + 2];
    const Keyframe& p3 = *keyframes[i + 3];
    position =
        catmullRom(p0.getPosition(), p1.getPosition(), p2.getPosition(), p3.getPosition(), f);
    pitch = catmullRom(p0.getPitch(), p1.getPitch(), p2.getPitch(), p3.getPitch(), f);
    heading = catmullRom(p0.getHeading(), p1.getHeading(), p2.getHeading(), p3.getHeading(), f);
}

std::string Animation::toString() const {
    return "Animation { keyframes = " + std::to_string(countKeyFrames());
}

void Animation::print() const {
    std::cout << toString() << std::endl;
    for (const Keyframe* keyframe : keyframes) {
        keyframe->print();
    }
}

AnimationCameraController* Animation::getCameraController() {
    return new AnimationCameraController(this);
}

AnimationObjectController* Animation::getObjectController() {
    return new AnimationObjectController(this);
}
