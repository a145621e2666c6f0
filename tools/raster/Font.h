// TrueType text set into coverage fields with stb_truetype.
#pragma once

#include "Raster.h"

#include <stb_truetype.h>

#include <memory>
#include <string>
#include <vector>

namespace raster {

// Where fonts-dejavu-core installs the DejaVu faces.
inline constexpr const char* DefaultFontFolder = "/usr/share/fonts/truetype/dejavu";

struct TextStyle {
    float capHeight = 64.0f;        // height of a capital letter, in pixels
    float tracking = 0.0f;          // extra space after each letter, in cap heights
    float horizontalStretch = 1.0f; // for pixels that are not square
};

class Font {
public:
    // Throws std::runtime_error naming the file when it is missing or not a font.
    explicit Font(const std::string& path);
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // One line of text, cropped to its ink with `margin` empty pixels all round, so that
    // centring the field centres the letters.
    Field set(const std::string& text, const TextStyle& style, int margin) const;

    const std::string& path() const { return path_; }

private:
    float scaleForCapHeight(float capHeight) const;

    std::string path_;
    std::vector<unsigned char> data_;
    stbtt_fontinfo info_{};
};

// The DejaVu faces of fonts-dejavu-core, loaded from one folder on first use.
class FontShelf {
public:
    explicit FontShelf(std::string folder);

    const Font& sans() const;
    const Font& sansBold() const;
    const Font& serif() const;
    const Font& serifBold() const;
    const Font& mono() const;

    // Loads every face now, so that a missing file is reported before any work is done.
    void loadAll() const;

private:
    const Font& face(std::size_t index) const;

    std::string folder_;
    mutable std::vector<std::unique_ptr<Font>> faces_;
};

// Pastes `stamp` into `target` with its top-left corner at (left, top), keeping the larger
// coverage where they overlap.
void stampMax(Field& target, const Field& stamp, int left, int top);
// Pastes `stamp` centred on (cx, cy).
void stampCentred(Field& target, const Field& stamp, float cx, float cy);

} // namespace raster
