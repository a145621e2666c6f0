#include "Lookups.h"

#include "Noise.h"

#include <cmath>

namespace texgen {

Picture gaussianKernel(int width) {
    const float sigma = 1.0f / 3.0f;
    Picture picture(width, 1, 1);
    for (int k = 0; k < width; ++k) {
        const float d = (k + 0.5f) / width;
        *picture.pixel(k, 0) = toByte(std::exp(-d * d / (2.0f * sigma * sigma)));
    }
    return picture;
}

namespace {

float gentleS(float x) {
    const float s = x * x * (3.0f - 2.0f * x);
    return 0.55f * s + 0.45f * x;
}

} // namespace

Picture thresholdRamp(int width) {
    Picture picture(width, 1, 3);
    for (int k = 0; k < width; ++k) {
        const float x = float(k) / float(width - 1);
        const float tone = gentleS(x);
        std::uint8_t* p = picture.pixel(k, 0);
        p[0] = toByte(std::pow(tone, 1.15f));
        p[1] = toByte(std::pow(tone, 1.02f));
        p[2] = toByte(0.035f + 0.965f * std::pow(tone, 0.88f));
    }
    return picture;
}

Picture colourNoise(int size) {
    Picture picture(size, size, 3);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const std::uint32_t bits = hashCell(x, y, 0x6A1Eu);
            std::uint8_t* p = picture.pixel(x, y);
            p[0] = std::uint8_t(bits & 0xFF);
            p[1] = std::uint8_t((bits >> 8) & 0xFF);
            p[2] = std::uint8_t((bits >> 16) & 0xFF);
        }
    }
    return picture;
}

} // namespace texgen
