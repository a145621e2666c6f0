#include "BrinovaProgressBar.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "KVTDemosys.h"
#include "PictureFiles.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fs = std::filesystem;
using gltest::pixelAt;
using gltest::Rgba;

namespace {

constexpr int WIDTH = 640;
constexpr int HEIGHT = 360;
constexpr int LOWER_ROW = HEIGHT / 4;
constexpr int UPPER_ROW = HEIGHT * 3 / 4;

const Rgba RED{255, 0, 0, 255};
const Rgba GREEN{0, 255, 0, 255};
const Rgba BLUE{0, 0, 255, 255};

// Pixels of one RGBA colour, as many as the picture holds.
std::vector<unsigned char> filled(int width, int height, std::vector<unsigned char> rgba) {
    std::vector<unsigned char> pixels;
    for (int i = 0; i < width * height; ++i) {
        pixels.insert(pixels.end(), rgba.begin(), rgba.end());
    }
    return pixels;
}

// A picture whose top half is one RGBA colour and bottom half another.
std::vector<unsigned char> halves(std::vector<unsigned char> top,
                                  std::vector<unsigned char> bottom) {
    std::vector<unsigned char> png = filled(4, 2, top);
    const std::vector<unsigned char> lower = filled(4, 2, bottom);
    png.insert(png.end(), lower.begin(), lower.end());
    return testpictures::encodePng(4, 4, 4, png);
}

// The bar drawn into a WIDTH x HEIGHT framebuffer with no window registered (no swap).
class BrinovaBar : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        window = std::exchange(KVTDemosys::screen, nullptr);
        previous = fs::current_path();
        target =
            std::make_unique<FBO>(WIDTH, HEIGHT, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
        FBO::bind(target.get());
    }
    void TearDown() override {
        fs::current_path(previous);
        if (!folder.empty()) {
            fs::remove_all(folder);
        }
        KVTDemosys::screen = window;
        FBO::bind(nullptr);
        gltest::resetState(64, 64);
    }

    // Loads pictures written into a fresh folder: a background blue in the file's top half
    // and green in its bottom half, and an overlay that is opaque red in the file's top half
    // and transparent below.
    void loadTestPictures(BrinovaProgressBar& bar) {
        folder = testpictures::freshFolder();
        fs::create_directories(folder + "resources/graphics");
        testpictures::writeFile(folder + "resources/graphics/Loader1.png",
                                halves({0, 0, 255, 255}, {0, 255, 0, 255}));
        testpictures::writeFile(folder + "resources/graphics/Loader2.png",
                                halves({255, 0, 0, 255}, {255, 0, 0, 0}));
        fs::current_path(folder);
        bar.loadData();
    }

    // The first column, on a row of the overlay's opaque half, that is not overlay red.
    static int uncoveredUpTo(int row) {
        for (int x = 0; x < WIDTH; ++x) {
            if (!(pixelAt(x, row) == RED)) {
                return x;
            }
        }
        return WIDTH;
    }

    SDL_Window* window = nullptr;
    fs::path previous;
    std::string folder;
    std::unique_ptr<FBO> target;
};

// x in normalised device coordinates to a column of the target.
int column(float x) {
    return static_cast<int>((x + 1.0f) * 0.5f * WIDTH + 0.5f);
}

} // namespace

// The pictures are stored bottom row first: the file's last rows show at the top. The
// overlay's opaque half therefore covers the bottom of the screen, its transparent half lets
// the background through at the top.
TEST_F(BrinovaBar, BeforeTheFirstStepOnlyTheBackgroundShows) {
    BrinovaProgressBar bar;
    loadTestPictures(bar);
    bar.setTicks(14);
    bar.draw();
    EXPECT_EQ(pixelAt(5, HEIGHT - 5), GREEN);
    EXPECT_EQ(pixelAt(WIDTH - 5, HEIGHT - 5), GREEN);
    EXPECT_EQ(pixelAt(5, 5), BLUE);
    EXPECT_EQ(pixelAt(WIDTH - 5, 5), BLUE);
}

// 20 steps make two steps a stage (the integer part of 20 / 7); stage k uncovers up to
// x = 0.3332 k - 0.8, and the steps left over after the seventh stage stay there.
TEST_F(BrinovaBar, TheOverlayIsUncoveredInSevenStages) {
    BrinovaProgressBar bar;
    loadTestPictures(bar);
    bar.setTicks(20);
    const int expectedStage[20] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 6, 6, 6, 6, 6, 6};
    for (int done = 0; done < 20; ++done) {
        bar.tick();
        const int stage = expectedStage[done];
        const int edge = stage == 6 ? WIDTH : column(stage * 0.3332f - 0.8f);
        EXPECT_NEAR(uncoveredUpTo(LOWER_ROW), edge, 1) << "after " << done + 1 << " steps";
        EXPECT_EQ(pixelAt(edge / 2, UPPER_ROW), GREEN) << "the overlay's transparent half";
    }
}

// Fewer than seven steps in all: every step is a stage, and drawing still comes to an end.
TEST_F(BrinovaBar, AShortLoadAdvancesAStageEveryStep) {
    BrinovaProgressBar bar;
    loadTestPictures(bar);
    bar.setTicks(3);
    bar.tick();
    EXPECT_NEAR(uncoveredUpTo(LOWER_ROW), column(-0.8f), 1);
    bar.tick();
    bar.tick();
    EXPECT_NEAR(uncoveredUpTo(LOWER_ROW), column(2 * 0.3332f - 0.8f), 1);
}

TEST_F(BrinovaBar, MissingPicturesLeaveTheScreenBlack) {
    folder = testpictures::freshFolder();
    fs::current_path(folder);
    BrinovaProgressBar bar;
    bar.loadData();
    bar.setTicks(7);
    bar.tick();
    EXPECT_EQ(pixelAt(5, LOWER_ROW), (Rgba{0, 0, 0, 0}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// The production's own pictures half way, saved as BrinovaProgressBar.png for a look: the
// uncovered part differs from the bare background, the rest is untouched.
TEST_F(BrinovaBar, TheProductionsPicturesHalfWay) {
    fs::current_path(BRINOVA_BIN_DIR);
    BrinovaProgressBar bar;
    bar.loadData();
    fs::current_path(previous);
    bar.setTicks(14);
    bar.draw();
    const std::vector<unsigned char> bare = gltest::readRgba(0, 0, WIDTH, HEIGHT);
    for (int i = 0; i < 7; ++i) {
        bar.tick();
    }
    const std::vector<unsigned char> halfWay = gltest::readRgba(0, 0, WIDTH, HEIGHT);
    gltest::savePng("BrinovaProgressBar.png", WIDTH, HEIGHT, halfWay);

    const int edge = column(3 * 0.3332f - 0.8f);
    long changedLeft = 0;
    long changedRight = 0;
    long brightness = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const std::size_t at = (static_cast<std::size_t>(y) * WIDTH + x) * 4;
            const int difference = std::abs(halfWay[at] - bare[at]) +
                                   std::abs(halfWay[at + 1] - bare[at + 1]) +
                                   std::abs(halfWay[at + 2] - bare[at + 2]);
            const bool changed = difference > 0;
            changedLeft += x < edge - 1 && changed ? 1 : 0;
            changedRight += x > edge && changed ? 1 : 0;
            brightness += bare[at] + bare[at + 1] + bare[at + 2];
        }
    }
    EXPECT_GT(brightness / (WIDTH * HEIGHT * 3), 10) << "the background is not black";
    EXPECT_GT(changedLeft, (edge - 1) * HEIGHT / 4) << "the overlay shows left of the edge";
    EXPECT_EQ(changedRight, 0) << "nothing changes right of the edge";
}
