#include "Dynamics.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

constexpr double kKneeDb = 6.0;

double factorFor(double seconds, double sampleRate) {
    return std::exp(-1.0 / (std::max(seconds, 1e-5) * sampleRate));
}

} // namespace

Compressor::Compressor(double thresholdDb, double ratioValue, double attackSeconds,
                       double releaseSeconds, double makeupDb, double sampleRate)
    : threshold(thresholdDb), ratio(ratioValue), makeup(std::pow(10.0, makeupDb / 20.0)),
      attackFactor(factorFor(attackSeconds, sampleRate)),
      releaseFactor(factorFor(releaseSeconds, sampleRate)) {}

double Compressor::gainReductionDb(double levelDb) const {
    const double over = levelDb - threshold;
    const double slope = 1.0 - 1.0 / ratio;
    if (over <= -kKneeDb / 2.0)
        return 0.0;
    if (over >= kKneeDb / 2.0)
        return slope * over;
    const double into = over + kKneeDb / 2.0;
    return slope * into * into / (2.0 * kKneeDb);
}

void Compressor::process(float* left, float* right, int frames) {
    for (int n = 0; n < frames; ++n) {
        const double peak = std::max(std::fabs(left[n]), std::fabs(right[n]));
        const double levelDb = 20.0 * std::log10(std::max(peak, 1e-6));
        const double factor = levelDb > envelopeDb ? attackFactor : releaseFactor;
        envelopeDb = levelDb + factor * (envelopeDb - levelDb);
        const double reduction = gainReductionDb(envelopeDb);
        const double gain = reduction > 0.0 ? std::pow(10.0, -reduction / 20.0) * makeup : makeup;
        left[n] = static_cast<float>(left[n] * gain);
        right[n] = static_cast<float>(right[n] * gain);
    }
}

Limiter::Limiter(double ceilingDb, double lookaheadSeconds, double releaseSeconds,
                 double sampleRate)
    : ceiling(std::pow(10.0, ceilingDb / 20.0)),
      window(std::max(1, static_cast<int>(std::lround(lookaheadSeconds * sampleRate)))),
      releaseFactor(factorFor(releaseSeconds, sampleRate)),
      delayLeft(static_cast<size_t>(latency()), 0.0f),
      delayRight(static_cast<size_t>(latency()), 0.0f), recent(static_cast<size_t>(window), 1.0),
      recentSum(window) {}

double Limiter::windowMinimum(double need) {
    while (!minima.empty() && minima.back().second >= need)
        minima.pop_back();
    minima.emplace_back(index, need);
    while (minima.front().first < index - window)
        minima.pop_front();
    return minima.front().second;
}

void Limiter::process(float* left, float* right, int frames) {
    for (int n = 0; n < frames; ++n) {
        // The need of the sample TruePeakDetector::latency() back, whose neighbours are known.
        const double peak = std::max(peakLeft.push(left[n]), peakRight.push(right[n]));
        const double need = peak > ceiling ? ceiling / peak : 1.0;
        // Falls at once, recovers slowly; never above the window's minimum need.
        const double minimum = windowMinimum(need);
        released = std::min(minimum, minimum + (released - minimum) * releaseFactor);
        recentSum += released - recent[static_cast<size_t>(recentIndex)];
        recent[static_cast<size_t>(recentIndex)] = released;
        recentIndex = (recentIndex + 1) % window;
        const double gain = std::min(1.0, recentSum / window);

        const float outLeft = delayLeft[static_cast<size_t>(delayIndex)];
        const float outRight = delayRight[static_cast<size_t>(delayIndex)];
        delayLeft[static_cast<size_t>(delayIndex)] = left[n];
        delayRight[static_cast<size_t>(delayIndex)] = right[n];
        delayIndex = (delayIndex + 1) % latency();
        left[n] = static_cast<float>(outLeft * gain);
        right[n] = static_cast<float>(outRight * gain);
        ++index;
    }
}

} // namespace synth
