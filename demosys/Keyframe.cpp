#include "Keyframe.h"

#include <iostream>

Keyframe::Keyframe(Vector<float, 3> position, float pitch, float heading)
    : position(position), pitch(pitch), heading(heading) {}

void Keyframe::print() const {
    std::cout << "Keyframe : [" << position.x() << "," << position.y() << "," << position.z()
              << "], pitch = " << pitch << ", heading = " << heading << std::endl;
}
