#include "FrequencyAnalyser.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>

namespace {
const double PI = 3.14159265358979323846;
}

FrequencyAnalyser::~FrequencyAnalyser() {
    kiss_fftr_free(plan);
}

void FrequencyAnalyser::prepare(int count) {
    if (count == planCount) {
        return;
    }
    kiss_fftr_free(plan);
    const int size = 2 * count;
    plan = kiss_fftr_alloc(size, 0, nullptr, nullptr);
    planCount = count;
    window.resize(static_cast<std::size_t>(size));
    double sum = 0.0;
    for (int i = 0; i < size; ++i) {
        window[i] = static_cast<float>(0.54 - 0.46 * std::cos(2.0 * PI * i / (size - 1)));
        sum += window[i];
    }
    // A sine of amplitude A on a bin gives |X| = A x sum(window) / 2.
    scale = static_cast<float>(2.0 / sum);
    block.resize(static_cast<std::size_t>(size));
    bins.resize(static_cast<std::size_t>(count) + 1);
}

void FrequencyAnalyser::compute(const float* samples, long frames, int channels, int channel,
                                long endFrame, int count, float* out) {
    prepare(count);
    const long size = 2L * count;
    const long first = std::min(endFrame, frames) - size;
    for (long i = 0; i < size; ++i) {
        const long frame = first + i;
        const float value = frame >= 0 ? samples[frame * channels + channel] : 0.0f;
        block[static_cast<std::size_t>(i)] = value * window[static_cast<std::size_t>(i)];
    }
    // std::complex<float> has the layout of kissfft's {r, i} pair.
    kiss_fftr(plan, block.data(), reinterpret_cast<kiss_fft_cpx*>(bins.data()));
    for (int i = 0; i < count; ++i) {
        out[i] = std::min(1.0f, std::abs(bins[static_cast<std::size_t>(i)]) * scale);
    }
}
