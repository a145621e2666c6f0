#include "Camera.h"

#include <cmath>
#include <gtest/gtest.h>

using Mat4 = Matrix<float, 4, 4, 16>;

namespace {

const float PI = 3.1415927f;

void expectVectorNear(const Vector<float, 3>& v, float x, float y, float z) {
    EXPECT_NEAR(v.x(), x, 1e-5);
    EXPECT_NEAR(v.y(), y, 1e-5);
    EXPECT_NEAR(v.z(), z, 1e-5);
}

void expectMatrixNear(const float* actual, const Mat4& expected) {
    for (int k = 0; k < 16; ++k) {
        EXPECT_NEAR(actual[k], expected[k], 1e-5) << "element " << k;
    }
}

// Rotations built from the matrix type alone, to check the quaternion arithmetic against.
// setYRotation turns the other way than a positive heading quaternion, hence the minus.
Mat4 pitchRotation(float degrees) {
    Mat4 m = Mat4::identity();
    m.setXRotation(degrees / 180 * PI);
    return m;
}

Mat4 headingRotation(float degrees) {
    Mat4 m = Mat4::identity();
    m.setYRotation(-degrees / 180 * PI);
    return m;
}

} // namespace

TEST(Camera, StartsAtRestAtTheOrigin) {
    Camera camera;
    EXPECT_EQ(camera.getPitch(), 0);
    EXPECT_EQ(camera.getHeading(), 0);
    EXPECT_EQ(camera.getForwardVelocity(), 0);
    expectVectorNear(camera.getPosition(), 0, 0, 0);
    expectVectorNear(camera.getDirection(), 0, 0, 0);
    const Vector<float, 4> q = camera.getQuat();
    EXPECT_EQ(q[0], 1);
    EXPECT_EQ(q[1], 0);
    EXPECT_EQ(q[2], 0);
    EXPECT_EQ(q[3], 0);
}

TEST(Camera, LargeChangesAreClampedEachInItsOwnWay) {
    Camera camera;
    camera.changeHeading(-20);
    EXPECT_FLOAT_EQ(camera.getHeading(), 5);
    camera.changePitch(-20);
    EXPECT_FLOAT_EQ(camera.getPitch(), -5);
    camera.changeVelocity(-200);
    EXPECT_FLOAT_EQ(camera.getForwardVelocity(), 100);
}

TEST(Camera, ChangesBelowTheLimitAreAddedAsGiven) {
    Camera camera;
    camera.changePitch(4.9f);
    EXPECT_FLOAT_EQ(camera.getPitch(), 4.9f);
    camera.changePitch(5); // at the limit: the limit path, +5
    EXPECT_FLOAT_EQ(camera.getPitch(), 9.9f);
    camera.changePitch(20);
    EXPECT_FLOAT_EQ(camera.getPitch(), 14.9f);

    camera.changeHeading(-5); // heading clamps only beyond the limit
    EXPECT_FLOAT_EQ(camera.getHeading(), -5);
    camera.changeHeading(3);
    EXPECT_FLOAT_EQ(camera.getHeading(), -2);

    camera.changeVelocity(-99);
    EXPECT_FLOAT_EQ(camera.getForwardVelocity(), -99);
    camera.changeVelocity(-100); // at the limit: +100 whatever the sign
    EXPECT_FLOAT_EQ(camera.getForwardVelocity(), 1);
}

TEST(Camera, ResetClearsMotionButKeepsTheRotationState) {
    Camera camera;
    camera.setHeading(90);
    camera.setPitch(720); // stored as given, no wrapping
    EXPECT_EQ(camera.getPitch(), 720);
    camera.changeVelocity(10);
    camera.updateOrientation();
    const Vector<float, 4> quat = camera.getQuat();
    const Vector<float, 3> direction = camera.getDirection();

    camera.reset();
    EXPECT_EQ(camera.getPitch(), 0);
    EXPECT_EQ(camera.getHeading(), 0);
    EXPECT_EQ(camera.getForwardVelocity(), 0);
    expectVectorNear(camera.getPosition(), 0, 0, 0);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(camera.getQuat()[i], quat[i]);
    }
    expectVectorNear(camera.getDirection(), direction.x(), direction.y(), direction.z());
}

TEST(Camera, NewCameraLooksDownNegativeZWithoutMoving) {
    Camera camera;
    const Mat4 loaded = camera.updateOrientation();
    expectMatrixNear(loaded.data(), Mat4::identity());
    expectMatrixNear(camera.getRawMatrix(), Mat4::identity());
    expectVectorNear(camera.getDirection(), 0, 0, -1);
    expectVectorNear(camera.getPosition(), 0, 0, 0);
}

TEST(Camera, VelocityMovesAlongTheDirectionOnEveryUpdate) {
    Camera camera;
    camera.setPosition(Vector<float, 3>(1, 2, 3));
    camera.setHeading(90);
    camera.changeVelocity(10);
    camera.updateOrientation();
    expectVectorNear(camera.getDirection(), 1, 0, 0);
    expectVectorNear(camera.getPosition(), 11, 2, 3);
    camera.updateOrientation();
    expectVectorNear(camera.getPosition(), 21, 2, 3);
}

TEST(Camera, PitchSetsTheVerticalDirection) {
    Camera camera;
    camera.setPitch(90);
    camera.updateOrientation();
    expectVectorNear(camera.getDirection(), 0, -1, 0);
}

TEST(Camera, LoadsPitchFirstButKeepsHeadingFirst) {
    Camera camera;
    camera.setPitch(30);
    camera.setHeading(40);
    const Mat4 loaded = camera.updateOrientation();
    expectMatrixNear(loaded.data(), pitchRotation(30).mult(headingRotation(40)));
    expectMatrixNear(camera.getRawMatrix(), headingRotation(40).mult(pitchRotation(30)));

    // Heading first: (ch cp, ch sp, sh cp, -sh sp) of the half angles.
    const float p = 15 * PI / 180;
    const float h = 20 * PI / 180;
    const Vector<float, 4> q = camera.getQuat();
    EXPECT_NEAR(q[0], std::cos(h) * std::cos(p), 1e-6);
    EXPECT_NEAR(q[1], std::cos(h) * std::sin(p), 1e-6);
    EXPECT_NEAR(q[2], std::sin(h) * std::cos(p), 1e-6);
    EXPECT_NEAR(q[3], -std::sin(h) * std::sin(p), 1e-6);

    const float* raw = camera.getRawMatrix();
    expectVectorNear(camera.getDirection(), raw[8], -std::sin(2 * p), -raw[10]);
}

TEST(Camera, PrintInfoShowsPositionAndAngles) {
    Camera camera;
    camera.setPosition(Vector<float, 3>(1.5f, -2, 3));
    camera.setPitch(10);
    camera.setHeading(-45);
    testing::internal::CaptureStdout();
    camera.printInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Camera : [1.5,-2,3], pitch = 10, heading = -45\n");
}
