#include "Matrix.h"
#include "Vector.h"

#include <cmath>
#include <gtest/gtest.h>

using Vec3 = Vector<float, 3>;
using Mat4 = Matrix<float, 4, 4, 16>;

namespace {

void expectVector(const Vec3& v, float x, float y, float z) {
    EXPECT_FLOAT_EQ(v.x(), x);
    EXPECT_FLOAT_EQ(v.y(), y);
    EXPECT_FLOAT_EQ(v.z(), z);
}

Mat4 translation(float x, float y, float z) {
    Mat4 m = Mat4::identity();
    m[12] = x;
    m[13] = y;
    m[14] = z;
    return m;
}

Mat4 scaling(float s) {
    Mat4 m = Mat4::identity();
    m[0] = m[5] = m[10] = s;
    return m;
}

} // namespace

TEST(Vector, StoresComponentsContiguouslyWithNothingElse) {
    static_assert(sizeof(Vec3) == 3 * sizeof(float), "no padding or extra state");
    static_assert(sizeof(Vector<float, 4>) == 4 * sizeof(float), "no padding or extra state");
    Vec3 pair[2] = {Vec3(1, 2, 3), Vec3(4, 5, 6)};
    const float* flat = pair[0].data();
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(flat[i], i + 1);
    }
    expectVector(Vec3(), 0, 0, 0);
    Vector<float, 4> colour(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(colour.w(), colour[3]);
    colour.y() = 7;
    EXPECT_EQ(colour[1], 7);
}

TEST(Vector, ArithmeticIsComponentWise) {
    const Vec3 a(1, 2, 3);
    const Vec3 b(4, -5, 0.5f);
    expectVector(a + b, 5, -3, 3.5f);
    expectVector(a - b, -3, 7, 2.5f);
    expectVector(b * 2.0f, 8, -10, 1);
    EXPECT_FLOAT_EQ(a.dotProduct(b), 4 - 10 + 1.5f);
    expectVector(a, 1, 2, 3);
}

TEST(Vector, CrossProductFollowsTheRightHandRule) {
    expectVector(Vec3(1, 0, 0).crossProduct(Vec3(0, 1, 0)), 0, 0, 1);
    expectVector(Vec3(0, 1, 0).crossProduct(Vec3(1, 0, 0)), 0, 0, -1);
    expectVector(Vec3(1, 2, 3).crossProduct(Vec3(4, 5, 6)), -3, 6, -3);
}

TEST(Vector, NormalizeWorksInPlaceAndHasNoZeroGuard) {
    Vec3 v(3, 0, -4);
    v.normalize();
    expectVector(v, 0.6f, 0, -0.8f);

    Vec3 zero;
    zero.normalize();
    EXPECT_TRUE(std::isnan(zero.x()) && std::isnan(zero.y()) && std::isnan(zero.z()));
}

TEST(Vector, LinearInterpolationRunsFromThisToTheArgument) {
    const Vec3 a(0, 10, -2);
    const Vec3 b(4, 20, 2);
    expectVector(a.linearInterpolate(b, 0), 0, 10, -2);
    expectVector(a.linearInterpolate(b, 1), 4, 20, 2);
    expectVector(a.linearInterpolate(b, 0.25f), 1, 12.5f, -1);
}

TEST(Matrix, MultTakesTheArgumentsRowsAgainstThisMatrixsColumns) {
    // In OpenGL's column-major terms a.mult(b) is A * B: with a translation on the left the
    // scaled point is moved afterwards, so the translation stays unscaled, and the other way
    // round the translation is scaled.
    const Mat4 t = translation(1, 2, 3);
    const Mat4 s = scaling(2);
    const Mat4 ts = t.mult(s);
    const Mat4 st = s.mult(t);
    EXPECT_FLOAT_EQ(ts[12], 1);
    EXPECT_FLOAT_EQ(ts[14], 3);
    EXPECT_FLOAT_EQ(ts[0], 2);
    EXPECT_FLOAT_EQ(st[12], 2);
    EXPECT_FLOAT_EQ(st[14], 6);
    EXPECT_FLOAT_EQ(st[15], 1);
    EXPECT_FLOAT_EQ(t[0], 1); // the operands are left as they were
    EXPECT_FLOAT_EQ(s[12], 0);
}

TEST(Matrix, MultByIdentityKeepsEveryElementInPlace) {
    Mat4 m;
    for (int k = 0; k < 16; ++k) {
        m[k] = static_cast<float>(k * k - 7);
    }
    const Mat4 left = Mat4::identity().mult(m);
    const Mat4 right = m.mult(Mat4::identity());
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(left[k], m[k]) << k;
        EXPECT_EQ(right[k], m[k]) << k;
    }
}

TEST(Matrix, RotationsWriteOnlyTheirFourElements) {
    const float a = 0.3f;
    struct Case {
        void (Mat4::*rotate)(float);
        int cosFirst, sinAt, minusSinAt, cosSecond;
    };
    const Case cases[] = {{&Mat4::setXRotation, 5, 6, 9, 10},
                          {&Mat4::setYRotation, 0, 2, 8, 10},
                          {&Mat4::setZRotation, 0, 1, 4, 5}};
    for (const Case& c : cases) {
        Mat4 m;
        for (int k = 0; k < 16; ++k) {
            m[k] = 42;
        }
        (m.*c.rotate)(a);
        for (int k = 0; k < 16; ++k) {
            if (k == c.cosFirst || k == c.cosSecond) {
                EXPECT_FLOAT_EQ(m[k], std::cos(a)) << k;
            } else if (k == c.sinAt) {
                EXPECT_FLOAT_EQ(m[k], std::sin(a)) << k;
            } else if (k == c.minusSinAt) {
                EXPECT_FLOAT_EQ(m[k], -std::sin(a)) << k;
            } else {
                EXPECT_EQ(m[k], 42) << k;
            }
        }
    }
}
