#pragma once

#include <complex>
#include <vector>

struct kiss_fftr_state;

// Magnitude spectrum of the samples just before a play position: 2 x count samples of one
// channel, Hamming window, real FFT, count magnitudes from 0 Hz up to just below half the
// sample rate. Magnitudes are scaled so that a full-scale sine on a bin reads 1, and capped
// at 1. The FFT plan and window are kept for the last count asked for.
class FrequencyAnalyser {
public:
    FrequencyAnalyser() = default;
    ~FrequencyAnalyser();
    FrequencyAnalyser(const FrequencyAnalyser&) = delete;
    FrequencyAnalyser& operator=(const FrequencyAnalyser&) = delete;

    // samples holds frames x channels interleaved values; the block ends just before
    // endFrame and reads zeros where it reaches before the first frame.
    void compute(const float* samples, long frames, int channels, int channel, long endFrame,
                 int count, float* out);

private:
    void prepare(int count);

    kiss_fftr_state* plan = nullptr;
    int planCount = 0;
    std::vector<float> window;
    float scale = 0.0f;
    std::vector<float> block;
    std::vector<std::complex<float>> bins;
};
