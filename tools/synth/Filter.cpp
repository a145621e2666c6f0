#include "Filter.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {
constexpr double kPi = 3.141592653589793;
}

double clampCutoff(double hz, double sampleRate) {
    return std::clamp(hz, 10.0, 0.45 * sampleRate);
}

void StateVariableFilter::setup(double cutoffHz, double q, double sampleRate) {
    const double g = std::tan(kPi * clampCutoff(cutoffHz, sampleRate) / sampleRate);
    k = 1.0 / std::max(q, 0.05);
    a1 = 1.0 / (1.0 + g * (g + k));
    a2 = g * a1;
    a3 = g * a2;
}

StateVariableFilter::Outputs StateVariableFilter::process(double input) {
    const double v3 = input - state2;
    const double v1 = a1 * state1 + a2 * v3;
    const double v2 = state2 + a2 * state1 + a3 * v3;
    state1 = 2.0 * v1 - state1;
    state2 = 2.0 * v2 - state2;
    return {v2, v1, input - k * v1 - v2};
}

void OnePoleLowPass::setup(double cutoffHz, double sampleRate) {
    coefficient = 1.0 - std::exp(-2.0 * kPi * clampCutoff(cutoffHz, sampleRate) / sampleRate);
}

} // namespace synth
