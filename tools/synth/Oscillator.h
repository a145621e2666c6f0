#pragma once

#include <cstdint>

namespace synth {

enum class Waveform { Sine, Saw, Square, Triangle };

// A phase-accumulating oscillator. Saw and square get polynomial band-limited steps and the
// triangle band-limited corners, so high notes do not fold harmonics back into the audible band.
class Oscillator {
public:
    void setWaveform(Waveform shape) { waveform = shape; }
    void setFrequency(double hz, double sampleRate) { increment = hz / sampleRate; }
    void setPulseWidth(double width) { pulseWidth = width; }
    void setPhase(double value) { phase = value; }
    double next();

private:
    double square() const;
    double triangle() const;

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
    // Uniform in [-1, 1).
    float next();
    // Uniform in [0, 1).
    double unit();

private:
    uint32_t state;
};

// Mixes several integers into one well-spread seed, so each voice gets its own noise.
uint32_t mixSeed(uint32_t a, uint32_t b);

double midiToHz(double key);

} // namespace synth
