#include "Picture.h"

#include <stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace raster {

Picture::Picture(int width, int height, int channels)
    : width(width), height(height), channels(channels),
      bytes(std::size_t(width) * height * channels, 0) {}

std::uint8_t toByte(float unit) {
    return std::uint8_t(std::lround(clamp01(unit) * 255.0f));
}

std::uint8_t toSignedByte(float value) {
    const float clamped = std::fmax(-1.0f, std::fmin(1.0f, value));
    return std::uint8_t(std::lround(128.0f + 127.0f * clamped));
}

float fromSignedByte(std::uint8_t byte) {
    return (float(byte) - 128.0f) / 127.0f;
}

Picture toSignedGrey(const Field& field) {
    Picture picture(field.width(), field.height(), 1);
    for (int y = 0; y < field.height(); ++y) {
        for (int x = 0; x < field.width(); ++x) {
            *picture.pixel(x, y) = toSignedByte(field.at(x, y));
        }
    }
    return picture;
}

Picture toPicture(const Canvas& canvas, int channels) {
    Picture picture(canvas.width(), canvas.height(), channels);
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Rgba& c = canvas.at(x, y);
            std::uint8_t* p = picture.pixel(x, y);
            p[0] = toByte(c.r);
            p[1] = toByte(c.g);
            p[2] = toByte(c.b);
            if (channels == 4) {
                p[3] = toByte(c.a);
            }
        }
    }
    return picture;
}

Picture flippedVertically(const Picture& picture) {
    Picture flipped = picture;
    const std::size_t row = std::size_t(picture.width) * picture.channels;
    for (int y = 0; y < picture.height; ++y) {
        std::copy_n(picture.pixel(0, y), row, flipped.pixel(0, picture.height - 1 - y));
    }
    return flipped;
}

namespace {

void appendBytes(void* context, void* data, int size) {
    auto* out = static_cast<std::vector<std::uint8_t>*>(context);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    out->insert(out->end(), bytes, bytes + size);
}

std::vector<std::uint8_t> encodePng(const Picture& picture) {
    std::vector<std::uint8_t> png;
    const int stride = picture.width * picture.channels;
    if (!stbi_write_png_to_func(appendBytes, &png, picture.width, picture.height, picture.channels,
                                picture.bytes.data(), stride)) {
        throw std::runtime_error("cannot encode a " + std::to_string(picture.width) + "x" +
                                 std::to_string(picture.height) + " picture as PNG");
    }
    return png;
}

} // namespace

void writePng(const Picture& picture, const std::string& path) {
    const std::vector<std::uint8_t> png = encodePng(picture);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write '" + path + "'");
    }
}

} // namespace raster
