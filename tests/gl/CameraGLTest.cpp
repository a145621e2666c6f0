#include "Camera.h"
#include "GLTestSupport.h"
#include "Geometry.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

namespace {

Matrix<float, 4, 4, 16> currentMatrix(GLenum which) {
    Matrix<float, 4, 4, 16> m;
    glGetFloatv(which, m.data());
    return m;
}

} // namespace

TEST(CameraGL, ANewCameraLoadsIdentityAndLooksDownMinusZ) {
    gltest::resetState(8, 8);
    glMatrixMode(GL_PROJECTION);
    Camera camera;
    camera.setGLMatrixes();
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    const Matrix<float, 4, 4, 16> m = currentMatrix(GL_MODELVIEW_MATRIX);
    const Matrix<float, 4, 4, 16> identity = Matrix<float, 4, 4, 16>::identity();
    for (int k = 0; k < 16; ++k) {
        EXPECT_FLOAT_EQ(m[k], identity[k]) << k;
    }
    EXPECT_FLOAT_EQ(camera.getDirection().z(), -1);
}

TEST(CameraGL, TheRotationIsMultipliedInThenThePositionTranslatedAway) {
    gltest::resetState(8, 8);
    glTranslatef(0, 0, -5); // setGLMatrixes multiplies into what is there
    Camera camera;
    camera.setPitch(30);
    camera.setHeading(45);
    camera.setPosition(Vector<float, 3>(1, 2, 3));
    Camera expected = camera;
    const Matrix<float, 4, 4, 16> r = expected.updateOrientation();
    camera.setGLMatrixes();
    const Matrix<float, 4, 4, 16> m = currentMatrix(GL_MODELVIEW_MATRIX);
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row) {
            EXPECT_NEAR(m[column * 4 + row], r[column * 4 + row], 1e-6);
        }
    }
    // Translation column: the rotated -position, then the earlier -5 along z.
    const float p[3] = {-1, -2, -3};
    for (int row = 0; row < 3; ++row) {
        const float rotated = r[row] * p[0] + r[4 + row] * p[1] + r[8 + row] * p[2];
        EXPECT_NEAR(m[12 + row], rotated + (row == 2 ? -5.0f : 0.0f), 1e-5) << row;
    }
}

TEST(Geometry, TheFullScreenQuadCoversTheViewportAndLeavesTheStacksAlone) {
    gltest::resetState(8, 8);
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, 100, 0, 100, -1, 1); // the quad would be a speck under this
    glMatrixMode(GL_MODELVIEW);
    glScalef(0.1f, 0.1f, 1);
    const Matrix<float, 4, 4, 16> projection = currentMatrix(GL_PROJECTION_MATRIX);
    Geometry::drawUnitQuadFullscreen();
    const std::vector<unsigned char> pixels = gltest::readRgba(0, 0, 8, 8);
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 255), 8 * 8 * 4);
    EXPECT_FLOAT_EQ(currentMatrix(GL_PROJECTION_MATRIX)[0], projection[0]);
    EXPECT_FLOAT_EQ(currentMatrix(GL_MODELVIEW_MATRIX)[0], 0.1f);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
}
