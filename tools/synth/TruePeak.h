#pragma once

#include <array>

namespace synth {

// Finds the peaks a converter's reconstruction reaches between samples: each gap between two
// samples is interpolated at three points (four times oversampling) with a windowed sinc, so
// a sine whose samples straddle its crest still reads its true height.
class TruePeakDetector {
public:
    static constexpr int kOversampling = 4;
    // Samples on each side of a gap that the interpolation reads.
    static constexpr int kReach = 8;

    TruePeakDetector();
    // Feeds the next sample; returns the largest magnitude over the gap that ends at the sample
    // fed latency() calls earlier, that sample included.
    double push(float sample);
    static constexpr int latency() { return kReach - 1; }

private:
    static constexpr int kTaps = 2 * kReach;
    // Twice the taps, every sample written twice, so the latest kTaps are always contiguous.
    std::array<double, 2 * kTaps> history{};
    int position = 0;
};

} // namespace synth
