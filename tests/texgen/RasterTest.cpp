#include "Raster.h"
#include "Font.h"
#include "Noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

TEST(Raster, DistanceOutsideMatchesABruteForceSearch) {
    raster::Field shape(37, 23);
    for (int y = 0; y < shape.height(); ++y) {
        for (int x = 0; x < shape.width(); ++x) {
            shape.at(x, y) = texgen::unitFromBits(texgen::hashCell(x, y, 3)) > 0.93f ? 1.0f : 0.2f;
        }
    }
    const raster::Field distance = raster::distanceOutside(shape);
    for (int y = 0; y < shape.height(); ++y) {
        for (int x = 0; x < shape.width(); ++x) {
            float nearest = 1e9f;
            for (int sy = 0; sy < shape.height(); ++sy) {
                for (int sx = 0; sx < shape.width(); ++sx) {
                    if (shape.at(sx, sy) >= 0.5f) {
                        nearest = std::min(nearest, std::hypot(float(sx - x), float(sy - y)));
                    }
                }
            }
            ASSERT_NEAR(distance.at(x, y), nearest, 1e-4f) << x << "," << y;
        }
    }
}

TEST(Raster, WrappedBlurKeepsTheTotalAndSpreadsAcrossTheEdgeEvenly) {
    raster::Field field(32, 16);
    field.at(0, 0) = 1.0f;
    raster::gaussianBlur(field, 2.0f, raster::Edges::Wrap);
    double total = 0.0;
    for (int y = 0; y < field.height(); ++y) {
        for (int x = 0; x < field.width(); ++x) {
            total += field.at(x, y);
        }
    }
    EXPECT_NEAR(total, 1.0, 1e-5);
    EXPECT_NEAR(field.at(31, 0), field.at(1, 0), 1e-7f);
    EXPECT_NEAR(field.at(0, 15), field.at(0, 1), 1e-7f);
    EXPECT_GT(field.at(0, 0), field.at(3, 0));
}

TEST(Raster, SetTextIsCroppedToItsInkWithTheMargin) {
    const raster::Font font(std::string(TEXGEN_FONT_FOLDER) + "/DejaVuSans-Bold.ttf");
    raster::TextStyle style;
    style.capHeight = 40.0f;
    const raster::Field text = font.set("HI", style, 5);
    EXPECT_NEAR(text.height(), 40 + 2 * 5, 2);
    auto rowHasInk = [&](int y) {
        for (int x = 0; x < text.width(); ++x) {
            if (text.at(x, y) > 0.0f) {
                return true;
            }
        }
        return false;
    };
    EXPECT_FALSE(rowHasInk(4));
    EXPECT_TRUE(rowHasInk(5));
    EXPECT_TRUE(rowHasInk(text.height() - 6));
    EXPECT_FALSE(rowHasInk(text.height() - 5));

    style.tracking = 1.0f;
    EXPECT_NEAR(font.set("HI", style, 5).width() - text.width(), 40, 1);
}

TEST(Raster, AMissingFontIsReportedByName) {
    try {
        raster::Font font("/nowhere/Missing.ttf");
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("/nowhere/Missing.ttf"), std::string::npos);
    }
}
