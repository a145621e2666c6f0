#include "Water.h"

#include "Noise.h"

#include <cmath>

namespace texgen {

namespace {

constexpr float kTwoPi = 6.28318530717958647692f;

WaveBand causticWaves() {
    WaveBand band;
    band.minCycles = 3.0f;
    band.maxCycles = 10.0f;
    band.direction = 0.6f;
    band.spread = 3.14159f;
    band.falloff = 1.8f;
    band.count = 26;
    band.seed = 0xC4057;
    return band;
}

// Root-mean-square curvature of a wave sum: the depth at which typical crests focus.
float rmsCurvature(const WaveSurface& surface) {
    float sum = 0.0f;
    for (const WaveComponent& w : surface.components()) {
        const float k2 = kTwoPi * kTwoPi * float(w.cyclesX * w.cyclesX + w.cyclesY * w.cyclesY);
        sum += 0.5f * (w.amplitude * k2) * (w.amplitude * k2);
    }
    return std::sqrt(sum);
}

void splatWrapped(Field& target, float x, float y, float weight) {
    const int x0 = int(std::floor(x));
    const int y0 = int(std::floor(y));
    const float tx = x - x0;
    const float ty = y - y0;
    const int n = target.width();
    const int ax = ((x0 % n) + n) % n;
    const int ay = ((y0 % n) + n) % n;
    const int bx = (ax + 1) % n;
    const int by = (ay + 1) % n;
    target.at(ax, ay) += weight * (1.0f - tx) * (1.0f - ty);
    target.at(bx, ay) += weight * tx * (1.0f - ty);
    target.at(ax, by) += weight * (1.0f - tx) * ty;
    target.at(bx, by) += weight * tx * ty;
}

// Light per pixel relative to an even spread (1 = average).
Field causticIntensity(int size) {
    const WaveSurface surface(causticWaves());
    const int raysPerSide = size * 4;
    const float depth = 1.1f / rmsCurvature(surface);
    const std::vector<WaveSurface::Sample> slopes = surface.grid(raysPerSide);
    Field light(size, size);
    for (int j = 0; j < raysPerSide; ++j) {
        for (int i = 0; i < raysPerSide; ++i) {
            const float x = (i + 0.5f) / raysPerSide;
            const float y = (j + 0.5f) / raysPerSide;
            const WaveSurface::Sample& s = slopes[std::size_t(j) * raysPerSide + i];
            const float landX = x - depth * s.slopeX;
            const float landY = y - depth * s.slopeY;
            splatWrapped(light, landX * size - 0.5f, landY * size - 0.5f, 1.0f / 16.0f);
        }
    }
    gaussianBlur(light, 1.0f, Edges::Wrap);
    return light;
}

Colour causticColour(float intensity) {
    const Colour deep{0.02f, 0.13f, 0.22f};
    const Colour sea{0.10f, 0.42f, 0.55f};
    const Colour light{0.62f, 0.95f, 0.96f};
    const Colour white{0.97f, 1.0f, 0.98f};
    const float t = std::pow(clamp01((intensity - 0.25f) / 4.5f), 0.6f);
    if (t < 0.35f) {
        return mix(deep, sea, t / 0.35f);
    }
    if (t < 0.75f) {
        return mix(sea, light, (t - 0.35f) / 0.4f);
    }
    return mix(light, white, (t - 0.75f) / 0.25f);
}

WaveBand bandFor(WaveScale scale) {
    WaveBand band;
    switch (scale) {
    case WaveScale::Swell:
        band = {2.0f, 6.0f, 0.35f, 0.5f, 1.2f, 1.5f, 14, 0x5E11};
        break;
    case WaveScale::Chop:
        band = {6.0f, 16.0f, 0.7f, 0.8f, 1.5f, 1.0f, 36, 0xC40F};
        break;
    case WaveScale::Ripples:
        band = {16.0f, 48.0f, 0.1f, 1.3f, 1.2f, 0.3f, 80, 0x819E};
        break;
    }
    return band;
}

// Typical steepness of each scale: broad swell gently, small ripples more.
float rmsSlopeFor(WaveScale scale) {
    switch (scale) {
    case WaveScale::Swell:
        return 0.30f;
    case WaveScale::Chop:
        return 0.34f;
    case WaveScale::Ripples:
        return 0.38f;
    }
    return 0.3f;
}

} // namespace

Picture oceanSurface(int size) {
    const Field light = causticIntensity(size);
    Picture picture(size, size, 3);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const Colour c = causticColour(light.at(x, y));
            std::uint8_t* p = picture.pixel(x, y);
            p[0] = toByte(c.r);
            p[1] = toByte(c.g);
            p[2] = toByte(c.b);
        }
    }
    return picture;
}

Picture waveNormals(WaveScale scale, int size) {
    const WaveSurface surface(bandFor(scale));
    const std::vector<WaveSurface::Sample> slopes = surface.grid(size);
    double sumSquares = 0.0;
    for (const WaveSurface::Sample& s : slopes) {
        sumSquares += double(s.slopeX) * s.slopeX + double(s.slopeY) * s.slopeY;
    }
    const float gain = rmsSlopeFor(scale) / float(std::sqrt(sumSquares / slopes.size()));
    Picture picture(size, size, 3);
    for (int row = 0; row < size; ++row) {
        // Row 0 of the file is the top of the texture, where t is largest.
        const WaveSurface::Sample* line = &slopes[std::size_t(size - 1 - row) * size];
        for (int x = 0; x < size; ++x) {
            const float nx = -gain * line[x].slopeX;
            const float ny = -gain * line[x].slopeY;
            const float length = std::sqrt(nx * nx + ny * ny + 1.0f);
            std::uint8_t* p = picture.pixel(x, row);
            p[0] = toSignedByte(nx / length);
            p[1] = toSignedByte(ny / length);
            p[2] = toSignedByte(1.0f / length);
        }
    }
    return picture;
}

} // namespace texgen
