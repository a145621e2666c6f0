#include "Overlay.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using texgen::test::drawn;

namespace {

int alphaAt(const texgen::Picture& p, int x, int y) {
    return p.pixel(x, y)[3];
}

int brightestChannel(const texgen::Picture& p, int x, int y) {
    const std::uint8_t* t = p.pixel(x, y);
    return std::max({t[0], t[1], t[2]});
}

// Calls check(x, y) for every pixel within `depth` of the picture's border.
template <typename Check> void forBorder(const texgen::Picture& p, int depth, Check check) {
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            if (x < depth || y < depth || x >= p.width - depth || y >= p.height - depth) {
                check(x, y);
            }
        }
    }
}

const char* const kCards[] = {"Vask.png",    "Lumo.png",        "Orin.png",
                              "Quillet.png", "KorvathLogo.png", "BrinovaLogo.png"};
const char* const kDyes[] = {"VaskSmall.png",    "LumoSmall.png",        "OrinSmall.png",
                             "QuilletSmall.png", "KorvathLogoSmall.png", "BrinovaLogoSmall.png"};

} // namespace

TEST(Alpha, SpritesFadeToNothingBeforeTheirBorderAndGlowInTheMiddle) {
    for (const char* file : {"light.png", "Particle.png", "Puff.png"}) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        forBorder(p, 2, [&](int x, int y) { ASSERT_EQ(alphaAt(p, x, y), 0) << x << "," << y; });
        EXPECT_GT(alphaAt(p, p.width / 2, p.height / 2), 150);
    }
}

TEST(Alpha, OverlayIsClearInTheVisibleCentreAndFramedAtItsEdges) {
    const texgen::Picture& p = drawn("FrameOverlay.png");
    const texgen::VisibleBlock block = texgen::overlayVisibleBlock(p.width);
    ASSERT_EQ(block.width, 960);
    ASSERT_EQ(block.height, 540);
    // The alpha test drops only texels of exactly zero, so the centre must be exactly clear.
    for (int y = block.height / 5; y < block.height * 4 / 5; ++y) {
        for (int x = block.width / 5; x < block.width * 4 / 5; ++x) {
            ASSERT_EQ(alphaAt(p, x, y), 0) << x << "," << y;
        }
    }
    for (int x = 0; x < block.width; ++x) {
        EXPECT_GT(alphaAt(p, x, 0), 128);
        EXPECT_GT(alphaAt(p, x, block.height - 1), 128);
    }
    for (int y = 0; y < block.height; ++y) {
        EXPECT_GT(alphaAt(p, 0, y), 128);
        EXPECT_GT(alphaAt(p, block.width - 1, y), 128);
    }
}

TEST(Alpha, OverlayRepeatsItsEdgeBeyondTheVisibleBlock) {
    const texgen::Picture& p = drawn("FrameOverlay.png");
    const texgen::VisibleBlock block = texgen::overlayVisibleBlock(p.width);
    for (int y = 0; y < p.height; y += 7) {
        for (int x = 0; x < p.width; x += 5) {
            if (x < block.width && y < block.height) {
                continue;
            }
            const int ex = std::min(x, block.width - 1);
            const int ey = std::min(y, block.height - 1);
            ASSERT_TRUE(std::equal(p.pixel(x, y), p.pixel(x, y) + 4, p.pixel(ex, ey)))
                << x << "," << y;
        }
    }
}

TEST(Alpha, CreditCardsAreClearAtTheBorderAndPremultiplied) {
    for (const char* file : kCards) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        forBorder(p, 3, [&](int x, int y) { ASSERT_EQ(alphaAt(p, x, y), 0) << x << "," << y; });
        std::size_t solid = 0;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                ASSERT_LE(brightestChannel(p, x, y), alphaAt(p, x, y) + 1) << x << "," << y;
                solid += alphaAt(p, x, y) == 255;
            }
        }
        EXPECT_GT(solid, std::size_t(p.width * p.height / 50)) << "letters too thin or missing";
    }
}

TEST(Alpha, DyePicturesAreColourOnBlackWithRoomAtTheEdges) {
    for (const char* file : kDyes) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        forBorder(p, 4,
                  [&](int x, int y) { ASSERT_LE(brightestChannel(p, x, y), 2) << x << "," << y; });
        std::size_t dyed = 0;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                dyed += brightestChannel(p, x, y) > 64;
            }
        }
        const double share = double(dyed) / (p.width * p.height);
        EXPECT_GT(share, 0.08);
        EXPECT_LT(share, 0.6);
    }
}

TEST(Alpha, LoaderOverlayHoldsOnlyWhatLightsUpAndIsStoredUpsideDown) {
    const texgen::Picture& overlay = drawn("Loader2.png");
    std::size_t clear = 0;
    for (int y = 0; y < overlay.height; ++y) {
        for (int x = 0; x < overlay.width; ++x) {
            clear += alphaAt(overlay, x, y) == 0;
        }
    }
    EXPECT_GT(clear, std::size_t(overlay.width * overlay.height / 4));
    // The progress track runs 86 % of the way down the screen, from the end of the first
    // loading stage to the end of the sixth; stored upside down it is 14 % from the top.
    const int row = int(0.14f * overlay.height);
    int lit = 0;
    const int from = int(0.11f * overlay.width);
    const int to = int(0.92f * overlay.width);
    for (int x = from; x < to; ++x) {
        int best = 0;
        for (int y = row - 2; y <= row + 2; ++y) {
            best = std::max(best, alphaAt(overlay, x, y));
        }
        lit += best > 200;
    }
    EXPECT_EQ(lit, to - from);
}
