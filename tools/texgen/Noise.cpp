#include "Noise.h"

#include <cmath>
#include <complex>
#include <set>
#include <utility>

namespace texgen {

namespace {

constexpr float kTwoPi = 6.28318530717958647692f;

float fade(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float latticeDot(int ix, int iy, float dx, float dy, int period, std::uint32_t seed) {
    const int wx = ((ix % period) + period) % period;
    const int wy = ((iy % period) + period) % period;
    const float angle = unitFromBits(hashCell(wx, wy, seed)) * kTwoPi;
    return std::cos(angle) * dx + std::sin(angle) * dy;
}

} // namespace

std::uint32_t hashBits(std::uint32_t x) {
    x ^= x >> 16;
    x *= 0x7feb352dU;
    x ^= x >> 15;
    x *= 0x846ca68bU;
    x ^= x >> 16;
    return x;
}

std::uint32_t hashCell(int x, int y, std::uint32_t seed) {
    return hashBits(std::uint32_t(x) * 0x9E3779B1U ^
                    hashBits(std::uint32_t(y) + seed * 0x85EBCA77U));
}

float unitFromBits(std::uint32_t bits) {
    return float(bits >> 8) * (1.0f / 16777216.0f);
}

std::uint64_t Random::next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

float Random::uniform(float low, float high) {
    return low + (high - low) * unitFromBits(std::uint32_t(next() >> 32));
}

float periodicNoise(float x, float y, int period, std::uint32_t seed) {
    const float px = x * period;
    const float py = y * period;
    const int ix = int(std::floor(px));
    const int iy = int(std::floor(py));
    const float dx = px - ix;
    const float dy = py - iy;
    const float n00 = latticeDot(ix, iy, dx, dy, period, seed);
    const float n10 = latticeDot(ix + 1, iy, dx - 1.0f, dy, period, seed);
    const float n01 = latticeDot(ix, iy + 1, dx, dy - 1.0f, period, seed);
    const float n11 = latticeDot(ix + 1, iy + 1, dx - 1.0f, dy - 1.0f, period, seed);
    const float u = fade(dx);
    const float v = fade(dy);
    const float top = n00 + (n10 - n00) * u;
    const float bottom = n01 + (n11 - n01) * u;
    return top + (bottom - top) * v;
}

float periodicFbm(float x, float y, int period, int octaves, float gain, std::uint32_t seed) {
    float sum = 0.0f;
    float weight = 1.0f;
    float total = 0.0f;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * periodicNoise(x, y, period << octave, seed + 977U * octave);
        total += weight;
        weight *= gain;
    }
    return sum / total;
}

WaveSurface::WaveSurface(const WaveBand& band) : sharpness_(band.sharpness) {
    Random random(band.seed);
    std::set<std::pair<int, int>> used;
    int attempts = 0;
    while (int(components_.size()) < band.count && attempts++ < band.count * 200) {
        const float cycles =
            band.minCycles * std::pow(band.maxCycles / band.minCycles, random.uniform(0.0f, 1.0f));
        const float angle = band.direction + random.uniform(-band.spread, band.spread);
        const int cx = int(std::lround(cycles * std::cos(angle)));
        const int cy = int(std::lround(cycles * std::sin(angle)));
        // A whole number of cycles on both axes is what makes the tile repeat exactly.
        if ((cx == 0 && cy == 0) || !used.insert({cx, cy}).second) {
            continue;
        }
        const float length = std::sqrt(float(cx * cx + cy * cy));
        WaveComponent wave;
        wave.cyclesX = cx;
        wave.cyclesY = cy;
        wave.amplitude = std::pow(length, -band.falloff) * random.uniform(0.6f, 1.0f);
        wave.phase = random.uniform(0.0f, kTwoPi);
        components_.push_back(wave);
    }
}

void WaveSurface::accumulate(Sample& s, const WaveComponent& w, float cosine, float sine) const {
    // exp(k (cos θ − 1)) is a sine for k = 0 and a peaked crest for larger k.
    float height = cosine;
    float derivative = -sine;
    if (sharpness_ > 0.0f) {
        height = std::exp(sharpness_ * (cosine - 1.0f));
        derivative = -sharpness_ * sine * height;
    }
    s.height += w.amplitude * height;
    s.slopeX += w.amplitude * derivative * kTwoPi * w.cyclesX;
    s.slopeY += w.amplitude * derivative * kTwoPi * w.cyclesY;
}

WaveSurface::Sample WaveSurface::at(float x, float y) const {
    Sample s{0.0f, 0.0f, 0.0f};
    for (const WaveComponent& w : components_) {
        const float theta = kTwoPi * (w.cyclesX * x + w.cyclesY * y) + w.phase;
        accumulate(s, w, std::cos(theta), std::sin(theta));
    }
    return s;
}

std::vector<WaveSurface::Sample> WaveSurface::grid(int n) const {
    std::vector<Sample> samples(std::size_t(n) * n, Sample{0.0f, 0.0f, 0.0f});
    std::vector<std::complex<float>> across(n);
    std::vector<std::complex<float>> down(n);
    for (const WaveComponent& w : components_) {
        // e^{iθ} splits into a factor per column and one per row.
        for (int i = 0; i < n; ++i) {
            const float t = (i + 0.5f) / n;
            across[i] = std::polar(1.0f, kTwoPi * w.cyclesX * t);
            down[i] = std::polar(1.0f, kTwoPi * w.cyclesY * t + w.phase);
        }
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < n; ++i) {
                const std::complex<float> e = across[i] * down[j];
                accumulate(samples[std::size_t(j) * n + i], w, e.real(), e.imag());
            }
        }
    }
    return samples;
}

} // namespace texgen
