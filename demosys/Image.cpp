#include "Image.h"

#include "File.h"

#include <stb_image.h>

#include <climits>
#include <cstring>

namespace {

// A picture larger than this is taken for a corrupt header rather than allocated.
const long MAX_SIDE = 16384;
const long MAX_PIXELS = 1L << 26;

bool sizeIsSane(int width, int height) {
    return width > 0 && height > 0 && width <= MAX_SIDE && height <= MAX_SIDE &&
           static_cast<long>(width) * height <= MAX_PIXELS;
}

// Grey becomes RGB and grey-alpha RGBA; colour pictures keep their channels.
int expandedChannels(int channels) {
    if (channels == 1) {
        return 3;
    }
    return channels == 2 ? 4 : channels;
}

} // namespace

Image::Image(const char* name) {
    File file(name, File::READ);
    if (!file.exists()) {
        return;
    }
    const std::vector<unsigned char> bytes = file.getUnsigned();
    if (decode(bytes.data(), bytes.size())) {
        fileName = name;
    }
}

void Image::putData(const unsigned char* bytes, unsigned int size) {
    decode(bytes, size);
    fileName.clear();
}

bool Image::decode(const unsigned char* bytes, std::size_t size) {
    data.clear();
    available = false;
    if (bytes == nullptr || size == 0 || size > INT_MAX) {
        return false;
    }
    const int length = static_cast<int>(size);
    int w = 0, h = 0, channels = 0;
    if (!stbi_info_from_memory(bytes, length, &w, &h, &channels) || !sizeIsSane(w, h)) {
        return false;
    }
    const int wanted = expandedChannels(channels);
    stbi_uc* pixels = stbi_load_from_memory(bytes, length, &w, &h, &channels, wanted);
    if (pixels == nullptr) {
        return false;
    }
    width = w;
    height = h;
    pixelSize = wanted;
    bpp = wanted * 8;
    copyRowsReversed(pixels);
    stbi_image_free(pixels);
    available = true;
    return true;
}

void Image::copyRowsReversed(const unsigned char* pixels) {
    const std::size_t rowBytes = static_cast<std::size_t>(pixelSize) * width;
    data.resize(rowBytes * height);
    for (int row = 0; row < height; ++row) {
        std::memcpy(data.data() + rowBytes * row, pixels + rowBytes * (height - 1 - row), rowBytes);
    }
}
