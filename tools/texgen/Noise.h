// Deterministic randomness and periodic noise: the same seed gives the same picture on every
// run, and every periodic function here repeats exactly over the unit square.
#pragma once

#include <cstdint>
#include <vector>

namespace texgen {

std::uint32_t hashBits(std::uint32_t x);
std::uint32_t hashCell(int x, int y, std::uint32_t seed);
// Uniform in [0, 1) from 32 hash bits.
float unitFromBits(std::uint32_t bits);

// Small sequential generator (SplitMix64) for choosing parameters.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next();
    float uniform(float low, float high);

private:
    std::uint64_t state_;
};

// Gradient noise on a lattice of `period` cells that wraps, at (x, y) in [0, 1) of the tile;
// roughly in -0.7 … 0.7.
float periodicNoise(float x, float y, int period, std::uint32_t seed);
// Octaves of periodicNoise, each with twice the cells and `gain` times the amplitude,
// normalised so that the weights add up to one.
float periodicFbm(float x, float y, int period, int octaves, float gain, std::uint32_t seed);

// One travelling-wave crest pattern with a whole number of cycles across the tile.
struct WaveComponent {
    int cyclesX = 0;
    int cyclesY = 0;
    float amplitude = 0.0f;
    float phase = 0.0f;
};

struct WaveBand {
    float minCycles = 1.0f;
    float maxCycles = 4.0f;
    float direction = 0.0f; // radians, the mean direction of travel
    float spread = 3.2f;    // radians either side of it
    float falloff = 1.5f;   // amplitude ∝ cycles^-falloff
    float sharpness = 0.0f; // 0: sine profile; larger: narrow crests, flat troughs
    int count = 16;
    std::uint64_t seed = 1;
};

class WaveSurface {
public:
    explicit WaveSurface(const WaveBand& band);

    struct Sample {
        float height;
        float slopeX; // ∂height/∂x, per tile width
        float slopeY; // ∂height/∂y, per tile height
    };
    // (x, y) in tile units; exactly periodic with period 1 on both axes.
    Sample at(float x, float y) const;
    // The samples at ((i + 0.5) / n, (j + 0.5) / n), index j * n + i; the same values as at()
    // up to rounding, much faster.
    std::vector<Sample> grid(int n) const;
    const std::vector<WaveComponent>& components() const { return components_; }

private:
    void accumulate(Sample& s, const WaveComponent& w, float cosine, float sine) const;

    std::vector<WaveComponent> components_;
    float sharpness_;
};

} // namespace texgen
