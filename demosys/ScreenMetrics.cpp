#include "ScreenMetrics.h"

void ScreenMetrics::initView() {
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
