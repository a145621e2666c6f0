#include "Catalogue.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <stb_image.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

using texgen::test::drawn;

namespace {

struct Expected {
    const char* file;
    int width, height, channels;
    bool texture; // loaded by OpenGL, so both sides must be powers of two
};

// What the production and its loader expect of every picture.
const Expected kExpected[] = {
    {"OceanSurface.png", 512, 512, 3, true},
    {"Waves1Normals.png", 512, 512, 3, true},
    {"Waves2Normals.png", 512, 512, 3, true},
    {"Waves3Normals.png", 512, 512, 3, true},
    {"FrameOverlay.png", 1024, 1024, 4, true},
    {"Noise.png", 256, 256, 3, true},
    {"Kernel.png", 256, 1, 1, true},
    {"Threshold.png", 256, 1, 3, true},
    {"light.png", 128, 128, 4, true},
    {"Particle.png", 128, 128, 4, true},
    {"Puff.png", 128, 128, 4, true},
    {"Velocities.png", 128, 128, 1, true},
    {"Velocities2.png", 128, 128, 1, true},
    {"Velocities3.png", 128, 128, 1, true},
    {"Velocities4.png", 128, 128, 1, true},
    {"Velocities5.png", 128, 128, 1, true},
    {"Velocities6.png", 128, 128, 1, true},
    {"Vask.png", 1024, 128, 4, true},
    {"Lumo.png", 1024, 128, 4, true},
    {"Orin.png", 1024, 128, 4, true},
    {"Quillet.png", 1024, 128, 4, true},
    {"KorvathLogo.png", 1024, 128, 4, true},
    {"BrinovaLogo.png", 1024, 128, 4, true},
    {"VaskSmall.png", 256, 256, 3, true},
    {"LumoSmall.png", 256, 256, 3, true},
    {"OrinSmall.png", 256, 256, 3, true},
    {"QuilletSmall.png", 256, 256, 3, true},
    {"KorvathLogoSmall.png", 256, 256, 3, true},
    {"BrinovaLogoSmall.png", 256, 256, 3, true},
    {"Loader1.png", 1024, 512, 3, true},
    {"Loader2.png", 1024, 512, 4, true},
    {"LauncherBanner.png", 390, 49, 3, false},
};

bool isPowerOfTwo(int n) {
    return n > 0 && (n & (n - 1)) == 0;
}

std::set<std::string> expectedNames() {
    std::set<std::string> names;
    for (const Expected& e : kExpected) {
        names.insert(e.file);
    }
    return names;
}

std::set<std::string> splitList(const std::string& list) {
    std::set<std::string> names;
    std::stringstream stream(list);
    std::string name;
    while (std::getline(stream, name, ',')) {
        names.insert(name);
    }
    return names;
}

} // namespace

TEST(Catalogue, NamesExactlyTheExpectedPicturesAndTheBuildOutputs) {
    std::set<std::string> catalogued;
    for (const texgen::PictureEntry& entry : texgen::catalogue()) {
        EXPECT_TRUE(catalogued.insert(entry.file).second) << "listed twice: " << entry.file;
    }
    EXPECT_EQ(catalogued, expectedNames());
    // The build declares these as the outputs of the drawing step; a missing one would never
    // be redrawn, an extra one would make the build run the step every time.
    EXPECT_EQ(splitList(TEXGEN_BUILD_OUTPUTS), expectedNames());
}

TEST(Catalogue, EveryPictureHasItsSizeChannelsAndPowerOfTwoSides) {
    for (const Expected& e : kExpected) {
        SCOPED_TRACE(e.file);
        const texgen::Picture& p = drawn(e.file);
        EXPECT_EQ(p.width, e.width);
        EXPECT_EQ(p.height, e.height);
        EXPECT_EQ(p.channels, e.channels);
        EXPECT_EQ(p.bytes.size(), std::size_t(p.width) * p.height * p.channels);
        if (e.texture) {
            EXPECT_TRUE(isPowerOfTwo(p.width) && isPowerOfTwo(p.height));
        }
    }
}

TEST(Catalogue, EveryPictureShowsSomething) {
    for (const Expected& e : kExpected) {
        SCOPED_TRACE(e.file);
        const texgen::Picture& p = drawn(e.file);
        const auto [low, high] = std::minmax_element(p.bytes.begin(), p.bytes.end());
        EXPECT_GE(*high - *low, 100) << "nearly uniform";
    }
}

class ToolRun : public ::testing::Test {
protected:
    void TearDown() override {
        for (const std::string& folder : folders_) {
            std::filesystem::remove_all(folder);
        }
    }
    std::string folder() { return folders_.emplace_back(texgen::test::freshFolder()); }

private:
    std::vector<std::string> folders_;
};

TEST_F(ToolRun, WritesEveryPictureAsADecodablePngByteIdenticallyOnEveryRun) {
    const std::string first = folder();
    const std::string second = folder();
    const std::string sheet = first + "/sheet.png";
    ASSERT_EQ(texgen::test::runTexgen("--contact-sheet '" + sheet + "' '" + first + "'").status, 0);
    ASSERT_EQ(texgen::test::runTexgen("'" + second + "'").status, 0);
    for (const Expected& e : kExpected) {
        SCOPED_TRACE(e.file);
        const std::string bytes = texgen::test::readFile(first + "/" + e.file);
        EXPECT_EQ(bytes, texgen::test::readFile(second + "/" + e.file));
        int width = 0, height = 0, channels = 0;
        ASSERT_TRUE(stbi_info_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()),
                                          int(bytes.size()), &width, &height, &channels));
        EXPECT_EQ(width, e.width);
        EXPECT_EQ(height, e.height);
        EXPECT_EQ(channels, e.channels);
    }
    int width = 0, height = 0, channels = 0;
    EXPECT_TRUE(stbi_info(sheet.c_str(), &width, &height, &channels));
    EXPECT_GT(width * height, 1000 * 1000);
}

TEST_F(ToolRun, WrittenFilesHoldTheDrawnPixels) {
    const std::string out = folder();
    ASSERT_EQ(texgen::test::runTexgen("'" + out + "'").status, 0);
    for (const char* file : {"Noise.png", "Loader2.png", "Velocities3.png"}) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        int width = 0, height = 0, channels = 0;
        stbi_uc* pixels =
            stbi_load((out + "/" + file).c_str(), &width, &height, &channels, p.channels);
        ASSERT_NE(pixels, nullptr);
        EXPECT_TRUE(std::equal(p.bytes.begin(), p.bytes.end(), pixels));
        stbi_image_free(pixels);
    }
}
