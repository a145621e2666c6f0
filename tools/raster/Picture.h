// Eight-bit pictures as they are written to PNG files.
#pragma once

#include "Raster.h"

#include <cstdint>
#include <string>
#include <vector>

namespace raster {

struct Picture {
    Picture() = default;
    Picture(int width, int height, int channels);

    std::uint8_t* pixel(int x, int y) { return &bytes[(std::size_t(y) * width + x) * channels]; }
    const std::uint8_t* pixel(int x, int y) const {
        return &bytes[(std::size_t(y) * width + x) * channels];
    }

    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<std::uint8_t> bytes;
};

std::uint8_t toByte(float unit);
// Signed values in -1 … 1 centred on 128, so that 128 means exactly 0.
std::uint8_t toSignedByte(float value);
float fromSignedByte(std::uint8_t byte);

// Grey picture from signed values in -1 … 1.
Picture toSignedGrey(const Field& field);
// Canvas to RGB (3 channels, alpha dropped) or RGBA (4 channels).
Picture toPicture(const Canvas& canvas, int channels);

Picture flippedVertically(const Picture& picture);

// Throws std::runtime_error naming the file when it cannot be written.
void writePng(const Picture& picture, const std::string& path);

} // namespace raster
