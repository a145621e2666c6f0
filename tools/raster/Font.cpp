#include "Font.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace raster {

namespace {

std::vector<unsigned char> readWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read font '" + path + "'");
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct InkBox {
    int left, top, right, bottom; // inclusive
    bool empty() const { return right < left; }
};

InkBox inkOf(const Field& field) {
    InkBox box{field.width(), field.height(), -1, -1};
    for (int y = 0; y < field.height(); ++y) {
        for (int x = 0; x < field.width(); ++x) {
            if (field.at(x, y) > 0.0f) {
                box.left = std::min(box.left, x);
                box.right = std::max(box.right, x);
                box.top = std::min(box.top, y);
                box.bottom = std::max(box.bottom, y);
            }
        }
    }
    return box;
}

} // namespace

Font::Font(const std::string& path) : path_(path), data_(readWholeFile(path)) {
    const int offset = stbtt_GetFontOffsetForIndex(data_.data(), 0);
    if (offset < 0 || !stbtt_InitFont(&info_, data_.data(), offset)) {
        throw std::runtime_error("'" + path + "' is not a TrueType font");
    }
}

float Font::scaleForCapHeight(float capHeight) const {
    int x0, y0, x1, y1;
    if (!stbtt_GetCodepointBox(&info_, 'H', &x0, &y0, &x1, &y1) || y1 <= y0) {
        return stbtt_ScaleForPixelHeight(&info_, capHeight / 0.7f);
    }
    return capHeight / float(y1 - y0);
}

Field Font::set(const std::string& text, const TextStyle& style, int margin) const {
    const float scaleY = scaleForCapHeight(style.capHeight);
    const float scaleX = scaleY * style.horizontalStretch;
    int ascent, descent, lineGap;
    stbtt_GetFontVMetrics(&info_, &ascent, &descent, &lineGap);
    const float trackingPixels = style.tracking * style.capHeight * style.horizontalStretch;

    // Lay the line out on a generous field first, then crop it to the ink.
    int advanceUnits = 0;
    for (unsigned char c : text) {
        int advance, bearing;
        stbtt_GetCodepointHMetrics(&info_, c, &advance, &bearing);
        advanceUnits += advance;
    }
    const int pad = 8;
    const int width =
        int(std::ceil(advanceUnits * scaleX + trackingPixels * text.size())) + 2 * pad;
    const int height = int(std::ceil((ascent - descent) * scaleY)) + 2 * pad;
    const float baseline = pad + ascent * scaleY;
    Field line(width, height);

    float pen = pad;
    std::vector<unsigned char> glyph;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int c = (unsigned char)text[i];
        const float shiftX = pen - std::floor(pen);
        int x0, y0, x1, y1;
        stbtt_GetCodepointBitmapBoxSubpixel(&info_, c, scaleX, scaleY, shiftX, 0.0f, &x0, &y0, &x1,
                                            &y1);
        const int gw = x1 - x0;
        const int gh = y1 - y0;
        if (gw > 0 && gh > 0) {
            glyph.assign(std::size_t(gw) * gh, 0);
            stbtt_MakeCodepointBitmapSubpixel(&info_, glyph.data(), gw, gh, gw, scaleX, scaleY,
                                              shiftX, 0.0f, c);
            Field g(gw, gh);
            for (int y = 0; y < gh; ++y) {
                for (int x = 0; x < gw; ++x) {
                    g.at(x, y) = glyph[std::size_t(y) * gw + x] / 255.0f;
                }
            }
            stampMax(line, g, int(std::floor(pen)) + x0, int(std::lround(baseline)) + y0);
        }
        int advance, bearing;
        stbtt_GetCodepointHMetrics(&info_, c, &advance, &bearing);
        pen += advance * scaleX + trackingPixels;
        if (i + 1 < text.size()) {
            pen += stbtt_GetCodepointKernAdvance(&info_, c, (unsigned char)text[i + 1]) * scaleX;
        }
    }

    const InkBox ink = inkOf(line);
    if (ink.empty()) {
        return Field(2 * margin, 2 * margin);
    }
    Field cropped(ink.right - ink.left + 1 + 2 * margin, ink.bottom - ink.top + 1 + 2 * margin);
    for (int y = ink.top; y <= ink.bottom; ++y) {
        for (int x = ink.left; x <= ink.right; ++x) {
            cropped.at(x - ink.left + margin, y - ink.top + margin) = line.at(x, y);
        }
    }
    return cropped;
}

FontShelf::FontShelf(std::string folder) : folder_(std::move(folder)), faces_(5) {}

namespace {

const char* const kFaceFiles[] = {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf", "DejaVuSerif.ttf",
                                  "DejaVuSerif-Bold.ttf", "DejaVuSansMono.ttf"};

} // namespace

const Font& FontShelf::face(std::size_t index) const {
    if (!faces_[index]) {
        faces_[index] = std::make_unique<Font>(folder_ + "/" + kFaceFiles[index]);
    }
    return *faces_[index];
}

const Font& FontShelf::sans() const {
    return face(0);
}
const Font& FontShelf::sansBold() const {
    return face(1);
}
const Font& FontShelf::serif() const {
    return face(2);
}
const Font& FontShelf::serifBold() const {
    return face(3);
}
const Font& FontShelf::mono() const {
    return face(4);
}

void FontShelf::loadAll() const {
    for (std::size_t i = 0; i < faces_.size(); ++i) {
        face(i);
    }
}

void stampMax(Field& target, const Field& stamp, int left, int top) {
    for (int y = 0; y < stamp.height(); ++y) {
        const int ty = top + y;
        if (ty < 0 || ty >= target.height()) {
            continue;
        }
        for (int x = 0; x < stamp.width(); ++x) {
            const int tx = left + x;
            if (tx >= 0 && tx < target.width()) {
                target.at(tx, ty) = std::max(target.at(tx, ty), stamp.at(x, y));
            }
        }
    }
}

void stampCentred(Field& target, const Field& stamp, float cx, float cy) {
    stampMax(target, stamp, int(std::lround(cx - stamp.width() * 0.5f)),
             int(std::lround(cy - stamp.height() * 0.5f)));
}

} // namespace raster
