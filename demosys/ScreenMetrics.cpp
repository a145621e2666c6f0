#include "ScreenMetrics.h"

#include <GL/glew.h>

#include <cmath>

namespace {

constexpr float PI = 3.14159265358979f;

// Column-major index of the element in column col, row row.
constexpr int at(int col, int row) {
    return col * 4 + row;
}

} // namespace

ScreenMetrics::ScreenMetrics() {
    for (int i = 0; i < 4; ++i) {
        projection[at(i, i)] = 1.0f;
    }
}

void ScreenMetrics::initView() {
    aspectW = 1.0f;
    aspectH = 0.5625f;
    viewportX = 0;
    viewportWidth = width;
    viewportHeight = static_cast<int>(width * 0.5625); // 16:9
    viewportY = static_cast<int>((height - viewportHeight) * 0.5);
    aspect = static_cast<float>(viewportWidth) / static_cast<float>(viewportHeight);
    fov = 50;
}

void ScreenMetrics::resize(int w, int h) {
    setResolution(w, h);
    initView();
}

void ScreenMetrics::setView() {
    refreshScales();
    glViewport(viewportX, viewportY, viewportWidth, viewportHeight);
    updateMatrix();
    glLoadMatrixf(projection.data());
    glMatrixMode(GL_MODELVIEW);
}

void ScreenMetrics::updateMatrix() {
    const float f = 1.0f / std::tan(fov * PI / 360.0f);
    projection.fill(0.0f);
    projection[at(0, 0)] = f / aspect;
    projection[at(1, 1)] = f;
    projection[at(2, 2)] = (nearPlane + farPlane) / (nearPlane - farPlane);
    projection[at(2, 3)] = -1.0f;
    projection[at(3, 2)] = 2.0f * nearPlane * farPlane / (nearPlane - farPlane);
}

void ScreenMetrics::refreshScales() {
    scaleX = width / aspectW;
    scaleY = height / aspectH;
}
