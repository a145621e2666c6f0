#include "Envelope.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

// Shortest segments: anything faster would click.
constexpr double kMinimumAttack = 0.002;
constexpr double kMinimumRelease = 0.004;
// Small bias: nearly exponential. Large bias: nearly linear.
constexpr double kAttackBias = 2.0;
constexpr double kFallBias = 0.02;

} // namespace

void Envelope::set(double attackSeconds, double decaySeconds, double sustainLevel,
                   double releaseSeconds) {
    attack = std::max(attackSeconds, kMinimumAttack);
    decay = std::max(decaySeconds, kMinimumRelease);
    sustain = std::clamp(sustainLevel, 0.0, 1.0);
    release = std::max(releaseSeconds, kMinimumRelease);
}

void Envelope::enter(Stage stage, double seconds, double curvature) {
    current = stage;
    from = value;
    to = stage == Stage::Attack ? 1.0 : stage == Stage::Decay ? sustain : 0.0;
    remaining = std::max(1L, std::lround(seconds * sampleRate));
    // (1 + bias) * ratio^remaining = bias: the shape reaches exactly 0 on the last sample.
    bias = curvature;
    ratio = std::pow(bias / (1.0 + bias), 1.0 / static_cast<double>(remaining));
    shape = 1.0;
}

void Envelope::noteOn() {
    enter(Stage::Attack, attack, kAttackBias);
}

void Envelope::noteOff() {
    if (current != Stage::Idle && current != Stage::Release)
        enter(Stage::Release, release, kFallBias);
}

double Envelope::next() {
    switch (current) {
    case Stage::Idle:
        return 0.0;
    case Stage::Sustain:
        return value;
    default:
        break;
    }
    shape = (shape + bias) * ratio - bias;
    --remaining;
    if (remaining <= 0) {
        value = to;
        if (current == Stage::Attack)
            enter(Stage::Decay, decay, kFallBias);
        else
            current = current == Stage::Decay ? Stage::Sustain : Stage::Idle;
    } else {
        value = to + (from - to) * shape;
    }
    return value;
}

} // namespace synth
