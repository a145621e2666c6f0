#pragma once

// The chosen screen: its size and mode flags, and the 16:9 letterboxed viewport every frame
// is drawn into (the picture is centred vertically; a screen wider than 16:9 is cut at top
// and bottom instead).
class ScreenMetrics {
public:
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

    int getViewportX() const { return viewportX; }
    int getViewportY() const { return viewportY; }
    int getViewportWidth() const { return viewportWidth; }
    int getViewportHeight() const { return viewportHeight; }
    float getAspect() const { return aspect; }
    float getFov() const { return fov; }

    // Computes the letterboxed viewport for the current size.
    void initView();
    // Stores the new size, then recomputes the viewport.
    void resize(int w, int h);

private:
    int height = 0;
    int width = 0;
    float fov = 0;
    int viewportX = 0;
    int viewportY = 0;
    int viewportHeight = 0;
    int viewportWidth = 0;
    float aspect = 0;
    bool fullscreen = true;
    bool fullscreenOverride = false;
    int fsaaSamples = 0;
    bool vsync = true;
    bool vsyncOverride = false;
    float nearPlane = 1.0f;
    float farPlane = 800.0f;
};
