#pragma once

#include "Filter.h"
#include "Params.h"

#include <vector>

namespace synth {

// A delay line read at fractional positions.
class DelayLine {
public:
    void resize(int frames);
    void push(float value);
    // The sample written `delay` frames ago (at least 1), interpolated linearly.
    float read(double delay) const;
    float readWhole(int delay) const;

private:
    std::vector<float> buffer;
    int writeIndex = 0;
};

// Stereo chorus: two slowly swaying short delays, one per side and a quarter-cycle apart,
// widen and thicken pads.
class Chorus {
public:
    Chorus(double mix, double sampleRate);
    void process(float* left, float* right, int frames);

private:
    double mix, sampleRate;
    DelayLine lineLeft, lineRight;
    double phase = 0.0;
};

// Ping-pong echo synced to the tempo; the echoes darken and thin out as they repeat.
class StereoDelay {
public:
    StereoDelay(const ParamSet& params, double secondsPerBeat, double sampleRate);
    // Adds the echoes of `inLeft/inRight` to `outLeft/outRight`.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                 int frames);

private:
    DelayLine lineLeft, lineRight;
    int delayFrames;
    double feedback, wet;
    OnePoleLowPass dampLeft, dampRight;
    OnePoleHighPass thinLeft, thinRight;
};

// Feedback delay network reverb: eight delay lines mixed through a Householder matrix, each
// with a gain set for the decay time and a low-pass for air absorption. Diffusing all-passes
// in front turn each input click into a dense wash at once.
class Reverb {
public:
    Reverb(const ParamSet& params, double sampleRate);
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                 int frames);

private:
    static constexpr int kLines = 8;
    static constexpr int kDiffusers = 4;

    struct AllPass {
        DelayLine line;
        int delay = 1;
        double gain = 0.6;
        double process(double input);
    };

    double wet;
    DelayLine preDelay;
    int preDelayFrames;
    OnePoleHighPass lowCut;
    AllPass diffusers[kDiffusers];
    DelayLine lines[kLines];
    int lengths[kLines];
    double gains[kLines];
    OnePoleLowPass damping[kLines];
};

} // namespace synth
