#pragma once

#include <string>
#include <vector>

// A decoded picture: 24-bit RGB or 32-bit RGBA pixels, tightly packed, rows reversed so that
// the picture's bottom row comes first (the order OpenGL uploads). Grey and grey-alpha
// pictures are expanded to RGB and RGBA so every decodable picture uploads.
class Image {
public:
    // Empty; fill it with putData.
    Image() = default;
    // Decodes the file; exists() tells whether that worked.
    explicit Image(const char* fileName);
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    Image(Image&&) = default;
    Image& operator=(Image&&) = default;

    // Decodes a whole picture file held in memory (the format is detected); the file name
    // becomes empty. A picture that cannot be decoded leaves the image without data.
    void putData(const unsigned char* bytes, unsigned int size);

    int getWidth() const { return width; }
    int getHeight() const { return height; }
    // Bits per pixel: 24 or 32.
    int getBpp() const { return bpp; }
    // Bytes per pixel: 3 or 4.
    int getPixelSize() const { return pixelSize; }
    // pixelSize x width x height bytes, or null without a picture.
    const unsigned char* getData() const { return data.empty() ? nullptr : data.data(); }
    unsigned int getDataSize() const { return static_cast<unsigned int>(data.size()); }
    bool exists() const { return available; }
    void exists(bool flag) { available = flag; }
    std::string getFileName() const { return fileName; }
    void setFileName(std::string name) { fileName = std::move(name); }

private:
    bool decode(const unsigned char* bytes, std::size_t size);
    void copyRowsReversed(const unsigned char* pixels);

    int width = 0;
    int height = 0;
    int bpp = 0;
    int pixelSize = 0;
    std::vector<unsigned char> data;
    bool available = false;
    std::string fileName;
};
