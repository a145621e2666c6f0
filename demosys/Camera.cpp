#include "Camera.h"

#include <GL/glew.h>

#include <cmath>
#include <iostream>

namespace {

using Quaternion = Vector<float, 4>; // (w, x, y, z)

float halfRadians(float degrees) {
    return degrees / 180.0f * 3.1415927f / 2.0f;
}

Quaternion hamiltonProduct(const Quaternion& a, const Quaternion& b) {
    return Quaternion(a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3],
                      a[0] * b[1] + a[1] * b[0] + a[2] * b[3] - a[3] * b[2],
                      a[0] * b[2] - a[1] * b[3] + a[2] * b[0] + a[3] * b[1],
                      a[0] * b[3] + a[1] * b[2] - a[2] * b[1] + a[3] * b[0]);
}

Matrix<float, 4, 4, 16> rotationMatrix(const Quaternion& q) {
    const float w = q[0], x = q[1], y = q[2], z = q[3];
    Matrix<float, 4, 4, 16> m;
    m[0] = 1 - 2 * (y * y + z * z);
    m[1] = 2 * (x * y + w * z);
    m[2] = 2 * (x * z - w * y);
    m[4] = 2 * (x * y - w * z);
    m[5] = 1 - 2 * (x * x + z * z);
    m[6] = 2 * (y * z + w * x);
    m[8] = 2 * (x * z + w * y);
    m[9] = 2 * (y * z - w * x);
    m[10] = 1 - 2 * (x * x + y * y);
    m[15] = 1;
    return m;
}

// The amount to add: delta while its size stays below the limit's, else the limit, negated for
// a negative delta only when clampNegative is set (pitch clamps so, velocity does not).
float limitedChange(float delta, float limit, bool clampNegative) {
    if (std::fabs(limit) > std::fabs(delta)) {
        return delta;
    }
    return clampNegative && delta < 0 ? -limit : limit;
}

} // namespace

void Camera::reset() {
    pitch = 0;
    heading = 0;
    forwardVelocity = 0;
    position = Vector<float, 3>();
}

void Camera::changePitch(float degrees) {
    pitch += limitedChange(degrees, maxPitchRate, true);
}

void Camera::changeHeading(float degrees) {
    // Only a change beyond the limit is clamped, and always to the limit's own sign.
    heading += std::fabs(degrees) > std::fabs(maxHeadingRate) ? maxHeadingRate : degrees;
}

void Camera::changeVelocity(float delta) {
    forwardVelocity += limitedChange(delta, maxForwardVelocity, false);
}

void Camera::printInfo() const {
    std::cout << "Camera : [" << position.x() << "," << position.y() << "," << position.z()
              << "], pitch = " << pitch << ", heading = " << heading << std::endl;
}

Matrix<float, 4, 4, 16> Camera::updateOrientation() {
    const float p = halfRadians(pitch);
    const float h = halfRadians(heading);
    pitchQuat = Quaternion(std::cos(p), std::sin(p), 0, 0);
    headingQuat = Quaternion(std::cos(h), 0, std::sin(h), 0);

    rotation = hamiltonProduct(pitchQuat, headingQuat);
    matrix = rotationMatrix(rotation);
    const Matrix<float, 4, 4, 16> pitchFirst = matrix;

    direction.y() = rotationMatrix(pitchQuat)[9];

    rotation = hamiltonProduct(headingQuat, pitchQuat);
    matrix = rotationMatrix(rotation);
    direction.x() = matrix[8];
    direction.z() = -matrix[10];

    position = position + direction * forwardVelocity;
    return pitchFirst;
}

void Camera::setGLMatrixes() {
    glMatrixMode(GL_MODELVIEW);
    const Matrix<float, 4, 4, 16> rotationFirst = updateOrientation();
    glMultMatrixf(rotationFirst.data());
    glTranslatef(-position.x(), -position.y(), -position.z());
}
