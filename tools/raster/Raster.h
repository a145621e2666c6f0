// Float pictures the generators draw into before they are quantised to bytes.
#pragma once

#include <cstddef>
#include <vector>

namespace raster {

// One channel of floats; (x, y) with y = 0 the top row, as the picture file stores it.
class Field {
public:
    Field() = default;
    Field(int width, int height, float value = 0.0f);

    int width() const { return width_; }
    int height() const { return height_; }
    float& at(int x, int y) { return values_[index(x, y)]; }
    float at(int x, int y) const { return values_[index(x, y)]; }
    // Reads outside the picture return 0.
    float orZero(int x, int y) const;
    // Bilinear read with pixel centres at integer + 0.5; outside the picture it is 0.
    float sample(float x, float y) const;

private:
    std::size_t index(int x, int y) const { return std::size_t(y) * width_ + x; }

    int width_ = 0;
    int height_ = 0;
    std::vector<float> values_;
};

struct Colour {
    float r = 0.0f, g = 0.0f, b = 0.0f;
};

Colour operator*(Colour c, float k);
Colour operator+(Colour a, Colour b);
Colour mix(Colour a, Colour b, float t);

// Premultiplied or straight RGBA, as the generator that fills it decides.
struct Rgba {
    float r = 0.0f, g = 0.0f, b = 0.0f, a = 0.0f;
};

class Canvas {
public:
    Canvas() = default;
    Canvas(int width, int height, Rgba fill = {});

    int width() const { return width_; }
    int height() const { return height_; }
    Rgba& at(int x, int y) { return pixels_[std::size_t(y) * width_ + x]; }
    const Rgba& at(int x, int y) const { return pixels_[std::size_t(y) * width_ + x]; }

    // Premultiplied "over": the layer's colour is already scaled by its alpha.
    void layerOver(int x, int y, Colour premultiplied, float alpha);
    // Straight-alpha "over" for pictures stored with unscaled colour.
    void paintOver(int x, int y, Colour colour, float alpha);

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<Rgba> pixels_;
};

// Paints colour over the canvas where coverage (its top-left corner at left, top) has ink, as
// set text does; what falls outside the canvas is dropped.
void paintCoverage(Canvas& canvas, const Field& coverage, int left, int top, Colour colour);

enum class Edges { Zero, Wrap };

// Separable Gaussian blur; Wrap keeps a tiling picture tiling.
void gaussianBlur(Field& field, float sigma, Edges edges);

// Distance in pixels from every pixel to the nearest one with coverage of at least one half
// (0 inside the shape), exact Euclidean.
Field distanceOutside(const Field& coverage);

float clamp01(float v);
float smoothstep(float edge0, float edge1, float x);

} // namespace raster
