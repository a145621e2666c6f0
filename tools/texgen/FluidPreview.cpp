#include "FluidPreview.h"

#include <algorithm>
#include <cmath>

namespace texgen {

namespace {

// Bilinear read of one channel, y up, coordinates in 0 … 1; zero outside, as the
// fluid's bordered buffers read.
float readChannel(const Field& f, float x, float y) {
    return f.sample(x * f.width(), (1.0f - y) * f.height());
}

Field channelOf(const Picture& p, int channel, bool signedValues) {
    Field f(p.width, p.height);
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            const std::uint8_t byte = p.pixel(x, y)[channel];
            f.at(x, y) = signedValues ? fromSignedByte(byte) : byte / 255.0f;
        }
    }
    return f;
}

} // namespace

Picture stirredPreview(const Picture& dye, const Picture& u, const Picture& v, int steps) {
    const Field flowU = channelOf(u, 0, true);
    const Field flowV = channelOf(v, 0, true);
    std::vector<Field> colour = {channelOf(dye, 0, false), channelOf(dye, 1, false),
                                 channelOf(dye, 2, false)};
    // The fastest component moves one and a half dye pixels a step.
    const float step = 1.5f / dye.width;
    const int w = dye.width;
    const int h = dye.height;
    for (int s = 0; s < steps; ++s) {
        std::vector<Field> next(3, Field(w, h));
        for (int py = 0; py < h; ++py) {
            for (int px = 0; px < w; ++px) {
                const float x = (px + 0.5f) / w;
                const float y = 1.0f - (py + 0.5f) / h;
                const float fromX = x - step * readChannel(flowU, x, y);
                const float fromY = y - step * readChannel(flowV, x, y);
                for (int c = 0; c < 3; ++c) {
                    next[c].at(px, py) = readChannel(colour[c], fromX, fromY);
                }
            }
        }
        colour = std::move(next);
    }
    Picture out(w, h, 3);
    for (int py = 0; py < h; ++py) {
        for (int px = 0; px < w; ++px) {
            for (int c = 0; c < 3; ++c) {
                out.pixel(px, py)[c] = toByte(colour[c].at(px, py));
            }
        }
    }
    return out;
}

std::vector<FluidMode> fluidModes() {
    return {{1, "KorvathLogoSmall.png", "Velocities5.png", "Velocities6.png"},
            {2, "BrinovaLogoSmall.png", "Velocities3.png", "Velocities4.png"},
            {3, "VaskSmall.png", "Velocities3.png", "Velocities4.png"},
            {4, "LumoSmall.png", "Velocities5.png", "Velocities4.png"},
            {5, "OrinSmall.png", "Velocities5.png", "Velocities6.png"},
            {6, "QuilletSmall.png", "Velocities3.png", "Velocities6.png"}};
}

} // namespace texgen
