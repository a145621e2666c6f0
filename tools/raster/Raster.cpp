#include "Raster.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace raster {

Field::Field(int width, int height, float value)
    : width_(width), height_(height), values_(std::size_t(width) * height, value) {}

float Field::orZero(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) {
        return 0.0f;
    }
    return at(x, y);
}

float Field::sample(float x, float y) const {
    const float fx = x - 0.5f;
    const float fy = y - 0.5f;
    const int x0 = int(std::floor(fx));
    const int y0 = int(std::floor(fy));
    const float tx = fx - x0;
    const float ty = fy - y0;
    const float top = orZero(x0, y0) * (1.0f - tx) + orZero(x0 + 1, y0) * tx;
    const float bottom = orZero(x0, y0 + 1) * (1.0f - tx) + orZero(x0 + 1, y0 + 1) * tx;
    return top * (1.0f - ty) + bottom * ty;
}

Colour operator*(Colour c, float k) {
    return {c.r * k, c.g * k, c.b * k};
}

Colour operator+(Colour a, Colour b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}

Colour mix(Colour a, Colour b, float t) {
    return a * (1.0f - t) + b * t;
}

Canvas::Canvas(int width, int height, Rgba fill)
    : width_(width), height_(height), pixels_(std::size_t(width) * height, fill) {}

void Canvas::layerOver(int x, int y, Colour premultiplied, float alpha) {
    Rgba& p = at(x, y);
    const float keep = 1.0f - alpha;
    p.r = premultiplied.r + p.r * keep;
    p.g = premultiplied.g + p.g * keep;
    p.b = premultiplied.b + p.b * keep;
    p.a = alpha + p.a * keep;
}

void Canvas::paintOver(int x, int y, Colour colour, float alpha) {
    Rgba& p = at(x, y);
    const float outAlpha = alpha + p.a * (1.0f - alpha);
    if (outAlpha <= 0.0f) {
        return;
    }
    const float below = p.a * (1.0f - alpha);
    p.r = (colour.r * alpha + p.r * below) / outAlpha;
    p.g = (colour.g * alpha + p.g * below) / outAlpha;
    p.b = (colour.b * alpha + p.b * below) / outAlpha;
    p.a = outAlpha;
}

void paintCoverage(Canvas& canvas, const Field& coverage, int left, int top, Colour colour) {
    const int firstX = std::max(0, -left);
    const int firstY = std::max(0, -top);
    const int endX = std::min(coverage.width(), canvas.width() - left);
    const int endY = std::min(coverage.height(), canvas.height() - top);
    for (int y = firstY; y < endY; ++y) {
        for (int x = firstX; x < endX; ++x) {
            canvas.paintOver(left + x, top + y, colour, coverage.at(x, y));
        }
    }
}

namespace {

std::vector<float> gaussianTaps(float sigma) {
    const int radius = std::max(1, int(std::ceil(sigma * 3.0f)));
    std::vector<float> taps(2 * radius + 1);
    float sum = 0.0f;
    for (int i = -radius; i <= radius; ++i) {
        taps[i + radius] = std::exp(-0.5f * float(i * i) / (sigma * sigma));
        sum += taps[i + radius];
    }
    for (float& t : taps) {
        t /= sum;
    }
    return taps;
}

// One blur pass along a line of `count` values spaced `stride` apart.
void blurLine(float* line, int count, int stride, const std::vector<float>& taps, Edges edges,
              std::vector<float>& scratch) {
    const int radius = int(taps.size() / 2);
    scratch.resize(count);
    for (int i = 0; i < count; ++i) {
        scratch[i] = line[std::size_t(i) * stride];
    }
    for (int i = 0; i < count; ++i) {
        float sum = 0.0f;
        for (int k = -radius; k <= radius; ++k) {
            int j = i + k;
            if (edges == Edges::Wrap) {
                j = ((j % count) + count) % count;
            } else if (j < 0 || j >= count) {
                continue;
            }
            sum += scratch[j] * taps[k + radius];
        }
        line[std::size_t(i) * stride] = sum;
    }
}

// Squared distances along one line (Felzenszwalb and Huttenlocher's lower envelope of
// parabolas); doubles keep the "far" sentinel from swamping the small terms.
void distanceLine(std::vector<double>& f) {
    const int n = int(f.size());
    std::vector<double> out(n);
    std::vector<int> site(n);
    std::vector<double> bound(n + 1);
    const double infinity = std::numeric_limits<double>::infinity();
    auto crossing = [&f](int q, int p) {
        return ((f[q] + double(q) * q) - (f[p] + double(p) * p)) / (2.0 * (q - p));
    };
    int k = 0;
    site[0] = 0;
    bound[0] = -infinity;
    bound[1] = infinity;
    for (int q = 1; q < n; ++q) {
        double s = crossing(q, site[k]);
        while (s <= bound[k]) {
            --k;
            s = crossing(q, site[k]);
        }
        ++k;
        site[k] = q;
        bound[k] = s;
        bound[k + 1] = infinity;
    }
    k = 0;
    for (int q = 0; q < n; ++q) {
        while (bound[k + 1] < q) {
            ++k;
        }
        const double d = q - site[k];
        out[q] = d * d + f[site[k]];
    }
    f = out;
}

} // namespace

void gaussianBlur(Field& field, float sigma, Edges edges) {
    if (sigma <= 0.0f) {
        return;
    }
    const std::vector<float> taps = gaussianTaps(sigma);
    std::vector<float> scratch;
    for (int y = 0; y < field.height(); ++y) {
        blurLine(&field.at(0, y), field.width(), 1, taps, edges, scratch);
    }
    for (int x = 0; x < field.width(); ++x) {
        blurLine(&field.at(x, 0), field.height(), field.width(), taps, edges, scratch);
    }
}

Field distanceOutside(const Field& coverage) {
    const double far = 1e20;
    const int w = coverage.width();
    const int h = coverage.height();
    std::vector<double> squared(std::size_t(w) * h);
    std::vector<double> line;
    for (int x = 0; x < w; ++x) {
        line.resize(h);
        for (int y = 0; y < h; ++y) {
            line[y] = coverage.at(x, y) >= 0.5f ? 0.0 : far;
        }
        distanceLine(line);
        for (int y = 0; y < h; ++y) {
            squared[std::size_t(y) * w + x] = line[y];
        }
    }
    Field distance(w, h);
    for (int y = 0; y < h; ++y) {
        line.assign(squared.begin() + std::ptrdiff_t(y) * w,
                    squared.begin() + std::ptrdiff_t(y + 1) * w);
        distanceLine(line);
        for (int x = 0; x < w; ++x) {
            distance.at(x, y) = float(std::sqrt(line[x]));
        }
    }
    return distance;
}

float clamp01(float v) {
    return std::min(1.0f, std::max(0.0f, v));
}

float smoothstep(float edge0, float edge1, float x) {
    const float t = clamp01((x - edge0) / (edge1 - edge0));
    return t * t * (3.0f - 2.0f * t);
}

} // namespace raster
