#include "OrbitCamera.h"

#include "ModelScene.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kDegrees = 3.14159265f / 180.0f;
constexpr float kDegreesPerPixel = 0.4f;
constexpr float kZoomPerStep = 0.85f;
// Some room around a framed model.
constexpr float kFramingMargin = 1.1f;

Vector<float, 3> normalized(Vector<float, 3> v) {
    v.normalize();
    return v;
}

} // namespace

void OrbitCamera::frame(const Bounds& bounds, float fovDegrees, float aspect) {
    target = bounds.centre();
    const float radius = bounds.empty ? 1.0f : std::max(bounds.radius(), 1e-3f);
    const float halfVertical = 0.5f * fovDegrees * kDegrees;
    const float halfHorizontal = std::atan(std::tan(halfVertical) * aspect);
    distance = kFramingMargin * radius / std::sin(std::min(halfVertical, halfHorizontal));
}

void OrbitCamera::turn(float dx, float dy) {
    headingDegrees = std::fmod(headingDegrees - dx * kDegreesPerPixel, 360.0f);
    elevationDegrees = std::clamp(elevationDegrees + dy * kDegreesPerPixel, -89.0f, 89.0f);
}

void OrbitCamera::zoom(float steps) {
    distance *= std::pow(kZoomPerStep, steps);
}

Vector<float, 3> OrbitCamera::eye() const {
    const float heading = headingDegrees * kDegrees;
    const float elevation = elevationDegrees * kDegrees;
    const Vector<float, 3> away(std::cos(elevation) * std::sin(heading), std::sin(elevation),
                                std::cos(elevation) * std::cos(heading));
    return target + away * distance;
}

OrbitCamera::Matrix4 OrbitCamera::placement() const {
    const Vector<float, 3> position = eye();
    const Vector<float, 3> back = normalized(position - target);
    const Vector<float, 3> right = normalized(Vector<float, 3>(0, 1, 0).crossProduct(back));
    const Vector<float, 3> up = back.crossProduct(right);
    Matrix4 m = Matrix4::identity();
    for (int i = 0; i < 3; ++i) {
        m[i] = right[i];
        m[4 + i] = up[i];
        m[8 + i] = back[i];
        m[12 + i] = position[i];
    }
    return m;
}
