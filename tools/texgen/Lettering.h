// Treatments that turn a coverage field of letters into a finished title: a gradient fill
// with moving-light veins, a bevelled top edge, a detached outline and a glow.
#pragma once

#include "Drawing.h"

#include <cstdint>

namespace texgen {

struct Treatment {
    Colour fillTop{1.0f, 1.0f, 1.0f};
    Colour fillBottom{0.5f, 0.8f, 0.9f};
    float veins = 0.45f;    // strength of the caustic veins across the fill
    float veinScale = 1.0f; // larger: finer veins
    Colour bevel{1.0f, 1.0f, 1.0f};
    float bevelStrength = 0.5f;
    Colour outline{0.6f, 0.9f, 1.0f};
    float outlineGap = 3.0f;   // pixels between the letters and their outline
    float outlineWidth = 1.5f; // 0: no outline
    float outlineAlpha = 0.8f;
    Colour glow{0.2f, 0.6f, 0.9f};
    float glowSigma = 8.0f;
    float glowStrength = 1.6f;
    std::uint32_t seed = 1;
};

// Paints the treated letters over `canvas` (premultiplied) at the same position.
void paintLettering(Canvas& canvas, const Field& coverage, const Treatment& treatment);

// Sets a line of text that fits inside `maxWidth` pixels: at `style` when it fits, smaller
// when it does not.
Field setFitting(const Font& font, const std::string& text, TextStyle style, int margin,
                 int maxWidth);

// Lays a premultiplied colour at a given alpha over the canvas wherever `mask` is non-zero.
void paintMask(Canvas& canvas, const Field& mask, Colour colour, float alpha);

} // namespace texgen
