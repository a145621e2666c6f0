#include "Image.h"
#include "PictureFiles.h"

#include <gtest/gtest.h>

using testpictures::encodePng;

namespace {

// 3 x 2 RGBA, top row red, green, blue; bottom row white, black, half-transparent grey.
const std::vector<unsigned char> RGBA_3X2 = {255, 0,   0,   255, 0, 255, 0, 255, 0,   0,   255, 255,
                                             255, 255, 255, 255, 0, 0,   0, 255, 128, 128, 128, 64};

std::vector<unsigned char> imageBytes(const Image& image) {
    return std::vector<unsigned char>(image.getData(), image.getData() + image.getDataSize());
}

Image decoded(const std::vector<unsigned char>& file) {
    Image image;
    image.putData(file.data(), static_cast<unsigned int>(file.size()));
    return image;
}

} // namespace

TEST(Image, DecodesFromMemoryWithTheBottomRowFirst) {
    Image image;
    image.setFileName("stale");
    const std::vector<unsigned char> png = encodePng(3, 2, 4, RGBA_3X2);
    image.putData(png.data(), static_cast<unsigned int>(png.size()));
    ASSERT_TRUE(image.exists());
    EXPECT_EQ(image.getWidth(), 3);
    EXPECT_EQ(image.getHeight(), 2);
    EXPECT_EQ(image.getBpp(), 32);
    EXPECT_EQ(image.getPixelSize(), 4);
    EXPECT_EQ(image.getFileName(), "");
    std::vector<unsigned char> expected(RGBA_3X2.begin() + 12, RGBA_3X2.end());
    expected.insert(expected.end(), RGBA_3X2.begin(), RGBA_3X2.begin() + 12);
    EXPECT_EQ(imageBytes(image), expected);
}

TEST(Image, DecodesAFileAndKeepsItsName) {
    const std::string path = testpictures::freshFolder() + "rgb.png";
    const std::vector<unsigned char> rgb = {10, 20, 30, 40, 50, 60};
    testpictures::writeFile(path, encodePng(1, 2, 3, rgb));
    Image image(path.c_str());
    ASSERT_TRUE(image.exists());
    EXPECT_EQ(image.getFileName(), path);
    EXPECT_EQ(image.getBpp(), 24);
    EXPECT_EQ(imageBytes(image), (std::vector<unsigned char>{40, 50, 60, 10, 20, 30}));
}

TEST(Image, GreyPicturesAreExpandedToColour) {
    const Image grey = decoded(encodePng(2, 1, 1, {7, 200}));
    ASSERT_TRUE(grey.exists());
    EXPECT_EQ(grey.getBpp(), 24);
    EXPECT_EQ(imageBytes(grey), (std::vector<unsigned char>{7, 7, 7, 200, 200, 200}));

    const Image greyAlpha = decoded(encodePng(1, 1, 2, {90, 33}));
    ASSERT_TRUE(greyAlpha.exists());
    EXPECT_EQ(greyAlpha.getBpp(), 32);
    EXPECT_EQ(greyAlpha.getPixelSize(), 4);
    EXPECT_EQ(imageBytes(greyAlpha), (std::vector<unsigned char>{90, 90, 90, 33}));
}

TEST(Image, BadFilesLeaveNoPicture) {
    const std::vector<unsigned char> png = encodePng(3, 2, 4, RGBA_3X2);
    const std::vector<unsigned char> truncated(png.begin(), png.begin() + png.size() / 2);
    std::vector<unsigned char> corrupt = png;
    for (std::size_t i = 41; i < corrupt.size() - 12; ++i) { // the compressed pixels
        corrupt[i] = static_cast<unsigned char>(corrupt[i] ^ 0x5A);
    }
    const std::string text = "this is not a picture";
    const std::vector<std::vector<unsigned char>> badFiles = {
        truncated, corrupt, std::vector<unsigned char>(text.begin(), text.end()), {}};
    for (const auto& bytes : badFiles) {
        const Image image = decoded(bytes);
        EXPECT_FALSE(image.exists());
        EXPECT_EQ(image.getData(), nullptr);
    }
    Image missing("/nonexistent/picture.png");
    EXPECT_FALSE(missing.exists());
    EXPECT_EQ(missing.getData(), nullptr);
}

TEST(Image, AnAbsurdSizeInTheHeaderIsRejectedBeforeDecoding) {
    std::vector<unsigned char> png = encodePng(3, 2, 4, RGBA_3X2);
    // IHDR width, big-endian at byte 16: claim 100000 pixels across.
    png[16] = 0;
    png[17] = 0x01;
    png[18] = 0x86;
    png[19] = 0xA0;
    EXPECT_FALSE(decoded(png).exists());
}
