#include "FluidPreview.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using texgen::fromSignedByte;
using texgen::test::drawn;

namespace {

float velocity(const texgen::Picture& p, int x, int y) {
    return fromSignedByte(p.pixel(x, y)[0]);
}

struct Rates {
    double divergence, curl;
};

// Net outflow and circulation of a u/v pair (y pointing up the picture) over 8 x 8 boxes,
// as RMS over the boxes. Summing over a box turns the pixel differences into flux through its
// sides, so the 8-bit steps of smooth fields average out instead of swamping the result.
Rates boxRates(const texgen::Picture& u, const texgen::Picture& v, float vSign) {
    const int box = 8;
    double divergence = 0.0, curl = 0.0;
    for (int by = 1; by + box < u.height; by += box) {
        for (int bx = 1; bx + box < u.width; bx += box) {
            double outflow = 0.0, circulation = 0.0;
            for (int y = by; y < by + box; ++y) {
                for (int x = bx; x < bx + box; ++x) {
                    const double dudx = velocity(u, x + 1, y) - velocity(u, x - 1, y);
                    const double dvdy = vSign * (velocity(v, x, y - 1) - velocity(v, x, y + 1));
                    const double dvdx = vSign * (velocity(v, x + 1, y) - velocity(v, x - 1, y));
                    const double dudy = velocity(u, x, y - 1) - velocity(u, x, y + 1);
                    outflow += dudx + dvdy;
                    circulation += dvdx - dudy;
                }
            }
            divergence += outflow * outflow;
            curl += circulation * circulation;
        }
    }
    return {std::sqrt(divergence), std::sqrt(curl)};
}

const std::pair<const char*, const char*> kPairs[] = {{"Velocities.png", "Velocities2.png"},
                                                      {"Velocities3.png", "Velocities4.png"},
                                                      {"Velocities5.png", "Velocities6.png"}};

} // namespace

TEST(Flow, EachPairIsFreeOfDivergenceWithVPointingUp) {
    for (const auto& [uFile, vFile] : kPairs) {
        SCOPED_TRACE(uFile);
        const texgen::Picture& u = drawn(uFile);
        const texgen::Picture& v = drawn(vFile);
        const Rates rates = boxRates(u, v, 1.0f);
        EXPECT_LT(rates.divergence, 0.02 * rates.curl);
        // Taking v as pointing down the picture instead breaks it.
        const Rates flipped = boxRates(u, v, -1.0f);
        EXPECT_GT(flipped.divergence, 0.3 * flipped.curl);
    }
}

TEST(Flow, UsesTheWholeSignedRangeAndIsStillAtTheWalls) {
    for (const auto& pair : kPairs) {
        for (const char* file : {pair.first, pair.second}) {
            SCOPED_TRACE(file);
            const texgen::Picture& p = drawn(file);
            float fastest = 0.0f;
            for (int y = 0; y < p.height; ++y) {
                for (int x = 0; x < p.width; ++x) {
                    fastest = std::max(fastest, std::fabs(velocity(p, x, y)));
                    const bool atWall = x == 0 || y == 0 || x == p.width - 1 || y == p.height - 1;
                    if (atWall) {
                        EXPECT_LE(std::abs(p.pixel(x, y)[0] - 128), 2) << x << "," << y;
                    }
                }
            }
            EXPECT_GT(fastest, 0.5f);
        }
    }
}

TEST(Flow, TheCentralSwirlTurnsAntiClockwiseOnScreen) {
    const texgen::Picture& u = drawn("Velocities.png");
    const texgen::Picture& v = drawn("Velocities2.png");
    const int c = u.width / 2;
    const int r = u.width / 10;
    EXPECT_GT(velocity(v, c + r, c), 0.1f); // right of the centre it rises
    EXPECT_LT(velocity(v, c - r, c), -0.1f);
    EXPECT_LT(velocity(u, c, c - r), -0.1f); // above the centre (a smaller row) it goes left
    EXPECT_GT(velocity(u, c, c + r), 0.1f);
}

TEST(Flow, StirringMovesTheDyeButKeepsItInsideTheTank) {
    const texgen::Picture& dye = drawn("VaskSmall.png");
    texgen::Picture calm(128, 128, 1);
    std::fill(calm.bytes.begin(), calm.bytes.end(), 128);
    EXPECT_EQ(texgen::stirredPreview(dye, calm, calm, 5).bytes, dye.bytes);

    const texgen::Picture stirred =
        texgen::stirredPreview(dye, drawn("Velocities3.png"), drawn("Velocities4.png"), 20);
    std::size_t changed = 0;
    for (std::size_t i = 0; i < dye.bytes.size(); ++i) {
        changed += std::abs(int(stirred.bytes[i]) - int(dye.bytes[i])) > 40;
    }
    EXPECT_GT(changed, dye.bytes.size() / 50);
    for (int x = 0; x < dye.width; ++x) {
        EXPECT_EQ(stirred.pixel(x, 0)[0], 0);
    }
}
