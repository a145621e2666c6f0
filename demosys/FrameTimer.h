#pragma once

#include "Timer.h"

// The clock of offline rendering (shots, capture, benchmark): time advances by a fixed step
// each frame, never with the wall clock, so a given frame always shows the same moment.
class FrameTimer : public Timer {
public:
    FrameTimer(unsigned int rowRate, double stepMs);

    bool init() override;
    void play() override;
    void pause() override;
    unsigned int getTime() override;
    void setTime(unsigned int time) override;
    // Moves the clock on by one frame step.
    void nextFrame() { ++frame; }
    // Jumps so that the next frame shows time; the frame step is unchanged.
    void jumpTo(unsigned int time);

private:
    double step;
    unsigned int origin = 0;
    unsigned long frame = 0;
};
