#pragma once

#include "Vector.h"

// One point of an animation path: a position with a pitch and a heading in degrees.
class Keyframe {
public:
    Keyframe() = default;
    Keyframe(Vector<float, 3> position, float pitch, float heading);

    Vector<float, 3> getPosition() const { return position; }
    float getPitch() const { return pitch; }
    float getHeading() const { return heading; }
    void setPosition(Vector<float, 3> p) { position = p; }
    void setPitch(float p) { pitch = p; }
    void setHeading(float h) { heading = h; }

    void print() const;

private:
    Vector<float, 3> position;
    float pitch = 0;
    float heading = 0;
};
