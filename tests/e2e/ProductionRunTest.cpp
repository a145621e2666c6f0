// Plays the production itself offline and checks one frame of each section: a designed
// picture where the sync text puts one, black at the fades.
#include "RunSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

struct Look {
    double r = 0, g = 0, b = 0;
    int brightest = 0;
    double mean() const { return (r + g + b) / 3.0; }
};

Look lookOf(const e2e::Picture& picture) {
    Look look;
    const int pixels = picture.width * picture.height;
    for (int i = 0; i < pixels; ++i) {
        look.r += picture.rgb[i * 3];
        look.g += picture.rgb[i * 3 + 1];
        look.b += picture.rgb[i * 3 + 2];
        look.brightest = std::max<int>(look.brightest, picture.rgb[i * 3 + 2]);
    }
    look.r /= pixels;
    look.g /= pixels;
    look.b /= pixels;
    return look;
}

class ProductionRun : public testing::Test {
protected:
    void SetUp() override {
        folder = fs::path(testing::TempDir()) / "brinova_production_e2e";
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path folder;
};

TEST_F(ProductionRun, EverySectionShowsItsPictureAndTheEndsAreBlack) {
    const char* times[] = {"00:00:400", "00:10:000", "00:34:000", "00:56:000",
                           "01:14:000", "01:45:000", "02:15:000", "02:30:500"};
    std::string shots;
    for (const char* time : times) {
        shots += std::string(" --shot ") + time + "=" + (folder / time).string() + ".png";
    }
    e2e::Outcome run = e2e::runCommand(std::string(BRINOVA_DEMO) +
                                       " --no-launcher --size 320x180 --quality 0" + shots);
    ASSERT_EQ(run.status, 0) << run.output;
    auto look = [&](const char* time) {
        e2e::Picture picture = e2e::load(folder / (std::string(time) + ".png"));
        EXPECT_EQ(picture.width, 320) << time;
        return lookOf(picture);
    };

    EXPECT_LT(look("00:00:400").mean(), 12) << "fading in from black";
    for (const char* underwater : {"00:10:000", "00:34:000", "02:15:000"}) {
        const Look scene = look(underwater);
        EXPECT_GT(scene.mean(), 40) << underwater;
        EXPECT_GT(scene.g, scene.r + 20) << underwater << ": blue-green water";
        EXPECT_GT(scene.b, scene.r + 20) << underwater;
    }
    const Look jellyfish = look("00:56:000");
    EXPECT_LT(jellyfish.mean(), 30) << "the break is dark";
    EXPECT_GT(jellyfish.brightest, 120) << "but the creatures glow";
    const Look dye = look("01:14:000");
    EXPECT_GT(dye.g, dye.r + 5) << "Lumo's green name as dye";
    EXPECT_GT(dye.brightest, 150);
    const Look climax = look("01:45:000");
    EXPECT_GT(climax.brightest, 200) << "the logo dye and the siphonophore";
    EXPECT_GT(climax.b, climax.r);
    EXPECT_LT(look("02:30:500").mean(), 1) << "black after the fade";
}

TEST_F(ProductionRun, QuitsByItselfAfterTheEnd) {
    e2e::Outcome run = e2e::runCommand(std::string(BRINOVA_DEMO) +
                                       " --no-launcher --size 160x90 --quality 0 --benchmark"
                                       " --start 02:30:000");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("Duration : (00001508"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("Benchmark: section outro from"), std::string::npos);
}

} // namespace
