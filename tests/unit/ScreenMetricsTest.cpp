#include "ScreenMetrics.h"

#include <gtest/gtest.h>

namespace {

void expectViewport(const ScreenMetrics& m, int x, int y, int width, int height) {
    EXPECT_EQ(m.getViewportX(), x);
    EXPECT_EQ(m.getViewportY(), y);
    EXPECT_EQ(m.getViewportWidth(), width);
    EXPECT_EQ(m.getViewportHeight(), height);
}

} // namespace

TEST(ScreenMetrics, TheViewportIsLetterboxedToSixteenByNine) {
    ScreenMetrics metrics;
    metrics.setResolution(1024, 768);
    metrics.initView();
    expectViewport(metrics, 0, 96, 1024, 576);
    EXPECT_FLOAT_EQ(metrics.getFov(), 50);
    metrics.resize(1920, 1080);
    expectViewport(metrics, 0, 0, 1920, 1080);
    EXPECT_NEAR(metrics.getAspect(), 16.0f / 9.0f, 1e-6);
    metrics.resize(2560, 1080); // wider than 16:9: cut at top and bottom
    expectViewport(metrics, 0, -180, 2560, 1440);
}
