#pragma once

#include <cmath>
#include <cstdint>

namespace synth {

enum class Waveform { Sine, Saw, Square, Triangle };

// sin(2 pi * phase) for a phase in [0, 1): folded onto a quarter cycle and summed as a
// polynomial, accurate to about 1e-7 and several times cheaper than std::sin.
inline double sineOfPhase(double phase) {
    double x = phase < 0.25 ? phase : phase < 0.75 ? 0.5 - phase : phase - 1.0;
    x *= 6.283185307179586;
    const double x2 = x * x;
    return x * (1.0 +
                x2 * (-1.0 / 6.0 +
                      x2 * (1.0 / 120.0 + x2 * (-1.0 / 5040.0 + x2 * (1.0 / 362880.0 +
                                                                      x2 * (-1.0 / 39916800.0))))));
}

// Smooth saturation that behaves like tanh for |x| < 3 and stays within [-1, 1].
inline double softClip(double x) {
    if (x <= -3.0)
        return -1.0;
    if (x >= 3.0)
        return 1.0;
    const double x2 = x * x;
    return x * (27.0 + x2) / (27.0 + 9.0 * x2);
}

// A phase-accumulating oscillator. Saw and square get polynomial band-limited steps and the
// triangle band-limited corners, so high notes do not fold harmonics back into the audible band.
class Oscillator {
public:
    void setWaveform(Waveform shape) { waveform = shape; }
    void setFrequency(double hz, double sampleRate) { increment = hz / sampleRate; }
    void setPulseWidth(double width) { pulseWidth = width; }
    void setPhase(double value) { phase = value; }

    double next() {
        switch (waveform) {
        case Waveform::Sine:
            return advance(sineOfPhase(phase));
        case Waveform::Saw:
            return advance(saw());
        case Waveform::Square:
            return advance(square());
        default:
            return advance(triangle());
        }
    }

    // Adds `frames` samples times `gain` to `out`: the same as next() in a loop, with the
    // choice of waveform made once.
    void addTo(double* out, int frames, double gain) {
        switch (waveform) {
        case Waveform::Sine:
            for (int n = 0; n < frames; ++n)
                out[n] += gain * advance(sineOfPhase(phase));
            break;
        case Waveform::Saw:
            for (int n = 0; n < frames; ++n)
                out[n] += gain * advance(saw());
            break;
        case Waveform::Square:
            for (int n = 0; n < frames; ++n)
                out[n] += gain * advance(square());
            break;
        default:
            for (int n = 0; n < frames; ++n)
                out[n] += gain * advance(triangle());
            break;
        }
    }

private:
    // Correction to subtract around a downward step of 2 at phase 0, spread over one sample
    // either side (the naive saw's reset).
    double stepResidual(double t) const {
        const double dt = increment;
        if (t < dt) {
            const double x = t / dt;
            return x + x - x * x - 1.0;
        }
        if (t > 1.0 - dt) {
            const double x = (t - 1.0) / dt;
            return x * x + x + x + 1.0;
        }
        return 0.0;
    }

    // Correction to add around a corner at phase 0 where the slope rises by 1 per sample: the
    // integral of the step correction.
    double cornerResidual(double t) const {
        const double dt = increment;
        if (t < dt) {
            const double x = 1.0 - t / dt;
            return x * x * x / 6.0;
        }
        if (t > 1.0 - dt) {
            const double x = (t - 1.0) / dt + 1.0;
            return x * x * x / 6.0;
        }
        return 0.0;
    }

    static double wrap(double t) { return t < 0.0 ? t + 1.0 : t; }

    // Moves on by one sample and hands back the value taken before.
    double advance(double value) {
        phase += increment;
        if (phase >= 1.0)
            phase -= 1.0;
        return value;
    }

    double saw() const { return 2.0 * phase - 1.0 - stepResidual(phase); }

    double square() const {
        double value = phase < pulseWidth ? 1.0 : -1.0;
        value += stepResidual(phase);
        value -= stepResidual(wrap(phase - pulseWidth));
        return value;
    }

    double triangle() const {
        double value = phase < 0.5 ? 4.0 * phase - 1.0 : 3.0 - 4.0 * phase;
        // The slope jumps by +8 per cycle at phase 0 and by -8 at phase 0.5.
        const double slopeChange = 8.0 * increment;
        value += slopeChange * cornerResidual(phase);
        value -= slopeChange * cornerResidual(wrap(phase - 0.5));
        return value;
    }

    Waveform waveform = Waveform::Saw;
    double phase = 0.0;
    double increment = 0.0;
    double pulseWidth = 0.5;
};

// White noise from a seeded xorshift generator: the same seed always gives the same sound.
class Noise {
public:
    explicit Noise(uint32_t seed = 1) { reseed(seed); }
    void reseed(uint32_t seed) { state = seed ? seed : 0x9e3779b9u; }
    // Uniform in [0, 1).
    double unit() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state * (1.0 / 4294967296.0);
    }
    // Uniform in [-1, 1).
    float next() { return static_cast<float>(unit() * 2.0 - 1.0); }

private:
    uint32_t state;
};

// Mixes several integers into one well-spread seed, so each voice gets its own noise.
uint32_t mixSeed(uint32_t a, uint32_t b);

double midiToHz(double key);

} // namespace synth
