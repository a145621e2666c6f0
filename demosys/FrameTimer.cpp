#include "FrameTimer.h"

#include <cmath>

FrameTimer::FrameTimer(unsigned int rate, double stepMs) : Timer(rate), step(stepMs) {}

bool FrameTimer::init() {
    Timer::init();
    origin = 0;
    frame = 0;
    lastFrameTime = 0;
    return true;
}

void FrameTimer::play() {
    paused = false;
}

void FrameTimer::pause() {
    paused = true;
}

unsigned int FrameTimer::getTime() {
    return origin + static_cast<unsigned int>(std::llround(static_cast<double>(frame) * step));
}

void FrameTimer::setTime(unsigned int time) {
    origin = time;
    frame = 0;
    lastFrameTime = time;
}

void FrameTimer::jumpTo(unsigned int time) {
    origin = time;
    frame = 0;
    lastFrameTime = time > step ? time - static_cast<unsigned int>(std::llround(step)) : 0;
}
