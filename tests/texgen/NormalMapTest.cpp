#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using texgen::fromSignedByte;
using texgen::test::drawn;

namespace {

struct Normal {
    float x, y, z;
};

Normal normalAt(const texgen::Picture& p, int x, int y) {
    const int wx = (x + p.width) % p.width;
    const int wy = (y + p.height) % p.height;
    const std::uint8_t* t = p.pixel(wx, wy);
    return {fromSignedByte(t[0]), fromSignedByte(t[1]), fromSignedByte(t[2])};
}

// How far the slopes the map encodes are from being the gradient of one height field: the
// RMS curl of the slope field over its RMS divergence. Green counts up the picture (towards
// row 0), as the texture's t axis does once loaded bottom row first.
double curlOverDivergence(const texgen::Picture& p, float greenSign) {
    auto slopeX = [&](int x, int y) {
        const Normal n = normalAt(p, x, y);
        return -n.x / n.z;
    };
    auto slopeT = [&](int x, int y) {
        const Normal n = normalAt(p, x, y);
        return -greenSign * n.y / n.z;
    };
    double curl = 0.0;
    double divergence = 0.0;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            const double dTdX = 0.5 * (slopeT(x + 1, y) - slopeT(x - 1, y));
            const double dXdT = 0.5 * (slopeX(x, y - 1) - slopeX(x, y + 1));
            const double dXdX = 0.5 * (slopeX(x + 1, y) - slopeX(x - 1, y));
            const double dTdT = 0.5 * (slopeT(x, y - 1) - slopeT(x, y + 1));
            curl += (dTdX - dXdT) * (dTdX - dXdT);
            divergence += (dXdX + dTdT) * (dXdX + dTdT);
        }
    }
    return std::sqrt(curl / divergence);
}

const char* const kMaps[] = {"Waves1Normals.png", "Waves2Normals.png", "Waves3Normals.png"};

} // namespace

TEST(NormalMaps, AreUnitLengthPointUpAndCentredOn128) {
    for (const char* file : kMaps) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        double sumX = 0.0, sumY = 0.0, sumSquaresX = 0.0;
        float minZ = 1.0f;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                const Normal n = normalAt(p, x, y);
                const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
                ASSERT_NEAR(length, 1.0f, 0.012f) << "at " << x << "," << y;
                minZ = std::min(minZ, n.z);
                sumX += n.x;
                sumY += n.y;
                sumSquaresX += n.x * n.x;
            }
        }
        const double count = double(p.width) * p.height;
        EXPECT_GT(minZ, 0.3f);
        EXPECT_NEAR(sumX / count, 0.0, 0.03);
        EXPECT_NEAR(sumY / count, 0.0, 0.03);
        EXPECT_GT(std::sqrt(sumSquaresX / count), 0.1) << "too flat to show waves";
    }
}

TEST(NormalMaps, SlopesAreTheGradientOfAHeightFieldWithGreenPointingUpThePicture) {
    for (const char* file : kMaps) {
        SCOPED_TRACE(file);
        const texgen::Picture& p = drawn(file);
        EXPECT_LT(curlOverDivergence(p, 1.0f), 0.2);
        // Read with green pointing down the picture, the same slopes stop being a gradient.
        EXPECT_GT(curlOverDivergence(p, -1.0f), 0.6);
    }
}

TEST(NormalMaps, ThreeScalesGrowFinerFromSwellToRipples) {
    double previous = 0.0;
    for (const char* file : kMaps) {
        const texgen::Picture& p = drawn(file);
        double change = 0.0;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                change += std::abs(normalAt(p, x + 1, y).x - normalAt(p, x, y).x);
            }
        }
        EXPECT_GT(change, previous * 1.3) << file;
        previous = change;
    }
}
