#pragma once

// Hooks into the frame loop, for whoever needs to steer or watch frames (offline rendering,
// benchmarks). Both run with the screen bound; the base does nothing.
class FrameListener {
public:
    virtual ~FrameListener() = default;
    // Before the clock is read for a frame.
    virtual void beforeFrame() {}
    // After every effect has drawn a frame showing time, before the buffers are swapped.
    virtual void afterFrame(unsigned int time) { static_cast<void>(time); }
    // Once the loop has ended, while the screen and its GL context still exist.
    virtual void afterLastFrame() {}
};
