#include "ProgressBar.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "KVTDemosys.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

using gltest::pixelAt;
using gltest::Rgba;

namespace {

const Rgba BLACK{0, 0, 0, 255};
const Rgba WHITE{255, 255, 255, 255};

// Draws into an offscreen framebuffer with no window registered, so the bars skip the swap
// and what they drew can be read back.
class BarDrawing : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        window = std::exchange(KVTDemosys::screen, nullptr);
    }
    void TearDown() override {
        KVTDemosys::screen = window;
        FBO::bind(nullptr);
        gltest::resetState(64, 64);
    }

    void bindTarget(int width, int height) {
        target =
            std::make_unique<FBO>(width, height, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
        FBO::bind(target.get());
    }

    SDL_Window* window = nullptr;
    std::unique_ptr<FBO> target;
};

using Runs = std::vector<std::pair<int, int>>;

// The [first, last) column ranges of white pixels along one row.
Runs whiteRuns(int row, int width) {
    const std::vector<unsigned char> rgba = gltest::readRgba(0, row, width, 1);
    Runs runs;
    for (int x = 0; x < width; ++x) {
        const bool white = rgba[x * 4] == 255 && rgba[x * 4 + 1] == 255 && rgba[x * 4 + 2] == 255;
        if (!white) {
            continue;
        }
        if (runs.empty() || runs.back().second != x) {
            runs.emplace_back(x, x + 1);
        } else {
            runs.back().second = x + 1;
        }
    }
    return runs;
}

} // namespace

// An 800 x 400 target and a bar 1.6 wide, 0.5 high, centred: the frame spans columns 80 to
// 720, the black inside starts 4 pixels in (0.01), the fill 6 pixels in (0.015).
TEST_F(BarDrawing, TheFillGrowsInsideTheFrameWithTheProgress) {
    bindTarget(800, 400);
    ProgressBar bar(0.5f, 1.6f, 0.0f, 2);
    bar.tick(); // the first tick shows nothing done
    EXPECT_EQ(whiteRuns(200, 800), (Runs{{80, 84}, {716, 720}}));
    EXPECT_EQ(pixelAt(400, 200), BLACK);
    EXPECT_EQ(pixelAt(400, 151), WHITE); // frame, 0.012 high at 200 pixels per unit
    EXPECT_EQ(pixelAt(400, 152), BLACK);

    bar.tick();
    EXPECT_EQ(whiteRuns(200, 800), (Runs{{80, 84}, {86, 400}, {716, 720}}));
    EXPECT_EQ(pixelAt(200, 153), BLACK); // the fill is inset 0.019 vertically
    EXPECT_EQ(pixelAt(200, 154), WHITE);
}

TEST_F(BarDrawing, TheDefaultBarSitsAtTheBottomAndTheMatricesAreKept) {
    bindTarget(800, 400);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0.5f, 0.5f, 0);
    glMatrixMode(GL_PROJECTION);
    glScalef(0.25f, 0.25f, 1);
    GLfloat before[2][16];
    glGetFloatv(GL_MODELVIEW_MATRIX, before[0]);
    glGetFloatv(GL_PROJECTION_MATRIX, before[1]);

    ProgressBar bar;
    bar.draw();
    // 1.8 wide and 0.125 high around y = -0.9: columns 40 to 760, rows 7.5 to 32.5.
    EXPECT_EQ(whiteRuns(20, 800), (Runs{{40, 44}, {756, 760}}));
    EXPECT_EQ(whiteRuns(100, 800), Runs{});
    GLfloat after[2][16];
    glGetFloatv(GL_MODELVIEW_MATRIX, after[0]);
    glGetFloatv(GL_PROJECTION_MATRIX, after[1]);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(after[0][i], before[0][i]);
        EXPECT_EQ(after[1][i], before[1][i]);
    }
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
}
