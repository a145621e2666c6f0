#pragma once

#include <array>

// The chosen screen: its size and mode flags, and the 16:9 letterboxed viewport every frame
// is drawn into (the picture is centred vertically; a screen wider than 16:9 is cut at top
// and bottom instead). It also owns the perspective projection every frame is drawn with.
class ScreenMetrics {
public:
    // Column-major 4x4 matrix, as glLoadMatrixf takes it.
    using Matrix4 = std::array<float, 16>;

    ScreenMetrics();

    // The screen mode word: 2 from construction on; kept for the production to read.
    int getMode() const { return mode; }
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    void setResolution(int w, int h) {
        width = w;
        height = h;
    }
    float getNear() const { return nearPlane; }
    void setNear(float value) { nearPlane = value; }
    float getFar() const { return farPlane; }
    void setFar(float value) { farPlane = value; }
    bool isFullscreen() const { return fullscreen; }
    void setFullscreen(bool flag) { fullscreen = flag; }
    bool getFullScreenOverride() const { return fullscreenOverride; }
    void setFullscreenOverride(bool flag) { fullscreenOverride = flag; }
    int getFSAASamples() const { return fsaaSamples; }
    void setFSAASamples(int samples) { fsaaSamples = samples; }
    bool getVSync() const { return vsync; }
    void setVSync(bool flag) { vsync = flag; }
    bool getVSyncOverride() const { return vsyncOverride; }
    void setVSyncOverride(bool flag) { vsyncOverride = flag; }
    // The picture quality the viewer chose, 0 (low) to 3 (ultra): the production sizes its
    // framebuffers by it.
    int getQuality() const { return quality; }
    void setQuality(int level) { quality = level; }

    int getViewportX() const { return viewportX; }
    int getViewportY() const { return viewportY; }
    int getViewportWidth() const { return viewportWidth; }
    int getViewportHeight() const { return viewportHeight; }
    float getAspect() const { return aspect; }
    float getFov() const { return fov; }
    // A new vertical field of view in degrees; the projection follows at once.
    void setFov(float degrees) {
        fov = degrees;
        updateMatrix();
    }
    float getScaleX() const { return scaleX; }
    float getScaleY() const { return scaleY; }
    float getAspectW() const { return aspectW; }
    float getAspectH() const { return aspectH; }
    const Matrix4& getProjection() const { return projection; }

    // Computes the letterboxed viewport for the current size.
    void initView();
    // Stores the new size, then recomputes the viewport.
    void resize(int w, int h);
    // With the projection matrix selected: sets the viewport, loads the perspective
    // projection and leaves the model-view matrix selected.
    void setView();
    // Rebuilds the perspective projection from fov, aspect and the clip planes, without GL.
    void updateMatrix();

private:
    void refreshScales();

    int mode = 2;
    int height = 0;
    int width = 0;
    float fov = 0;
    Matrix4 projection{};
    int viewportX = 0;
    int viewportY = 0;
    int viewportHeight = 0;
    int viewportWidth = 0;
    float aspect = 0;
    float scaleX = 0;
    float scaleY = 0;
    bool fullscreen = true;
    bool fullscreenOverride = false;
    int fsaaSamples = 0;
    bool vsync = true;
    bool vsyncOverride = false;
    int quality = 0;
    // The 16:9 target as height per width.
    float aspectW = 1.0f;
    float aspectH = 0.5625f;
    float nearPlane = 1.0f;
    float farPlane = 800.0f;
};
