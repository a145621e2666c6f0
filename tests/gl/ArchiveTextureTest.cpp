// Textures from the resource archive match the ones loaded from the loose files.
#include "ArchiveFiles.h"
#include "KVTIO.h"
#include "PictureFiles.h"
#include "Texture.h"
#include "archive/arc.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

namespace {

std::vector<unsigned char> texturePixels(const Texture& texture, GLenum target, int bytes) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(bytes));
    glBindTexture(target, texture.getID());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(target, 0, texture.getBPP() == 32 ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE,
                  pixels.data());
    glBindTexture(target, 0);
    return pixels;
}

class ArchiveTextures : public testing::Test {
protected:
    void SetUp() override {
        if (!testarchives::have7zz()) {
            GTEST_SKIP() << "7zz is not installed";
        }
        previous = fs::current_path();
        folder = testpictures::freshFolder();
        fs::create_directories(folder + "resources/graphics");
        fs::current_path(folder);
        std::vector<unsigned char> rgba(5 * 3 * 4);
        for (std::size_t i = 0; i < rgba.size(); ++i) {
            rgba[i] = static_cast<unsigned char>(i * 37);
        }
        testpictures::writeFile(RGBA, testpictures::encodePng(5, 3, 4, rgba));
        testpictures::writeFile(
            RGB, testpictures::encodePng(4, 1, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
        ASSERT_TRUE(testarchives::sevenZip(folder, "a " + testarchives::PACKING_OPTIONS +
                                                       " resources.7z resources"));
        ASSERT_TRUE(arc_load("resources.7z"));
    }

    void TearDown() override {
        arc_close();
        if (!folder.empty()) {
            fs::current_path(previous);
            fs::remove_all(folder);
        }
    }

    void expectSameTexture(const std::string& name, GLenum target, bool mipmap) {
        SCOPED_TRACE(name);
        std::unique_ptr<Texture> loose(
            KVTIO::loadTexture(name, target, mipmap, KVTIO::KVT_RESOURCES_FLAT));
        std::unique_ptr<Texture> packed(
            KVTIO::loadTexture(name, target, mipmap, KVTIO::KVT_RESOURCES_7Z));
        ASSERT_NE(loose, nullptr);
        ASSERT_NE(packed, nullptr);
        EXPECT_EQ(packed->getWidth(), loose->getWidth());
        EXPECT_EQ(packed->getHeight(), loose->getHeight());
        EXPECT_EQ(packed->getBPP(), loose->getBPP());
        EXPECT_EQ(packed->getFilename(), name);
        const int length = target == GL_TEXTURE_1D ? std::max(loose->getWidth(), loose->getHeight())
                                                   : loose->getWidth() * loose->getHeight();
        const int bytes = length * loose->getBPP() / 8;
        EXPECT_EQ(texturePixels(*packed, target, bytes), texturePixels(*loose, target, bytes));
    }

    const std::string RGBA = "resources/graphics/rgba.png";
    const std::string RGB = "resources/graphics/rgb.png";
    fs::path previous;
    std::string folder;
};

} // namespace

TEST_F(ArchiveTextures, TexturesFromTheArchiveMatchTheLooseFiles) {
    expectSameTexture(RGBA, GL_TEXTURE_2D, false);
    expectSameTexture(RGBA, GL_TEXTURE_2D, true);
    expectSameTexture(RGB, GL_TEXTURE_1D, false);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(ArchiveTextures, APictureMissingFromTheArchiveGivesNoTexture) {
    EXPECT_EQ(KVTIO::loadTexture("resources/graphics/absent.png", GL_TEXTURE_2D, false,
                                 KVTIO::KVT_RESOURCES_7Z),
              nullptr);
}
