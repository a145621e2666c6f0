#pragma once

namespace synth {

// Resonant state-variable filter in trapezoidal (zero-delay feedback) form: it stays stable
// and in tune up to Nyquist and while its cutoff moves. Gives low-, band- and high-pass at
// once; at the cutoff the low-pass gain equals q (q = 0.7071 is the -3 dB Butterworth case).
class StateVariableFilter {
public:
    struct Outputs {
        double low, band, high;
    };

    void setup(double cutoffHz, double q, double sampleRate);
    Outputs process(double input);
    double lowPass(double input) { return process(input).low; }
    void reset() { state1 = state2 = 0.0; }

private:
    double k = 1.4142135623730951;
    double a1 = 0.0, a2 = 0.0, a3 = 0.0;
    double state1 = 0.0, state2 = 0.0;
};

// One-pole low-pass (6 dB per octave), for damping in feedback loops and smoothing.
class OnePoleLowPass {
public:
    void setup(double cutoffHz, double sampleRate);
    double process(double input) {
        state += coefficient * (input - state);
        return state;
    }

private:
    double coefficient = 1.0;
    double state = 0.0;
};

// One-pole high-pass: removes DC and rumble below its cutoff.
class OnePoleHighPass {
public:
    void setup(double cutoffHz, double sampleRate) { lowPass.setup(cutoffHz, sampleRate); }
    double process(double input) { return input - lowPass.process(input); }

private:
    OnePoleLowPass lowPass;
};

// Highest cutoff a filter is given: a little below Nyquist, where tan() would blow up.
double clampCutoff(double hz, double sampleRate);

} // namespace synth
