#include "Sprites.h"

#include "Noise.h"

#include <cmath>
#include <functional>

namespace texgen {

namespace {

struct SpriteTexel {
    Colour colour;
    float alpha;
};

// Calls `shade` with coordinates in -1 … 1 from the centre (1 = half the size away) and
// clears everything near the border so that no sprite shows a square edge.
Picture renderSprite(int size, const std::function<SpriteTexel(float, float)>& shade) {
    Picture picture(size, size, 4);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const float px = (x + 0.5f) / size * 2.0f - 1.0f;
            const float py = (y + 0.5f) / size * 2.0f - 1.0f;
            const float r = std::sqrt(px * px + py * py);
            const SpriteTexel t = shade(px, py);
            const float window = 1.0f - smoothstep(0.72f, 0.96f, r);
            std::uint8_t* p = picture.pixel(x, y);
            p[0] = toByte(t.colour.r);
            p[1] = toByte(t.colour.g);
            p[2] = toByte(t.colour.b);
            p[3] = toByte(t.alpha * window);
        }
    }
    return picture;
}

} // namespace

Picture lightSprite(int size) {
    return renderSprite(size, [](float x, float y) {
        const float r = std::sqrt(x * x + y * y);
        const float core = std::exp(-r * r / (2.0f * 0.05f * 0.05f));
        const float halo = 0.55f / (1.0f + (r / 0.16f) * (r / 0.16f));
        // Rays along the axes, thinning with distance, as a lens draws a bright point.
        const float rays = 0.35f *
                           (std::exp(-std::fabs(x) * 60.0f) + std::exp(-std::fabs(y) * 60.0f)) *
                           std::exp(-r * 3.0f);
        const float alpha = clamp01(core + halo + rays);
        const Colour warm{1.0f, 0.97f, 0.88f};
        const Colour aqua{0.75f, 0.95f, 1.0f};
        return SpriteTexel{mix(aqua, warm, clamp01(core * 1.5f)), alpha};
    });
}

Picture creatureSprite(int size) {
    return renderSprite(size, [](float x, float y) {
        const float r = std::sqrt(x * x + y * y);
        const float angle = std::atan2(y, x);
        const float nucleus = std::exp(-r * r / (2.0f * 0.07f * 0.07f));
        // The bell: a ring whose brightness is ribbed by eight radial canals.
        const float ribs = 0.75f + 0.25f * std::cos(angle * 8.0f);
        const float ring = std::exp(-(r - 0.42f) * (r - 0.42f) / (2.0f * 0.045f * 0.045f)) * ribs;
        const float canals =
            0.25f * std::pow(std::fabs(std::cos(angle * 4.0f)), 12.0f) * smoothstep(0.42f, 0.1f, r);
        const float glow = 0.3f * std::exp(-r * r / (2.0f * 0.3f * 0.3f));
        const float alpha = clamp01(nucleus + 0.8f * ring + canals + glow);
        const Colour white{1.0f, 1.0f, 1.0f};
        const Colour cyan{0.55f, 1.0f, 0.95f};
        return SpriteTexel{mix(cyan, white, clamp01(nucleus + 0.5f * ring)), alpha};
    });
}

Picture puffSprite(int size) {
    return renderSprite(size, [](float x, float y) {
        const float u = x * 0.5f + 0.5f;
        const float v = y * 0.5f + 0.5f;
        // Bend the radius with noise so that the flake's outline is ragged, not round.
        const float wobble = periodicFbm(u, v, 4, 3, 0.5f, 0x90F0u);
        const float r = std::sqrt(x * x + y * y) * (1.0f + 0.5f * wobble);
        const float body = std::exp(-r * r / (2.0f * 0.22f * 0.22f));
        const float clumps = 0.6f + 1.2f * periodicFbm(u, v, 8, 3, 0.55f, 0x5A0F);
        // A few loose fragments drifting beside the main clump.
        float fragments = 0.0f;
        for (int i = 0; i < 5; ++i) {
            const float angle = unitFromBits(hashBits(i * 7 + 1)) * 6.2832f;
            const float distance = 0.3f + 0.25f * unitFromBits(hashBits(i * 7 + 2));
            const float dx = x - distance * std::cos(angle);
            const float dy = y - distance * std::sin(angle);
            fragments += 0.6f * std::exp(-(dx * dx + dy * dy) / (2.0f * 0.035f * 0.035f));
        }
        const float alpha = clamp01(body * clumps * 1.2f + fragments);
        const Colour snow{0.93f, 0.97f, 1.0f};
        return SpriteTexel{snow, alpha};
    });
}

} // namespace texgen
