#include "Overlay.h"

#include <algorithm>
#include <cmath>

namespace texgen {

namespace {

struct Frame {
    float width, height; // of the visible block
    float cx, cy;
};

float roundedBox(float x, float y, const Frame& f, float inset, float radius) {
    const float qx = std::fabs(x - f.cx) - (f.width * 0.5f - inset - radius);
    const float qy = std::fabs(y - f.cy) - (f.height * 0.5f - inset - radius);
    const float outside = std::hypot(std::max(qx, 0.0f), std::max(qy, 0.0f));
    return outside + std::min(std::max(qx, qy), 0.0f) - radius;
}

float line(float distance, float halfWidth) {
    return clamp01(halfWidth + 0.5f - std::fabs(distance));
}

// Darkening that starts well inside the frame and deepens into the corners.
float vignette(float x, float y, const Frame& f) {
    const float qx = std::fabs(x - f.cx) / (f.width * 0.5f);
    const float qy = std::fabs(y - f.cy) / (f.height * 0.5f);
    const float s = std::pow(std::pow(qx, 5.0f) + std::pow(qy, 5.0f), 0.2f);
    return 0.92f * smoothstep(0.8f, 1.1f, s);
}

// L-shaped marks just inside each corner of the frame line.
float cornerBrackets(float x, float y, const Frame& f) {
    const float inset = 26.0f;
    const float arm = 38.0f;
    const float dx = f.width * 0.5f - inset - std::fabs(x - f.cx);
    const float dy = f.height * 0.5f - inset - std::fabs(y - f.cy);
    const bool nearCorner = dx > -1.5f && dy > -1.5f && dx < arm && dy < arm;
    if (!nearCorner) {
        return 0.0f;
    }
    return std::max(line(dy, 0.8f), line(dx, 0.8f));
}

// A depth gauge down the right-hand side: short ticks, every fifth one longer.
float depthGauge(float x, float y, const Frame& f) {
    const float spacing = 18.0f;
    const float top = f.height * 0.28f;
    const float bottom = f.height * 0.72f;
    if (y < top - 2.0f || y > bottom + 2.0f) {
        return 0.0f;
    }
    const int tick = int(std::lround((y - top) / spacing));
    const float along = y - (top + tick * spacing);
    const float length = tick % 5 == 0 ? 14.0f : 7.0f;
    const float right = f.width - 34.0f;
    const float across = x < right - length ? right - length - x : (x > right ? x - right : 0.0f);
    return line(along, 0.5f) * clamp01(1.0f - across);
}

Rgba frameTexel(float x, float y, const Frame& f) {
    const Colour deep{0.0f, 0.02f, 0.05f};
    const Colour glass{0.62f, 0.9f, 0.95f};
    Canvas texel(1, 1);
    texel.paintOver(0, 0, deep, vignette(x, y, f));
    texel.paintOver(0, 0, glass, 0.32f * line(roundedBox(x, y, f, 14.0f, 22.0f), 0.6f));
    texel.paintOver(0, 0, glass, 0.7f * cornerBrackets(x, y, f));
    texel.paintOver(0, 0, glass, 0.35f * depthGauge(x, y, f));
    return texel.at(0, 0);
}

} // namespace

VisibleBlock overlayVisibleBlock(int size) {
    return {size * 15 / 16, int(std::lround(size * (1.0 - 0.4727)))};
}

Picture frameOverlay(int size) {
    const VisibleBlock block = overlayVisibleBlock(size);
    const Frame f{float(block.width), float(block.height), block.width * 0.5f, block.height * 0.5f};
    Canvas canvas(size, size);
    for (int y = 0; y < block.height; ++y) {
        for (int x = 0; x < block.width; ++x) {
            canvas.at(x, y) = frameTexel(x + 0.5f, y + 0.5f, f);
        }
    }
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            if (x >= block.width || y >= block.height) {
                canvas.at(x, y) =
                    canvas.at(std::min(x, block.width - 1), std::min(y, block.height - 1));
            }
        }
    }
    return toPicture(canvas, 4);
}

} // namespace texgen
