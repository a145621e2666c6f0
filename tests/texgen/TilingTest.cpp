#include "Noise.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using texgen::test::drawn;
using texgen::test::seamRatioX;
using texgen::test::seamRatioY;

namespace {

// The top-left three quarters of a picture: same texture, but its edges no longer meet.
texgen::Picture cropped(const texgen::Picture& p, int size) {
    texgen::Picture out(size, size, p.channels);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            std::copy_n(p.pixel(x, y), p.channels, out.pixel(x, y));
        }
    }
    return out;
}

} // namespace

TEST(Tiling, RepeatingPicturesShowNoSeamAcrossEitherEdge) {
    for (const char* file : {"OceanSurface.png", "Waves1Normals.png", "Waves2Normals.png",
                             "Waves3Normals.png", "Noise.png"}) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        EXPECT_LT(seamRatioX(p), 2.0);
        EXPECT_LT(seamRatioY(p), 2.0);
        EXPECT_GT(seamRatioX(p), 0.5);
        EXPECT_GT(seamRatioY(p), 0.5);
    }
}

TEST(Tiling, TheSeamMeasureCatchesAPictureThatDoesNotRepeat) {
    for (const char* file :
         {"OceanSurface.png", "Waves1Normals.png", "Waves2Normals.png", "Waves3Normals.png"}) {
        SCOPED_TRACE(file);
        const texgen::Picture part = cropped(drawn(file), 384);
        EXPECT_GT(seamRatioX(part), 4.0);
        EXPECT_GT(seamRatioY(part), 4.0);
    }
}

TEST(Tiling, WaveSurfaceRepeatsOverTheUnitSquareAndItsGridMatchesPointSamples) {
    texgen::WaveBand band;
    band.minCycles = 2.0f;
    band.maxCycles = 20.0f;
    band.sharpness = 1.0f;
    band.count = 24;
    const texgen::WaveSurface surface(band);
    ASSERT_EQ(surface.components().size(), 24u);
    const std::vector<texgen::WaveSurface::Sample> grid = surface.grid(32);
    for (int j = 0; j < 32; j += 5) {
        for (int i = 0; i < 32; i += 3) {
            const float x = (i + 0.5f) / 32.0f;
            const float y = (j + 0.5f) / 32.0f;
            const auto s = surface.at(x, y);
            const auto shifted = surface.at(x + 1.0f, y - 1.0f);
            const auto& g = grid[std::size_t(j) * 32 + i];
            EXPECT_NEAR(s.height, shifted.height, 1e-3f);
            EXPECT_NEAR(s.slopeX, shifted.slopeX, 2e-2f);
            EXPECT_NEAR(s.height, g.height, 1e-3f);
            EXPECT_NEAR(s.slopeX, g.slopeX, 1e-2f);
            EXPECT_NEAR(s.slopeY, g.slopeY, 1e-2f);
        }
    }
}

TEST(Tiling, PeriodicNoiseMeetsItselfAcrossTheTileEdge) {
    for (int period : {3, 4, 8}) {
        for (float t : {0.1f, 0.45f, 0.8f}) {
            EXPECT_NEAR(texgen::periodicFbm(0.0f, t, period, 3, 0.5f, 7),
                        texgen::periodicFbm(0.99999f, t, period, 3, 0.5f, 7), 1e-3f);
            EXPECT_NEAR(texgen::periodicNoise(t, 0.0f, period, 7),
                        texgen::periodicNoise(t, 0.99999f, period, 7), 1e-3f);
        }
    }
}
