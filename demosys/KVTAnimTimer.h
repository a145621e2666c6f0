#pragma once

// Holds an animation's current time (in the animation's own unit) and a type tag that
// callers may use to say what that unit is.
class KVTAnimTimer {
public:
    void updateTime(float value) { time = value; }
    float getTime() const { return time; }
    void setType(unsigned int value) { type = value; }
    unsigned int getType() const { return type; }

private:
    float time = 0.0f;
    unsigned int type = 0;
};
