#include "Effects.h"

#include "Oscillator.h"

#include <algorithm>
#include <cmath>

namespace synth {
void DelayLine::resize(int frames) {
    buffer.assign(static_cast<size_t>(std::max(frames, 2)), 0.0f);
    writeIndex = 0;
}

void DelayLine::push(float value) {
    buffer[static_cast<size_t>(writeIndex)] = value;
    if (++writeIndex == static_cast<int>(buffer.size()))
        writeIndex = 0;
}

float DelayLine::readWhole(int delay) const {
    int index = writeIndex - delay;
    if (index < 0)
        index += static_cast<int>(buffer.size());
    return buffer[static_cast<size_t>(index)];
}

float DelayLine::read(double delay) const {
    const int whole = static_cast<int>(delay);
    const float fraction = static_cast<float>(delay - whole);
    const float a = readWhole(whole);
    const float b = readWhole(whole + 1);
    return a + (b - a) * fraction;
}

// ---- Chorus -------------------------------------------------------------------------------

namespace {
constexpr double kChorusBaseSeconds = 0.012;
constexpr double kChorusDepthSeconds = 0.004;
constexpr double kChorusRate = 0.31;
} // namespace

Chorus::Chorus(double wetMix, double rate) : mix(wetMix), sampleRate(rate) {
    const int frames = static_cast<int>((kChorusBaseSeconds + kChorusDepthSeconds) * rate) + 4;
    lineLeft.resize(frames);
    lineRight.resize(frames);
}

void Chorus::process(float* left, float* right, int frames) {
    const double base = kChorusBaseSeconds * sampleRate;
    const double depth = kChorusDepthSeconds * sampleRate;
    const double step = kChorusRate / sampleRate;
    // Keep loudness even: the wet copies add power, the dry share gives a little back.
    const float dryGain = static_cast<float>(1.0 - 0.3 * mix);
    const float wetGain = static_cast<float>(0.7 * mix);
    for (int n = 0; n < frames; ++n) {
        lineLeft.push(left[n]);
        lineRight.push(right[n]);
        const double quarterOn = phase < 0.75 ? phase + 0.25 : phase - 0.75;
        const float wetLeft = lineLeft.read(base + depth * sineOfPhase(phase));
        const float wetRight = lineRight.read(base + depth * sineOfPhase(quarterOn));
        left[n] = left[n] * dryGain + wetLeft * wetGain;
        right[n] = right[n] * dryGain + wetRight * wetGain;
        phase += step;
        if (phase >= 1.0)
            phase -= 1.0;
    }
}

// ---- Delay --------------------------------------------------------------------------------

StereoDelay::StereoDelay(const ParamSet& params, double secondsPerBeat, double sampleRate)
    : delayFrames(std::max(
          1, static_cast<int>(std::lround(params.get("beats") * secondsPerBeat * sampleRate)))),
      feedback(params.get("feedback")), wet(decibelsToGain(params.get("volume"))) {
    lineLeft.resize(delayFrames + 1);
    lineRight.resize(delayFrames + 1);
    dampLeft.setup(params.get("damping"), sampleRate);
    dampRight.setup(params.get("damping"), sampleRate);
    thinLeft.setup(params.get("lowcut"), sampleRate);
    thinRight.setup(params.get("lowcut"), sampleRate);
}

void StereoDelay::process(const float* inLeft, const float* inRight, float* outLeft,
                          float* outRight, int frames) {
    for (int n = 0; n < frames; ++n) {
        const float echoLeft = lineLeft.readWhole(delayFrames);
        const float echoRight = lineRight.readWhole(delayFrames);
        // The input enters on the left only and each echo crosses to the other side.
        const double mono = 0.5 * (inLeft[n] + inRight[n]);
        const double intoLeft = thinLeft.process(dampLeft.process(mono + feedback * echoRight));
        const double intoRight = thinRight.process(dampRight.process(feedback * echoLeft));
        lineLeft.push(static_cast<float>(intoLeft));
        lineRight.push(static_cast<float>(intoRight));
        outLeft[n] += static_cast<float>(echoLeft * wet);
        outRight[n] += static_cast<float>(echoRight * wet);
    }
}

// ---- Reverb -------------------------------------------------------------------------------

namespace {
// Mutually prime line lengths (ms at size 1): no two lines reinforce the same resonances.
constexpr double kLineMilliseconds[8] = {31.3, 37.1, 41.9, 47.3, 53.9, 59.3, 67.1, 73.7};
constexpr double kDiffuserMilliseconds[4] = {4.7, 3.6, 12.7, 9.3};
// Each output takes the lines with its own signs, so the two sides are uncorrelated.
constexpr double kLeftSigns[8] = {1, -1, 1, -1, 1, -1, 1, -1};
constexpr double kRightSigns[8] = {1, 1, -1, -1, 1, 1, -1, -1};
} // namespace

double Reverb::AllPass::process(double input) {
    const double delayed = line.readWhole(delay);
    const double into = input + gain * delayed;
    line.push(static_cast<float>(into));
    return delayed - gain * into;
}

Reverb::Reverb(const ParamSet& params, double sampleRate)
    : wet(decibelsToGain(params.get("volume"))),
      preDelayFrames(std::max(1, static_cast<int>(params.get("predelay") * sampleRate))) {
    const double size = params.get("size");
    const double decaySeconds = params.get("decay");
    preDelay.resize(preDelayFrames + 1);
    lowCut.setup(params.get("lowcut"), sampleRate);
    for (int i = 0; i < kDiffusers; ++i) {
        diffusers[i].delay = static_cast<int>(kDiffuserMilliseconds[i] * 0.001 * sampleRate);
        diffusers[i].line.resize(diffusers[i].delay + 1);
    }
    for (int i = 0; i < kLines; ++i) {
        lengths[i] = static_cast<int>(kLineMilliseconds[i] * 0.001 * size * sampleRate);
        lines[i].resize(lengths[i] + 1);
        // -60 dB after decaySeconds, whatever the length of the line.
        gains[i] = std::pow(10.0, -3.0 * lengths[i] / (decaySeconds * sampleRate));
        damping[i].setup(params.get("damping"), sampleRate);
    }
}

void Reverb::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                     int frames) {
    double taps[kLines];
    for (int n = 0; n < frames; ++n) {
        preDelay.push(static_cast<float>(lowCut.process(0.5 * (inLeft[n] + inRight[n]))));
        double input = preDelay.readWhole(preDelayFrames);
        for (AllPass& diffuser : diffusers)
            input = diffuser.process(input);
        double sum = 0.0;
        for (int i = 0; i < kLines; ++i) {
            taps[i] = damping[i].process(lines[i].readWhole(lengths[i]) * gains[i]);
            sum += taps[i];
        }
        // Householder reflection: energy-preserving and every line feeds every other.
        const double reflect = 2.0 / kLines * sum;
        double left = 0.0, right = 0.0;
        for (int i = 0; i < kLines; ++i) {
            lines[i].push(static_cast<float>(taps[i] - reflect + input * kLeftSigns[i]));
            left += taps[i] * kLeftSigns[i];
            right += taps[i] * kRightSigns[i];
        }
        outLeft[n] += static_cast<float>(left * wet * 0.35);
        outRight[n] += static_cast<float>(right * wet * 0.35);
    }
}

} // namespace synth
