#include "Texture.h"
#include "GLTestSupport.h"
#include "KVTIO.h"
#include "PictureFiles.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>

using gltest::pixelAt;
using gltest::readRgba;
using gltest::Rgba;

namespace {

class TextureFiles : public testing::Test {
protected:
    void SetUp() override { gltest::resetState(64, 64); }

    std::string png(const std::string& name, int width, int height, int channels,
                    const std::vector<unsigned char>& topFirst) {
        const std::string path = folder + name;
        testpictures::writeFile(path, testpictures::encodePng(width, height, channels, topFirst));
        return path;
    }

    std::string folder = testpictures::freshFolder();
};

std::vector<unsigned char> texelsOf(Texture& texture, GLenum format, int bytes, int level = 0) {
    std::vector<unsigned char> texels(bytes);
    glBindTexture(texture.getType(), texture.getID());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(texture.getType(), level, format, GL_UNSIGNED_BYTE, texels.data());
    glBindTexture(texture.getType(), 0);
    return texels;
}

int levelWidth(Texture& texture, int level) {
    GLint width = 0;
    glBindTexture(texture.getType(), texture.getID());
    glGetTexLevelParameteriv(texture.getType(), level, GL_TEXTURE_WIDTH, &width);
    glBindTexture(texture.getType(), 0);
    return width;
}

} // namespace

TEST_F(TextureFiles, TwoDimensionalPicturesUploadBottomRowFirstWithTightRows) {
    // 3 x 2 RGB: rows of 9 bytes, which a 4-byte unpack alignment would misread.
    const std::string path =
        png("rgb.png", 3, 2, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18});
    std::unique_ptr<Texture> texture(KVTIO::loadTexture(path, GL_TEXTURE_2D, false, 0));
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->getFilename(), path);
    EXPECT_EQ(texture->getWidth(), 3);
    EXPECT_EQ(texture->getHeight(), 2);
    EXPECT_EQ(texture->getBPP(), 24);
    EXPECT_EQ(texture->getFileSize(), 18);
    EXPECT_EQ(texture->getType(), static_cast<unsigned>(GL_TEXTURE_2D));
    EXPECT_FALSE(texture->isMipmapped());
    EXPECT_EQ(texelsOf(*texture, GL_RGB, 18),
              (std::vector<unsigned char>{10, 11, 12, 13, 14, 15, 16, 17, 18, 1, 2, 3, 4, 5, 6, 7,
                                          8, 9}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TextureFiles, MipmappedPicturesGetTheWholeChain) {
    std::vector<unsigned char> rgba;
    for (int i = 0; i < 16; ++i) { // left half white, right half black, opaque
        const unsigned char v = (i % 4) < 2 ? 255 : 0;
        rgba.insert(rgba.end(), {v, v, v, 255});
    }
    std::unique_ptr<Texture> texture(
        KVTIO::loadTexture(png("mip.png", 4, 4, 4, rgba), GL_TEXTURE_2D, true, 0));
    ASSERT_NE(texture, nullptr);
    EXPECT_TRUE(texture->isMipmapped());
    EXPECT_EQ(levelWidth(*texture, 1), 2);
    ASSERT_EQ(levelWidth(*texture, 2), 1);
    const std::vector<unsigned char> last = texelsOf(*texture, GL_RGBA, 4, 2);
    EXPECT_NEAR(last[0], 128, 1);
    EXPECT_EQ(last[3], 255);
}

TEST_F(TextureFiles, OneDimensionalTexturesSampleAsUploaded) {
    std::vector<unsigned char> ramp;
    for (int i = 0; i < 8; ++i) {
        ramp.push_back(static_cast<unsigned char>(i * 36));
    }
    // A vertical strip: the 1-D length is the longer side.
    std::unique_ptr<Texture> texture(
        KVTIO::loadTexture(png("ramp.png", 1, 8, 1, ramp), GL_TEXTURE_1D, false, 0));
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(levelWidth(*texture, 0), 8);
    texture->setType(GL_TEXTURE_1D);
    gltest::resetState(8, 1);
    texture->drawQuadFS();
    // The file's rows come reversed: texel i holds the picture's row 7 - i.
    const std::vector<unsigned char> drawn = readRgba(0, 0, 8, 1);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(drawn[i * 4], ramp[7 - i]) << "texel " << i;
    }
}

TEST_F(TextureFiles, MissingOrBrokenFilesGiveNoTexture) {
    const std::vector<unsigned char> good =
        testpictures::encodePng(2, 2, 3, std::vector<unsigned char>(12, 9));
    testpictures::writeFile(folder + "truncated.png",
                            std::vector<unsigned char>(good.begin(), good.begin() + 30));
    testpictures::writeFile(folder + "text.png", std::string("not a picture"));
    for (const char* name : {"missing.png", "truncated.png", "text.png"}) {
        EXPECT_EQ(KVTIO::loadTexture(folder + name, GL_TEXTURE_2D, true, 0), nullptr) << name;
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TextureFiles, PicturesDrawTheRightWayUp) {
    // Top row red, green; bottom row blue, white.
    std::unique_ptr<Texture> texture(KVTIO::loadTexture(
        png("square.png", 2, 2, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}), GL_TEXTURE_2D,
        false, 0));
    ASSERT_NE(texture, nullptr);
    texture->setInterpolation(GL_NEAREST);
    gltest::resetState(2, 2);
    texture->drawQuadFS();
    EXPECT_EQ(pixelAt(0, 1), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(1, 1), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(pixelAt(0, 0), (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(pixelAt(1, 0), (Rgba{255, 255, 255, 255}));
}

TEST(Texture, BindSendsTheStoredFilter) {
    const unsigned char blackWhite[] = {0, 0, 0, 255, 255, 255};
    Texture texture(2, 1, GL_TEXTURE_2D, GL_RGB, GL_RGB, blackWhite);
    gltest::resetState(4, 1);
    texture.drawQuadFS();
    const int linear = pixelAt(1, 0).r;
    EXPECT_GT(linear, 0);
    EXPECT_LT(linear, 255);

    texture.setInterpolation(GL_NEAREST);
    texture.drawQuadFS();
    EXPECT_EQ(pixelAt(1, 0).r, 0);
    EXPECT_EQ(pixelAt(2, 0).r, 255);

    texture.isMipmapped(true); // ignores the stored filter
    texture.bind();
    GLint minFilter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &minFilter);
    texture.release();
    EXPECT_EQ(minFilter, GL_LINEAR_MIPMAP_LINEAR);
}

TEST(Texture, OneDimensionalDataTexturesUseTheWidthOnly) {
    const unsigned char texels[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    Texture texture(3, 99, GL_TEXTURE_1D, GL_RGB, GL_RGB, texels);
    EXPECT_EQ(levelWidth(texture, 0), 3);
    EXPECT_EQ(texelsOf(texture, GL_RGB, 9), std::vector<unsigned char>(texels, texels + 9));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(Texture, ScaledQuadsArePlacedAndBlendedQuadsTestAlpha) {
    const unsigned char white[] = {255, 255, 255, 255};
    Texture texture(1, 1, GL_TEXTURE_2D, GL_RGBA, GL_RGBA, white);
    gltest::resetState(8, 8);
    texture.drawQuadScaled(Vector<float, 2>(1, 1), Vector<float, 2>(0.5f, -0.5f));
    EXPECT_EQ(pixelAt(6, 1).r, 255); // bottom-right quadrant
    EXPECT_EQ(pixelAt(1, 6).r, 0);
    EXPECT_EQ(pixelAt(6, 6).r, 0);

    // Alpha 0 is rejected by the alpha test, alpha 128 blends over the red background.
    const unsigned char clearAndHalf[] = {0, 0, 255, 0, 0, 0, 255, 128};
    Texture blend(2, 1, GL_TEXTURE_2D, GL_RGBA, GL_RGBA, clearAndHalf);
    blend.setInterpolation(GL_NEAREST);
    gltest::resetState(2, 1);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    blend.drawQuadBlendFS(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(pixelAt(0, 0), (Rgba{255, 0, 0, 255}));
    const Rgba mixed = pixelAt(1, 0);
    EXPECT_NEAR(mixed.r, 127, 2);
    EXPECT_NEAR(mixed.b, 128, 2);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
}

TEST(Texture, TextForm) {
    Texture texture("a.png", 0);
    texture.setSize(256, 256);
    EXPECT_EQ(texture.toString(),
              "Texture {file='a.png',id=0',size='256,256',bpp='32'dimtype=GL_TEXTURE_2D }\n");
    texture.isMipmapped(true);
    texture.setType(GL_TEXTURE_1D);
    texture.setBPP(24);
    EXPECT_EQ(texture.toString(), "Texture {file='a.png',id=0',size='256,256',bpp='24' mipmapped "
                                  "dimtype=GL_TEXTURE_1D }\n");
    texture.setType(GL_TEXTURE_CUBE_MAP);
    EXPECT_EQ(texture.toString().substr(texture.toString().size() - 10), "dimtype=}\n");
}
