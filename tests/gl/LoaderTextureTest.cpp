#include "DataTexturePool.h"
#include "KVTDemosys.h"
#include "PictureFiles.h"
#include "ResourceLoader.h"
#include "Texture.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// Runs in a fresh folder holding resources/graphics/, with a texture pool installed.
class LoaderTextures : public testing::Test {
protected:
    void SetUp() override {
        previous = fs::current_path();
        folder = testpictures::freshFolder();
        fs::create_directories(folder + "resources/graphics");
        fs::current_path(folder);
        const std::vector<unsigned char> png =
            testpictures::encodePng(2, 2, 3, std::vector<unsigned char>(12, 100));
        testpictures::writeFile("resources/graphics/good.png", png);
        testpictures::writeFile("resources/graphics/truncated.png",
                                std::vector<unsigned char>(png.begin(), png.end() - 20));
        testpictures::writeFile("resources/graphics/text.png", std::string("no picture here"));
        KVTDemosys::textureDataPool = &pool;
    }
    void TearDown() override {
        KVTDemosys::textureDataPool = nullptr;
        fs::current_path(previous);
        fs::remove_all(folder);
    }

    ResourceInfo::TextureInfo entry(const std::string& key, const std::string& file) {
        return ResourceInfo::TextureInfo{key, file, GL_TEXTURE_2D, false};
    }

    fs::path previous;
    std::string folder;
    DataTexturePool pool;
    ResourceLoader loader;
};

} // namespace

TEST_F(LoaderTextures, AFileIsLoadedOnceAndSharedByLaterEntries) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(loader.loadTextureEntry(entry("logo", "good.png")));
    EXPECT_TRUE(loader.loadTextureEntry(entry("logo_again", "good.png")));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Load : resources/graphics/good.png\n");
    ASSERT_NE(pool.getTexture("logo"), nullptr);
    EXPECT_EQ(pool.getTexture("logo")->getFilename(), "good.png");
    EXPECT_EQ(pool.getTexture("logo_again"), nullptr);
    EXPECT_TRUE(loader.isValid());
}

TEST_F(LoaderTextures, BadPicturesFailWithTheFileNamed) {
    for (const char* file : {"truncated.png", "text.png", "missing.png"}) {
        ResourceLoader fresh;
        testing::internal::CaptureStdout();
        EXPECT_FALSE(fresh.loadTextureEntry(entry("key", file)));
        testing::internal::GetCapturedStdout();
        EXPECT_FALSE(fresh.isValid());
        EXPECT_EQ(fresh.getErrorMessage(),
                  "Failed to load texture!\nFile : 'resources/graphics/" + std::string(file) + "'");
    }
    EXPECT_EQ(pool.size(), 0);
}
