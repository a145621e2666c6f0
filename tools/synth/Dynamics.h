#pragma once

#include "TruePeak.h"

#include <deque>
#include <vector>

namespace synth {

// Gentle stereo-linked compressor that glues the mix: above the threshold the level rises by
// only 1/ratio, with a soft knee and smoothed gain changes.
class Compressor {
public:
    Compressor(double thresholdDb, double ratio, double attackSeconds, double releaseSeconds,
               double makeupDb, double sampleRate);
    void process(float* left, float* right, int frames);

private:
    double gainReductionDb(double levelDb) const;

    double threshold, ratio, makeup;
    double attackFactor, releaseFactor;
    double envelopeDb = -120.0;
};

// Look-ahead brick-wall limiter on true peaks. The signal is delayed by a window of W samples
// (and the few the true-peak interpolation needs); the gain applied to a sample is the average
// of the last W window minima of the needed gain, and each of those windows (W + 1 samples)
// contains that sample, so the output never exceeds the ceiling, yet the gain moves smoothly.
// The need comes from the peaks between samples as well as the samples, so the reconstructed
// wave stays under the ceiling too.
class Limiter {
public:
    Limiter(double ceilingDb, double lookaheadSeconds, double releaseSeconds, double sampleRate);
    // Works in place; the output is late by latency() frames.
    void process(float* left, float* right, int frames);
    int latency() const { return window + TruePeakDetector::latency(); }

private:
    double windowMinimum(double need);

    double ceiling;
    int window;
    double releaseFactor;
    TruePeakDetector peakLeft, peakRight;
    std::vector<float> delayLeft, delayRight;
    int delayIndex = 0;
    // Monotonic queue of (index, need) for the sliding minimum.
    std::deque<std::pair<long, double>> minima;
    std::vector<double> recent; // the last `window` smoothed minima, for the average
    int recentIndex = 0;
    double recentSum;
    double released = 1.0;
    long index = 0;
};

} // namespace synth
