#include "Titles.h"

#include "Lettering.h"
#include "Noise.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace texgen {

namespace {

constexpr float kPi = 3.14159265358979f;

// Signed distance (pixels, negative inside) as a function of position.
using Distance = std::function<float(float, float)>;

Field fillShape(int width, int height, const Distance& distance) {
    Field f(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            f.at(x, y) = clamp01(0.5f - distance(x + 0.5f, y + 0.5f));
        }
    }
    return f;
}

Field strokeShape(int width, int height, const Distance& distance, float halfWidth) {
    return fillShape(width, height,
                     [&](float x, float y) { return std::fabs(distance(x, y)) - halfWidth; });
}

Distance circle(float cx, float cy, float radius, float stretch = 1.0f) {
    return [=](float x, float y) {
        const float dx = (x - cx) / stretch;
        return std::sqrt(dx * dx + (y - cy) * (y - cy)) - radius;
    };
}

// Regular hexagon with flat top and bottom; `inradius` from the centre to the flat sides.
Distance hexagon(float cx, float cy, float inradius) {
    return [=](float x, float y) {
        const float kx = -0.866025404f, ky = 0.5f, kz = 0.577350269f;
        float px = std::fabs(x - cx);
        float py = std::fabs(y - cy);
        const float d = 2.0f * std::min(kx * px + ky * py, 0.0f);
        px -= d * kx;
        py -= d * ky;
        px -= std::clamp(px, -kz * inradius, kz * inradius);
        py -= inradius;
        return std::sqrt(px * px + py * py) * (py < 0.0f ? -1.0f : 1.0f);
    };
}

// A sine line y = cy + amplitude · sin(2π x / wavelength + phase).
Distance sineLine(float cy, float amplitude, float wavelength, float phase) {
    return [=](float x, float y) {
        const float k = 2.0f * kPi / wavelength;
        const float curve = cy + amplitude * std::sin(k * x + phase);
        const float slope = amplitude * k * std::cos(k * x + phase);
        return (y - curve) / std::sqrt(1.0f + slope * slope);
    };
}

// Multiplies a field by a fade that is 1 between `inner` positions and 0 beyond `outer`.
void fadeAlongX(Field& field, float outerLeft, float innerLeft, float innerRight,
                float outerRight) {
    for (int y = 0; y < field.height(); ++y) {
        for (int x = 0; x < field.width(); ++x) {
            const float px = x + 0.5f;
            field.at(x, y) *=
                smoothstep(outerLeft, innerLeft, px) * smoothstep(outerRight, innerRight, px);
        }
    }
}

Field merged(const Field& a, const Field& b) {
    Field out = a;
    stampMax(out, b, 0, 0);
    return out;
}

struct Look {
    const char* text;
    Treatment treatment;
};

Treatment treatmentOf(Colour top, Colour bottom, Colour outline, Colour glow, std::uint32_t seed) {
    Treatment t;
    t.fillTop = top;
    t.fillBottom = bottom;
    t.outline = outline;
    t.glow = glow;
    t.bevel = mix(top, Colour{1.0f, 1.0f, 1.0f}, 0.6f);
    t.seed = seed;
    return t;
}

Look lookOf(Title title) {
    switch (title) {
    case Title::Vask:
        return {"VASK", treatmentOf({0.85f, 1.0f, 1.0f}, {0.12f, 0.72f, 0.85f}, {0.4f, 0.9f, 1.0f},
                                    {0.0f, 0.45f, 0.62f}, 11)};
    case Title::Lumo:
        return {"LUMO", treatmentOf({0.9f, 1.0f, 0.82f}, {0.25f, 0.9f, 0.48f}, {0.55f, 1.0f, 0.7f},
                                    {0.04f, 0.5f, 0.28f}, 12)};
    case Title::Orin:
        return {"ORIN", treatmentOf({1.0f, 0.95f, 0.78f}, {1.0f, 0.5f, 0.22f}, {1.0f, 0.75f, 0.45f},
                                    {0.62f, 0.2f, 0.04f}, 13)};
    case Title::Quillet:
        return {"QUILLET", treatmentOf({0.96f, 0.9f, 1.0f}, {0.6f, 0.42f, 1.0f},
                                       {0.8f, 0.65f, 1.0f}, {0.34f, 0.12f, 0.62f}, 14)};
    case Title::Korvath:
        return {"KORVATH", treatmentOf({1.0f, 1.0f, 1.0f}, {0.5f, 0.66f, 1.0f}, {0.6f, 0.75f, 1.0f},
                                       {0.08f, 0.2f, 0.72f}, 15)};
    case Title::Brinova:
        return {"BRINOVA", treatmentOf({0.9f, 1.0f, 1.0f}, {0.16f, 0.78f, 0.9f},
                                       {0.5f, 0.95f, 1.0f}, {0.0f, 0.34f, 0.6f}, 16)};
    }
    return lookOf(Title::Vask);
}

bool isMember(Title title) {
    return title == Title::Vask || title == Title::Lumo || title == Title::Orin ||
           title == Title::Quillet;
}

// Hexagon outline with a bold K: the group's mark.
Field korvathMark(const FontShelf& fonts, int width, int height, float cx, float cy,
                  float inradius) {
    Field mark = strokeShape(width, height, hexagon(cx, cy, inradius), inradius * 0.055f);
    TextStyle style;
    style.capHeight = inradius * 1.05f;
    stampCentred(mark, fonts.sansBold().set("K", style, 0), cx, cy);
    return mark;
}

// Hairlines that lead the eye into a name from both sides, with a small diamond at the inner end.
Field leaderLines(int width, int height, float inkLeft, float inkRight, float cy) {
    const float gap = 30.0f;
    const float length = 190.0f;
    Field lines(width, height);
    for (int side = 0; side < 2; ++side) {
        const float inner = side == 0 ? inkLeft - gap : inkRight + gap;
        const float outer = side == 0 ? inner - length : inner + length;
        Field line = strokeShape(
            width, height, [=](float, float y) { return y - cy; }, 0.6f);
        if (side == 0) {
            fadeAlongX(line, outer, inner - 20.0f, inner, inner + 1.0f);
        } else {
            fadeAlongX(line, inner - 1.0f, inner, inner + 20.0f, outer);
        }
        lines = merged(lines, line);
        const Field diamond = fillShape(width, height, [=](float x, float y) {
            return (std::fabs(x - inner) + std::fabs(y - cy)) * 0.7071f - 2.6f;
        });
        lines = merged(lines, diamond);
    }
    return lines;
}

struct Span {
    float left, right;
};

Span inkSpan(const Field& field) {
    Span span{float(field.width()), 0.0f};
    for (int y = 0; y < field.height(); ++y) {
        for (int x = 0; x < field.width(); ++x) {
            if (field.at(x, y) > 0.0f) {
                span.left = std::min(span.left, float(x));
                span.right = std::max(span.right, float(x + 1));
            }
        }
    }
    return span;
}

Picture premultipliedRgba(const Canvas& canvas) {
    return toPicture(canvas, 4);
}

Picture straightRgba(const Canvas& premultiplied) {
    Canvas straight = premultiplied;
    for (int y = 0; y < straight.height(); ++y) {
        for (int x = 0; x < straight.width(); ++x) {
            Rgba& p = straight.at(x, y);
            if (p.a > 0.0f) {
                p.r /= p.a;
                p.g /= p.a;
                p.b /= p.a;
            }
        }
    }
    return toPicture(straight, 4);
}

Picture memberCard(const FontShelf& fonts, const Look& look, int width, int height) {
    TextStyle style;
    style.capHeight = height * 0.42f;
    style.tracking = 0.55f;
    Field letters(width, height);
    stampCentred(letters, setFitting(fonts.sans(), look.text, style, 0, int(width * 0.55f)),
                 width * 0.5f, height * 0.5f);
    const Span ink = inkSpan(letters);
    Canvas canvas(width, height);
    const Field leaders = leaderLines(width, height, ink.left, ink.right, height * 0.5f);
    Field leaderGlow = leaders;
    gaussianBlur(leaderGlow, 4.0f, Edges::Zero);
    paintMask(canvas, leaderGlow, look.treatment.glow, 0.9f);
    paintMask(canvas, leaders, look.treatment.outline, 0.85f);
    paintLettering(canvas, letters, look.treatment);
    return premultipliedRgba(canvas);
}

Picture korvathCard(const FontShelf& fonts, const Look& look, int width, int height) {
    TextStyle style;
    style.capHeight = height * 0.4f;
    style.tracking = 0.42f;
    const Field word = fonts.sansBold().set(look.text, style, 0);
    const float markSize = height * 0.62f;
    const float gap = height * 0.28f;
    const float total = markSize + gap + word.width();
    const float left = (width - total) * 0.5f;
    Field letters(width, height);
    stampCentred(letters, word, left + markSize + gap + word.width() * 0.5f, height * 0.5f);
    letters = merged(letters, korvathMark(fonts, width, height, left + markSize * 0.5f,
                                          height * 0.5f, markSize * 0.5f * 0.866f));
    Canvas canvas(width, height);
    paintLettering(canvas, letters, look.treatment);
    return premultipliedRgba(canvas);
}

Picture brinovaCard(const FontShelf& fonts, const Look& look, int width, int height) {
    TextStyle style;
    style.capHeight = height * 0.5f;
    style.tracking = 0.34f;
    Field letters(width, height);
    stampCentred(letters, fonts.serif().set(look.text, style, 0), width * 0.5f, height * 0.5f);
    Field wave = strokeShape(width, height,
                             sineLine(height * 0.84f, height * 0.03f, width * 0.19f, 0.8f), 0.7f);
    fadeAlongX(wave, width * 0.08f, width * 0.3f, width * 0.7f, width * 0.92f);
    Canvas canvas(width, height);
    Treatment treatment = look.treatment;
    treatment.veins = 0.5f;
    Field waveGlow = wave;
    gaussianBlur(waveGlow, 3.0f, Edges::Zero);
    paintMask(canvas, waveGlow, treatment.glow, 1.0f);
    paintMask(canvas, wave, treatment.outline, 0.7f);
    paintLettering(canvas, letters, treatment);
    return premultipliedRgba(canvas);
}

// Dye keeps its colour strong: the fluid only ever thins it out.
Treatment dyeTreatment(const Treatment& card) {
    Treatment t = card;
    t.fillTop = mix(card.fillTop, card.fillBottom, 0.35f);
    t.veins = 0.25f;
    t.glowSigma = 6.0f;
    t.glowStrength = 1.0f;
    t.glow = mix(card.glow, card.fillBottom, 0.4f);
    t.outlineGap = 2.5f;
    t.outlineWidth = 2.0f;
    t.outlineAlpha = 0.9f;
    return t;
}

Field memberDyeShapes(const FontShelf& fonts, const char* text, int size) {
    TextStyle style;
    style.capHeight = size * 0.2f;
    style.tracking = 0.12f;
    const float c = size * 0.5f;
    Field shapes(size, size);
    stampCentred(shapes, setFitting(fonts.sansBold(), text, style, 0, int(size * 0.72f)), c, c);
    shapes = merged(shapes, strokeShape(size, size, circle(c, c, size * 0.38f), size * 0.018f));
    shapes = merged(shapes, strokeShape(size, size, circle(c, c, size * 0.42f), size * 0.006f));
    return shapes;
}

Field korvathDyeShapes(const FontShelf& fonts, int size) {
    const float c = size * 0.5f;
    Field shapes = korvathMark(fonts, size, size, c, size * 0.43f, size * 0.3f);
    TextStyle style;
    style.capHeight = size * 0.055f;
    style.tracking = 0.5f;
    stampCentred(shapes, fonts.sansBold().set("KORVATH", style, 0), c, size * 0.885f);
    return shapes;
}

Field brinovaDyeShapes(const FontShelf& fonts, int size) {
    TextStyle style;
    style.capHeight = size * 0.16f;
    style.tracking = 0.1f;
    const float c = size * 0.5f;
    Field shapes(size, size);
    stampCentred(shapes, setFitting(fonts.serifBold(), "BRINOVA", style, 0, int(size * 0.84f)), c,
                 c);
    for (int k = 0; k < 2; ++k) {
        const float cy = size * (k == 0 ? 0.3f : 0.7f);
        Field wave = strokeShape(size, size, sineLine(cy, size * 0.035f, size * 0.3f, k * kPi),
                                 size * 0.012f);
        fadeAlongX(wave, size * 0.1f, size * 0.3f, size * 0.7f, size * 0.9f);
        shapes = merged(shapes, wave);
    }
    return shapes;
}

} // namespace

Picture titleCard(const FontShelf& fonts, Title title, int width, int height) {
    const Look look = lookOf(title);
    if (isMember(title)) {
        return memberCard(fonts, look, width, height);
    }
    if (title == Title::Korvath) {
        return korvathCard(fonts, look, width, height);
    }
    return brinovaCard(fonts, look, width, height);
}

Picture titleDye(const FontShelf& fonts, Title title, int size) {
    const Look look = lookOf(title);
    Field shapes;
    if (isMember(title)) {
        shapes = memberDyeShapes(fonts, look.text, size);
    } else if (title == Title::Korvath) {
        shapes = korvathDyeShapes(fonts, size);
    } else {
        shapes = brinovaDyeShapes(fonts, size);
    }
    Canvas canvas(size, size);
    paintLettering(canvas, shapes, dyeTreatment(look.treatment));
    // Premultiplied colour over black is exactly the dye each pixel carries.
    return toPicture(canvas, 3);
}

// ---- Loading screen -------------------------------------------------------------------------

namespace {

constexpr int kLoaderWidth = 1024;
constexpr int kLoaderHeight = 512;
// A 16:9 screen shows 1024 x 512 texels with each texel 9/8 as tall as it is wide.
constexpr float kLoaderStretch = (1024.0f / 16.0f) / (512.0f / 9.0f);
// Where each loading stage ends, as a fraction of the width (u = 0.1 + 0.1666 k).
constexpr float kFirstStage = 0.1f;
constexpr float kStageStep = 0.1666f;
constexpr float kTrackY = 0.86f;

float seaGlow(float x, float y) {
    // Light shafts fanning down from a bright patch of surface above the top edge.
    const float px = x / kLoaderStretch;
    const float sx = kLoaderWidth / kLoaderStretch * 0.56f;
    const float sy = -260.0f;
    const float angle = std::atan2(px - sx, y - sy);
    const float shafts = periodicFbm(angle / (2.0f * kPi) + 0.5f, 0.37f, 40, 2, 0.5f, 0x5AF7u);
    const float depth = y / kLoaderHeight;
    return smoothstep(0.0f, 0.35f, shafts) * std::exp(-depth * 2.6f);
}

Colour seaColour(float y) {
    const Colour surface{0.03f, 0.16f, 0.24f};
    const Colour deep{0.0f, 0.015f, 0.04f};
    return mix(surface, deep, std::pow(y / kLoaderHeight, 0.8f));
}

Field loaderTitle(const FontShelf& fonts) {
    TextStyle style;
    style.capHeight = 70.0f;
    style.tracking = 0.34f;
    style.horizontalStretch = kLoaderStretch;
    Field title(kLoaderWidth, kLoaderHeight);
    stampCentred(title, fonts.serif().set("BRINOVA", style, 0), kLoaderWidth * 0.5f,
                 kLoaderHeight * 0.42f);
    return title;
}

Field loaderCredit(const FontShelf& fonts) {
    TextStyle style;
    style.capHeight = 12.0f;
    style.tracking = 0.7f;
    style.horizontalStretch = kLoaderStretch;
    Field credit(kLoaderWidth, kLoaderHeight);
    stampCentred(credit, fonts.sans().set("A KORVATH PRODUCTION", style, 0), kLoaderWidth * 0.5f,
                 kLoaderHeight * 0.58f);
    return credit;
}

// The progress track from the first stage's end to the sixth's, with a tick at every stage.
Field loaderTrack() {
    const float y = kLoaderHeight * kTrackY;
    const float left = kLoaderWidth * kFirstStage;
    const float right = kLoaderWidth * (kFirstStage + 5 * kStageStep);
    Field track = strokeShape(
        kLoaderWidth, kLoaderHeight, [=](float, float py) { return py - y; }, 0.7f);
    fadeAlongX(track, left - 1.0f, left, right, right + 1.0f);
    for (int k = 0; k < 6; ++k) {
        const float x = kLoaderWidth * (kFirstStage + k * kStageStep);
        track = merged(track,
                       fillShape(kLoaderWidth, kLoaderHeight, circle(x, y, 3.0f, kLoaderStretch)));
    }
    return track;
}

void paintMarineSnow(Canvas& canvas, std::uint64_t seed, int count, float brightness) {
    Random random(seed);
    for (int i = 0; i < count; ++i) {
        const float x = random.uniform(0.0f, kLoaderWidth);
        const float y = random.uniform(0.0f, kLoaderHeight);
        const float radius = random.uniform(0.5f, 1.8f);
        const float glow = brightness * random.uniform(0.25f, 1.0f) * (1.1f - y / kLoaderHeight);
        for (int py = int(y - 4); py <= int(y + 4); ++py) {
            for (int px = int(x - 5); px <= int(x + 5); ++px) {
                if (px < 0 || py < 0 || px >= kLoaderWidth || py >= kLoaderHeight) {
                    continue;
                }
                const float d = circle(x, y, radius, kLoaderStretch)(px + 0.5f, py + 0.5f);
                const float a = clamp01(glow * clamp01(0.5f - d));
                canvas.layerOver(px, py, Colour{0.8f, 0.95f, 1.0f} * a, a);
            }
        }
    }
}

} // namespace

Picture loaderBackground(const FontShelf& fonts) {
    Canvas canvas(kLoaderWidth, kLoaderHeight);
    for (int y = 0; y < kLoaderHeight; ++y) {
        for (int x = 0; x < kLoaderWidth; ++x) {
            const Colour sea = seaColour(y + 0.5f) +
                               Colour{0.05f, 0.16f, 0.2f} * (0.5f * seaGlow(x + 0.5f, y + 0.5f));
            canvas.at(x, y) = Rgba{sea.r, sea.g, sea.b, 1.0f};
        }
    }
    paintMarineSnow(canvas, 0x5120, 260, 0.45f);
    const Treatment look = lookOf(Title::Brinova).treatment;
    const Field title = loaderTitle(fonts);
    Field titleHalo = title;
    gaussianBlur(titleHalo, 10.0f, Edges::Zero);
    paintMask(canvas, titleHalo, look.glow * 0.5f, 0.5f);
    paintMask(canvas, title, Colour{0.05f, 0.2f, 0.27f}, 0.9f);
    paintMask(canvas, loaderCredit(fonts), Colour{0.25f, 0.4f, 0.45f}, 0.8f);
    paintMask(canvas, loaderTrack(), Colour{0.12f, 0.28f, 0.34f}, 0.9f);
    return flippedVertically(toPicture(canvas, 3));
}

Picture loaderOverlay(const FontShelf& fonts) {
    Canvas canvas(kLoaderWidth, kLoaderHeight);
    Field shafts(kLoaderWidth, kLoaderHeight);
    for (int y = 0; y < kLoaderHeight; ++y) {
        for (int x = 0; x < kLoaderWidth; ++x) {
            shafts.at(x, y) = seaGlow(x + 0.5f, y + 0.5f);
        }
    }
    paintMask(canvas, shafts, Colour{0.3f, 0.75f, 0.85f}, 0.35f);
    paintMarineSnow(canvas, 0x5121, 120, 0.9f);

    const Field track = loaderTrack();
    Field trackGlow = track;
    gaussianBlur(trackGlow, 3.5f, Edges::Zero);
    paintMask(canvas, trackGlow, Colour{0.2f, 0.7f, 0.85f}, 1.2f);
    paintMask(canvas, track, Colour{0.85f, 1.0f, 1.0f}, 1.0f);

    paintLettering(canvas, loaderTitle(fonts), lookOf(Title::Brinova).treatment);
    paintMask(canvas, loaderCredit(fonts), Colour{0.7f, 0.92f, 0.95f}, 1.0f);
    return flippedVertically(straightRgba(canvas));
}

Picture launcherBanner(const FontShelf& fonts) {
    const int width = 390;
    const int height = 49;
    Canvas canvas(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float across = (x + 0.5f) / width;
            const float down = (y + 0.5f) / height;
            Colour sea =
                mix(Colour{0.0f, 0.03f, 0.07f}, Colour{0.02f, 0.2f, 0.27f}, across * across);
            sea = sea * (1.1f - 0.35f * down);
            const float vein =
                1.0f -
                smoothstep(0.0f, 0.05f,
                           std::fabs(periodicFbm(across, down * 0.125f, 6, 2, 0.5f, 0xBA77u)));
            sea = sea + Colour{0.05f, 0.14f, 0.16f} * (vein * across);
            canvas.at(x, y) = Rgba{sea.r, sea.g, sea.b, 1.0f};
        }
    }
    TextStyle titleStyle;
    titleStyle.capHeight = 21.0f;
    titleStyle.tracking = 0.24f;
    Field title(width, height);
    const Field word = fonts.serif().set("BRINOVA", titleStyle, 0);
    stampMax(title, word, 16, (height - word.height()) / 2);
    Treatment look = lookOf(Title::Brinova).treatment;
    look.glowSigma = 3.0f;
    look.outlineGap = 1.5f;
    look.outlineWidth = 0.8f;
    look.outlineAlpha = 0.5f;
    look.veinScale = 3.0f;
    paintLettering(canvas, title, look);

    TextStyle creditStyle;
    creditStyle.capHeight = 6.5f;
    creditStyle.tracking = 0.6f;
    Field credit(width, height);
    const Field upper = fonts.sans().set("A KORVATH", creditStyle, 0);
    const Field lower = fonts.sans().set("PRODUCTION", creditStyle, 0);
    stampMax(credit, upper, width - 16 - upper.width(), height / 2 - 3 - upper.height());
    stampMax(credit, lower, width - 16 - lower.width(), height / 2 + 3);
    paintMask(canvas, credit, Colour{0.62f, 0.86f, 0.9f}, 1.0f);

    Field rule = strokeShape(
        width, height, [=](float, float y) { return y - (height - 2.5f); }, 0.5f);
    fadeAlongX(rule, 0.0f, width * 0.4f, width * 1.0f, width * 1.2f);
    paintMask(canvas, rule, Colour{0.4f, 0.85f, 0.95f}, 0.8f);
    return toPicture(canvas, 3);
}

} // namespace texgen
