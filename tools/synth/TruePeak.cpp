#include "TruePeak.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

constexpr double kPi = 3.141592653589793;
// Kaiser window shape: the side lobes of the interpolation kernel stay near -80 dB.
constexpr double kKaiserBeta = 8.0;
constexpr int kPoints = TruePeakDetector::kOversampling - 1;
constexpr int kTaps = 2 * TruePeakDetector::kReach;

// Modified Bessel function of the first kind, order zero, by its power series.
double besselI0(double x) {
    double sum = 1.0, term = 1.0;
    for (int k = 1; k < 30; ++k) {
        term *= (x / (2.0 * k)) * (x / (2.0 * k));
        sum += term;
    }
    return sum;
}

double windowedSinc(double distance) {
    const double x = distance / TruePeakDetector::kReach;
    if (std::fabs(x) >= 1.0)
        return 0.0;
    const double sinc = distance == 0.0 ? 1.0 : std::sin(kPi * distance) / (kPi * distance);
    return sinc * besselI0(kKaiserBeta * std::sqrt(1.0 - x * x)) / besselI0(kKaiserBeta);
}

// kernel[p][t]: the weight of the t-th sample of the window for the point (p + 1) / 4 of the
// way across the gap in its middle.
struct Kernel {
    double weights[kPoints][kTaps];
    Kernel() {
        for (int p = 0; p < kPoints; ++p) {
            const double offset = static_cast<double>(p + 1) / TruePeakDetector::kOversampling;
            for (int t = 0; t < kTaps; ++t)
                weights[p][t] = windowedSinc(t - (TruePeakDetector::kReach - 1) - offset);
        }
    }
};

const Kernel& kernel() {
    static const Kernel table;
    return table;
}

} // namespace

TruePeakDetector::TruePeakDetector() {
    kernel();
}

double TruePeakDetector::push(float sample) {
    history[static_cast<size_t>(position)] = sample;
    history[static_cast<size_t>(position + kTaps)] = sample;
    position = (position + 1) % kTaps;
    // The latest kTaps samples, oldest first; the gap between the middle two is measured.
    const double* window = history.data() + position;
    double peak = std::fabs(window[kReach]);
    for (const auto& weights : kernel().weights) {
        double value = 0.0;
        for (int t = 0; t < kTaps; ++t)
            value += weights[t] * window[t];
        peak = std::max(peak, std::fabs(value));
    }
    return peak;
}

} // namespace synth
