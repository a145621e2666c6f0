#include "Oscillator.h"

#include <cmath>

namespace synth {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// Correction to subtract around a downward step of 2 at phase 0, spread over one sample
// either side (the naive saw's reset).
double stepResidual(double t, double dt) {
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
double cornerResidual(double t, double dt) {
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

double wrap(double phase) {
    return phase - std::floor(phase);
}

} // namespace

double Oscillator::square() const {
    double value = phase < pulseWidth ? 1.0 : -1.0;
    value += stepResidual(phase, increment);
    value -= stepResidual(wrap(phase - pulseWidth), increment);
    return value;
}

double Oscillator::triangle() const {
    double value = phase < 0.5 ? 4.0 * phase - 1.0 : 3.0 - 4.0 * phase;
    // The slope jumps by +8 per cycle at phase 0 and by -8 at phase 0.5.
    const double slopeChange = 8.0 * increment;
    value += slopeChange * cornerResidual(phase, increment);
    value -= slopeChange * cornerResidual(wrap(phase - 0.5), increment);
    return value;
}

double Oscillator::next() {
    double value = 0.0;
    switch (waveform) {
    case Waveform::Sine:
        value = std::sin(kTwoPi * phase);
        break;
    case Waveform::Saw:
        value = 2.0 * phase - 1.0 - stepResidual(phase, increment);
        break;
    case Waveform::Square:
        value = square();
        break;
    case Waveform::Triangle:
        value = triangle();
        break;
    }
    phase += increment;
    if (phase >= 1.0)
        phase -= 1.0;
    return value;
}

float Noise::next() {
    return static_cast<float>(unit() * 2.0 - 1.0);
}

double Noise::unit() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state * (1.0 / 4294967296.0);
}

uint32_t mixSeed(uint32_t a, uint32_t b) {
    uint32_t h = a * 0x85ebca6bu ^ (b + 0x9e3779b9u + (a << 6) + (a >> 2));
    h ^= h >> 16;
    h *= 0x7feb352du;
    h ^= h >> 15;
    h *= 0x846ca68bu;
    h ^= h >> 16;
    return h;
}

double midiToHz(double key) {
    return 440.0 * std::pow(2.0, (key - 69.0) / 12.0);
}

} // namespace synth
