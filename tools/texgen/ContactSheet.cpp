#include "ContactSheet.h"

#include <algorithm>
#include <cmath>

namespace texgen {

namespace {

constexpr int kGap = 14;
constexpr int kLabelHeight = 18;
constexpr int kSquareBox = 256;
constexpr int kPlotHeight = 90;
const Colour kBackdrop{0.11f, 0.115f, 0.125f};

struct Size {
    int width, height;
};

Size displaySize(const Picture& p, int wideBox) {
    if (p.height == 1) {
        return {kSquareBox, 24 + kPlotHeight};
    }
    const float aspect = float(p.width) / float(p.height);
    const int box = aspect >= 1.6f ? wideBox : kSquareBox;
    const float scale = std::min(float(box) / p.width, float(box) / p.height);
    return {std::max(1, int(std::lround(p.width * scale))),
            std::max(1, int(std::lround(p.height * scale)))};
}

Rgba texelOf(const Picture& p, int x, int y) {
    const std::uint8_t* t = p.pixel(x, y);
    if (p.channels < 3) {
        const float grey = t[0] / 255.0f;
        return {grey, grey, grey, p.channels == 2 ? t[1] / 255.0f : 1.0f};
    }
    return {t[0] / 255.0f, t[1] / 255.0f, t[2] / 255.0f, p.channels == 4 ? t[3] / 255.0f : 1.0f};
}

// Area average when shrinking, nearest texel when enlarging.
Rgba resampled(const Picture& p, Size size, int x, int y) {
    const int x0 = x * p.width / size.width;
    const int y0 = y * p.height / size.height;
    const int x1 = std::max(x0 + 1, (x + 1) * p.width / size.width);
    const int y1 = std::max(y0 + 1, (y + 1) * p.height / size.height);
    Rgba sum;
    for (int sy = y0; sy < y1; ++sy) {
        for (int sx = x0; sx < x1; ++sx) {
            const Rgba t = texelOf(p, sx, sy);
            sum.r += t.r * t.a;
            sum.g += t.g * t.a;
            sum.b += t.b * t.a;
            sum.a += t.a;
        }
    }
    const float n = float((x1 - x0) * (y1 - y0));
    return {sum.r / n, sum.g / n, sum.b / n, sum.a / n};
}

Colour checker(int x, int y) {
    return ((x / 8 + y / 8) % 2 == 0) ? Colour{0.06f, 0.06f, 0.07f} : Colour{0.16f, 0.16f, 0.18f};
}

void drawPicture(Canvas& sheet, const Picture& p, Size size, int left, int top) {
    const bool alpha = p.channels == 4 || p.channels == 2;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const Rgba t = resampled(p, size, x, y);
            const Colour under = alpha ? checker(x, y) : Colour{};
            const Colour shown = Colour{t.r, t.g, t.b} + under * (1.0f - t.a);
            sheet.at(left + x, top + y) = {shown.r, shown.g, shown.b, 1.0f};
        }
    }
}

void drawPlot(Canvas& sheet, const Picture& p, int left, int top) {
    const Colour channelColours[3] = {
        {1.0f, 0.4f, 0.35f}, {0.4f, 1.0f, 0.45f}, {0.45f, 0.6f, 1.0f}};
    for (int y = 0; y < kPlotHeight; ++y) {
        for (int x = 0; x < kSquareBox; ++x) {
            sheet.at(left + x, top + y) = {0.05f, 0.05f, 0.06f, 1.0f};
        }
    }
    for (int c = 0; c < std::min(p.channels, 3); ++c) {
        const Colour colour = p.channels == 1 ? Colour{0.9f, 0.9f, 0.9f} : channelColours[c];
        for (int x = 0; x < kSquareBox; ++x) {
            const int texel = x * p.width / kSquareBox;
            const float value = p.pixel(texel, 0)[c] / 255.0f;
            const int y = top + kPlotHeight - 1 - int(std::lround(value * (kPlotHeight - 1)));
            sheet.at(left + x, y) = {colour.r, colour.g, colour.b, 1.0f};
        }
    }
}

void drawLabel(Canvas& sheet, const std::string& text, const Font& font, int left, int top) {
    TextStyle style;
    style.capHeight = 9.0f;
    const Field words = font.set(text, style, 0);
    paintCoverage(sheet, words, left, top + (kLabelHeight - words.height()) / 2,
                  {0.85f, 0.87f, 0.9f});
}

struct Placement {
    int left, top;
    Size size;
};

std::vector<Placement> layOut(const std::vector<SheetItem>& items, const SheetLayout& layout,
                              int& sheetHeight) {
    std::vector<Placement> places;
    int x = kGap;
    int y = kGap;
    int rowHeight = 0;
    for (const SheetItem& item : items) {
        const Size size = displaySize(item.picture, layout.wideBox);
        const int tileWidth = std::max(size.width, std::min(kSquareBox, layout.wideBox));
        if (x + tileWidth + kGap > layout.width) {
            x = kGap;
            y += rowHeight + kGap;
            rowHeight = 0;
        }
        places.push_back({x, y, size});
        x += tileWidth + kGap;
        rowHeight = std::max(rowHeight, size.height + kLabelHeight);
    }
    sheetHeight = y + rowHeight + kGap;
    return places;
}

} // namespace

Picture contactSheet(const std::vector<SheetItem>& items, const Font& labelFont,
                     const SheetLayout& layout) {
    int height = 0;
    const std::vector<Placement> places = layOut(items, layout, height);
    Canvas sheet(layout.width, height, {kBackdrop.r, kBackdrop.g, kBackdrop.b, 1.0f});
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Picture& p = items[i].picture;
        const Placement& at = places[i];
        if (p.height == 1) {
            drawPicture(sheet, p, {kSquareBox, 20}, at.left, at.top);
            drawPlot(sheet, p, at.left, at.top + 24);
        } else {
            drawPicture(sheet, p, at.size, at.left, at.top);
        }
        drawLabel(sheet, items[i].label, labelFont, at.left, at.top + at.size.height);
    }
    return toPicture(sheet, 3);
}

} // namespace texgen
