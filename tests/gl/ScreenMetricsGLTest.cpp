#include "GLTestSupport.h"
#include "ScreenMetrics.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <array>

namespace {

std::array<GLint, 4> viewport() {
    std::array<GLint, 4> v{};
    glGetIntegerv(GL_VIEWPORT, v.data());
    return v;
}

std::array<GLfloat, 16> matrix(GLenum which) {
    std::array<GLfloat, 16> m{};
    glGetFloatv(which, m.data());
    return m;
}

GLint matrixMode() {
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    return mode;
}

} // namespace

// setView is what every frame starts with: the letterboxed viewport and a projection equal
// to GLU's own perspective for the same field of view, aspect and clip planes.
TEST(ScreenMetricsGL, SetViewLoadsTheViewportAndTheProjection) {
    gltest::resetState(64, 64);
    ScreenMetrics metrics;
    metrics.resize(1024, 768);
    metrics.setNear(0.5f);
    metrics.setFar(300.0f);

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(50.0, 16.0 / 9.0, 0.5, 300.0);
    const std::array<GLfloat, 16> glu = matrix(GL_PROJECTION_MATRIX);
    glLoadIdentity();

    metrics.setView();
    EXPECT_EQ(viewport(), (std::array<GLint, 4>{0, 96, 1024, 576}));
    EXPECT_EQ(matrixMode(), GL_MODELVIEW);
    const std::array<GLfloat, 16> loaded = matrix(GL_PROJECTION_MATRIX);
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(loaded[i], glu[i], 1e-5) << "element " << i;
        EXPECT_EQ(loaded[i], metrics.getProjection()[i]) << "element " << i;
    }
    EXPECT_FLOAT_EQ(metrics.getScaleX(), 1024.0f);
    EXPECT_FLOAT_EQ(metrics.getScaleY(), 768.0f / 0.5625f);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    gltest::resetState(64, 64);
}
