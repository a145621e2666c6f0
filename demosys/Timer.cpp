#include "Timer.h"

#include <SDL_timer.h>
#include <cstdlib>

namespace {
unsigned int sdlTicks() {
    return SDL_GetTicks();
}
} // namespace

Timer::TickSource Timer::tickSource = sdlTicks;

void Timer::setTickSource(TickSource source) {
    tickSource = source != nullptr ? source : sdlTicks;
}

unsigned int Timer::ticks() {
    return tickSource();
}

Timer::Timer(unsigned int rate) : rowRate(rate) {}

Timer::~Timer() = default;

bool Timer::init() {
    endTime = 600000;
    endRow = 600000 / (1000 / rowRate);
    unsigned int now = ticks();
    startTicks = now;
    pauseTicks = now;
    lastFrameTime = now;
    return true;
}

bool Timer::dispose() {
    return true;
}

void Timer::pause() {
    paused = true;
    pauseTicks = ticks();
}

void Timer::play() {
    unsigned int time = getTime();
    paused = false;
    startTicks = ticks() - time;
    lastFrameTime = time;
}

unsigned int Timer::getTime() {
    return paused ? pauseTicks - startTicks : ticks() - startTicks;
}

unsigned int Timer::getRowTime() {
    return getRow() * 1000 / rowRate;
}

unsigned int Timer::getRow() {
    return getTime() * rowRate / 1000;
}

void Timer::setRow(unsigned int row) {
    setTime(row * 1000 / rowRate);
}

void Timer::setTime(unsigned int time) {
    unsigned int now = ticks();
    startTicks = now - time;
    pauseTicks = now;
    lastFrameTime = time;
}

bool Timer::isPaused() {
    return paused;
}

unsigned int Timer::getEndTime() {
    return endTime;
}

unsigned int Timer::getEndRow() {
    return endRow;
}

unsigned int Timer::updateFrameTime(unsigned int time) {
    if (paused) {
        return 0;
    }
    unsigned int step = time - lastFrameTime;
    lastFrameTime = time;
    return step;
}

void Timer::updateSystem() {}

std::string Timer::getMessage() {
    return message;
}

void Timer::GetDirectSoundData(SoundChannel, int count, float* out) {
    for (int i = 0; i < count; ++i) {
        out[i] = static_cast<float>(1.0 / (std::rand() % 10000));
    }
}
