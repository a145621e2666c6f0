#include "SoundPicture.h"

#include "Font.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace synth {
namespace {

using raster::Canvas;
using raster::Colour;
using raster::Field;
using raster::Font;

constexpr int kPlotRows = 480;
// Margins around the plot: frequency labels on the left, section names and bar numbers on
// top, time labels below, and room on the right for a label that overhangs the last column.
constexpr int kLeft = 52, kTop = 44, kBottom = 30, kRight = 24;
constexpr double kFloorDb = -110.0, kTopDb = -6.0;
constexpr float kLabelCapHeight = 8.0f, kSectionCapHeight = 10.0f;

const Colour kBackground{0.08f, 0.08f, 0.09f};
const Colour kAxisInk{0.8f, 0.81f, 0.84f};
const Colour kSectionInk{1.0f, 0.86f, 0.55f};
const Colour kSectionLine{0.9f, 0.9f, 0.9f};

struct Tick {
    double hz;
    const char* label;
};
const Tick kFrequencyTicks[] = {{50, "50"},   {100, "100"}, {200, "200"}, {500, "500"},
                                {1000, "1k"}, {2000, "2k"}, {5000, "5k"}, {10000, "10k"}};

// A dark-to-bright colour ramp: black, deep blue, violet, orange, pale yellow.
Colour colourFor(double t) {
    static const Colour stops[5] = {{0.0f, 0.0f, 0.0f},
                                    {0.08f, 0.09f, 0.43f},
                                    {0.59f, 0.16f, 0.59f},
                                    {0.96f, 0.51f, 0.16f},
                                    {1.0f, 0.98f, 0.78f}};
    t = std::clamp(t, 0.0, 1.0) * 4.0;
    const int i = std::min(3, static_cast<int>(t));
    return raster::mix(stops[i], stops[i + 1], static_cast<float>(t - i));
}

Field setText(const Font& font, const std::string& text, float capHeight) {
    raster::TextStyle style;
    style.capHeight = capHeight;
    return font.set(text, style, 0);
}

// The first width columns of the text (all of it when it is narrower).
Field leftPart(const Field& text, int width) {
    Field part(std::clamp(width, 0, text.width()), text.height());
    for (int y = 0; y < part.height(); ++y)
        for (int x = 0; x < part.width(); ++x)
            part.at(x, y) = text.at(x, y);
    return part;
}

// Text whose ink ends on the baseline, starting at left (kept inside the canvas).
void writeOnBaseline(Canvas& canvas, const Field& text, int left, int baseline, Colour ink) {
    left = std::clamp(left, 0, std::max(0, canvas.width() - text.width()));
    raster::paintCoverage(canvas, text, left, baseline - text.height(), ink);
}

void fillRect(Canvas& canvas, int left, int top, int width, int height, Colour colour) {
    for (int y = std::max(0, top); y < std::min(canvas.height(), top + height); ++y)
        for (int x = std::max(0, left); x < std::min(canvas.width(), left + width); ++x)
            canvas.at(x, y) = {colour.r, colour.g, colour.b, 1.0f};
}

// The plot's top-left corner is at (kLeft, kTop); its row 0 is the bottom one.
void drawPlot(Canvas& canvas, const Spectrogram& spectrogram) {
    for (int y = 0; y < spectrogram.rows; ++y)
        for (int x = 0; x < spectrogram.columns; ++x) {
            const Colour c = colourFor((spectrogram.at(x, y) - kFloorDb) / (kTopDb - kFloorDb));
            canvas.at(kLeft + x, kTop + spectrogram.rows - 1 - y) = {c.r, c.g, c.b, 1.0f};
        }
}

// Labelled ticks on the left with dotted lines across the plot, and the unit above them.
void drawFrequencyAxis(Canvas& canvas, const Spectrogram& spectrogram, const Font& font) {
    for (const Tick& tick : kFrequencyTicks) {
        const int y =
            kTop + spectrogram.rows - 1 - static_cast<int>(std::floor(spectrogram.rowOf(tick.hz)));
        fillRect(canvas, kLeft - 5, y, 5, 1, kAxisInk);
        for (int x = kLeft; x < kLeft + spectrogram.columns; x += 4)
            canvas.paintOver(x, y, {1.0f, 1.0f, 1.0f}, 0.35f);
        const Field label = setText(font, tick.label, kLabelCapHeight);
        writeOnBaseline(canvas, label, kLeft - 8 - label.width(), y + label.height() / 2, kAxisInk);
    }
    const Field unit = setText(font, "Hz", kLabelCapHeight);
    writeOnBaseline(canvas, unit, kLeft - 8 - unit.width(), kTop - 6, kAxisInk);
}

std::string minutesAndSeconds(int seconds) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", seconds / 60, seconds % 60);
    return text;
}

// Ticks every 5 s below the plot, labelled mm:ss every 10 s.
void drawTimeAxis(Canvas& canvas, const Spectrogram& spectrogram, const Font& font) {
    const int bottom = kTop + spectrogram.rows;
    for (int seconds = 0; seconds * Spectrogram::kColumnsPerSecond <= spectrogram.columns;
         seconds += 5) {
        const int x = kLeft + static_cast<int>(seconds * Spectrogram::kColumnsPerSecond);
        const bool labelled = seconds % 10 == 0;
        fillRect(canvas, x, bottom, 1, labelled ? 6 : 3, kAxisInk);
        if (labelled) {
            const Field label = setText(font, minutesAndSeconds(seconds), kLabelCapHeight);
            writeOnBaseline(canvas, label, x - label.width() / 2, bottom + 8 + label.height(),
                            kAxisInk);
        }
    }
}

int columnOfBar(const Song& song, double bar) {
    return kLeft +
           static_cast<int>(std::lround(song.barToSeconds(bar) * Spectrogram::kColumnsPerSecond));
}

// Bar ticks above the plot, numbered every four bars; section lines through the plot, named.
void drawSongMarks(Canvas& canvas, const Spectrogram& spectrogram, const Song& song,
                   const Font& labelFont, const Font& sectionFont) {
    const int plotRight = kLeft + spectrogram.columns;
    for (int bar = 1; columnOfBar(song, bar) < plotRight; ++bar) {
        const int x = columnOfBar(song, bar);
        const bool numbered = (bar - 1) % 4 == 0;
        fillRect(canvas, x, kTop - (numbered ? 6 : 3), 1, numbered ? 6 : 3, kAxisInk);
        if (numbered)
            writeOnBaseline(canvas, setText(labelFont, std::to_string(bar), kLabelCapHeight), x + 2,
                            kTop - 8, kAxisInk);
    }
    for (size_t i = 0; i < song.sections.size(); ++i) {
        const int x = columnOfBar(song, song.sections[i].firstBar);
        if (x >= plotRight)
            continue;
        fillRect(canvas, x, 2, 1, kTop + spectrogram.rows - 2, kSectionLine);
        // A name is cut short before the next section's line.
        const int room = i + 1 < song.sections.size()
                             ? columnOfBar(song, song.sections[i + 1].firstBar) - x - 7
                             : canvas.width() - x - 4;
        const Field name = setText(sectionFont, song.sections[i].name, kSectionCapHeight);
        writeOnBaseline(canvas, leftPart(name, room), x + 4, kTop - 24, kSectionInk);
    }
}

} // namespace

void writeSpectrogram(const AudioBuffer& audio, const Song* song, const std::string& path) {
    const raster::FontShelf fonts(raster::DefaultFontFolder);
    const Spectrogram spectrogram = computeSpectrogram(audio, kPlotRows);
    Canvas canvas(kLeft + spectrogram.columns + kRight, kTop + spectrogram.rows + kBottom,
                  {kBackground.r, kBackground.g, kBackground.b, 1.0f});
    drawPlot(canvas, spectrogram);
    drawFrequencyAxis(canvas, spectrogram, fonts.sans());
    drawTimeAxis(canvas, spectrogram, fonts.sans());
    if (song)
        drawSongMarks(canvas, spectrogram, *song, fonts.sans(), fonts.sansBold());
    raster::writePng(raster::toPicture(canvas, 3), path);
}

} // namespace synth
