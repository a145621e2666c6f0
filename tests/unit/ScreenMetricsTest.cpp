#include "ScreenMetrics.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(ScreenMetrics, StartsWithAnIdentityProjectionAndTheSixteenByNineTarget) {
    const ScreenMetrics metrics;
    const ScreenMetrics::Matrix4& m = metrics.getProjection();
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(m[i], i % 5 == 0 ? 1.0f : 0.0f) << "element " << i;
    }
    EXPECT_EQ(metrics.getMode(), 2);
    EXPECT_FLOAT_EQ(metrics.getAspectW(), 1.0f);
    EXPECT_FLOAT_EQ(metrics.getAspectH(), 0.5625f);
}

TEST(ScreenMetrics, ThePerspectiveProjectionFollowsFovAspectAndClipPlanes) {
    ScreenMetrics metrics;
    metrics.resize(1024, 768); // viewport 1024 x 576: aspect 16:9 whatever the window
    metrics.setNear(2.0f);
    metrics.setFar(100.0f);
    metrics.updateMatrix();
    const float f = 1.0f / std::tan(25.0f * 3.14159265f / 180.0f);
    const ScreenMetrics::Matrix4& m = metrics.getProjection();
    const float expected[16] = {
        f * 9.0f / 16.0f, 0, 0, 0, 0, f, 0, 0, 0, 0, -102.0f / 98.0f, -1, 0, 0, -400.0f / 98.0f, 0};
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(m[i], expected[i], 1e-5) << "element " << i;
    }
}
