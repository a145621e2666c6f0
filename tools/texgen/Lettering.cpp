#include "Lettering.h"

#include "Noise.h"

#include <algorithm>
#include <cmath>

namespace texgen {

namespace {

struct RowSpan {
    int top, bottom;
};

RowSpan inkRows(const Field& coverage) {
    RowSpan span{coverage.height(), -1};
    for (int y = 0; y < coverage.height(); ++y) {
        for (int x = 0; x < coverage.width(); ++x) {
            if (coverage.at(x, y) > 0.0f) {
                span.top = std::min(span.top, y);
                span.bottom = std::max(span.bottom, y);
                break;
            }
        }
    }
    return span;
}

Field outlineRing(const Field& coverage, float gap, float width) {
    const Field distance = distanceOutside(coverage);
    Field ring(coverage.width(), coverage.height());
    for (int y = 0; y < coverage.height(); ++y) {
        for (int x = 0; x < coverage.width(); ++x) {
            const float d = distance.at(x, y);
            ring.at(x, y) = smoothstep(gap - 0.5f, gap + 0.5f, d) *
                            (1.0f - smoothstep(gap + width - 0.5f, gap + width + 0.5f, d));
        }
    }
    return ring;
}

// Thin bright lines where a noise field crosses zero: light focused by waves above.
float veinLight(float x, float y, float scale, std::uint32_t seed) {
    const float n = periodicFbm(x * scale, y * scale, 4, 3, 0.5f, seed);
    return 1.0f - smoothstep(0.0f, 0.06f, std::fabs(n));
}

} // namespace

void paintMask(Canvas& canvas, const Field& mask, Colour colour, float alpha) {
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const float a = clamp01(mask.at(x, y) * alpha);
            if (a > 0.0f) {
                canvas.layerOver(x, y, colour * a, a);
            }
        }
    }
}

void paintLettering(Canvas& canvas, const Field& coverage, const Treatment& t) {
    Field glow = coverage;
    gaussianBlur(glow, t.glowSigma, Edges::Zero);
    paintMask(canvas, glow, t.glow, t.glowStrength);

    if (t.outlineWidth > 0.0f) {
        paintMask(canvas, outlineRing(coverage, t.outlineGap, t.outlineWidth), t.outline,
                  t.outlineAlpha);
    }

    Field soft = coverage;
    gaussianBlur(soft, 1.2f, Edges::Zero);
    const RowSpan rows = inkRows(coverage);
    const float span = float(std::max(1, rows.bottom - rows.top));
    const float texel = 1.0f / float(std::max(coverage.width(), coverage.height()));
    for (int y = 0; y < coverage.height(); ++y) {
        const float down = clamp01((y - rows.top) / span);
        const Colour base = mix(t.fillTop, t.fillBottom, down);
        for (int x = 0; x < coverage.width(); ++x) {
            const float c = coverage.at(x, y);
            if (c <= 0.0f) {
                continue;
            }
            // Upper edges catch the light: coverage rising from above to here.
            const float edge = clamp01((soft.orZero(x, y) - soft.orZero(x, y - 2)) * 2.0f);
            const float vein = veinLight(x * texel, y * texel, 4.0f * t.veinScale, t.seed);
            Colour colour = mix(base, Colour{1.0f, 1.0f, 1.0f}, vein * t.veins);
            colour = mix(colour, t.bevel, edge * t.bevelStrength);
            canvas.layerOver(x, y, colour * c, c);
        }
    }
}

Field setFitting(const Font& font, const std::string& text, TextStyle style, int margin,
                 int maxWidth) {
    Field set = font.set(text, style, margin);
    if (set.width() > maxWidth) {
        style.capHeight *= float(maxWidth - 2 * margin) / float(set.width() - 2 * margin);
        set = font.set(text, style, margin);
    }
    return set;
}

} // namespace texgen
