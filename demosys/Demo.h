#pragma once

#include <string>

class Animation;
class Authoring;
class FrameListener;
class ResourceLoader;
class ScreenMetrics;

// The application object: loads one production (screen, resources, effects, tracks, clock),
// runs its frame loop until the end time or Escape, and disposes of everything. A failure
// while loading is kept as a message that dispose() prints; init() and run() then do nothing.
class Demo {
public:
    Demo(int argc, char** argv);
    ~Demo();
    Demo(const Demo&) = delete;
    Demo& operator=(const Demo&) = delete;

    bool load(ScreenMetrics* metrics, int resourceMode);
    // Instead of init() and run(): packs the resources load() loaded into "resources.7z" in
    // the working folder. False, with the reason in getMessage(), when loading failed or the
    // packing did.
    bool pack();
    void init();
    void run();
    bool dispose();
    // Escape quits; a window resize is handed to the screen metrics.
    void keyEvents();

    bool isValid() const { return !error; }
    void debug(bool flag) { debugMode = flag; }
    void setWindowTitle(std::string text) { title = std::move(text); }
    std::string getMessage() const { return message; }
    // Offline rendering: the clock counts frames of stepMs milliseconds and no music plays;
    // with decodeMusic the music is decoded all the same (a benchmark times the load).
    void useFrameClock(double stepMs, bool decodeMusic = false) {
        frameStepMs = stepMs;
        decodeMusicOffline = decodeMusic;
    }
    // Not owned; may be null.
    void setFrameListener(FrameListener* listener) { frameListener = listener; }
    // Authoring mode (--dev): sees every frame and event. Not owned; null for a plain run.
    void setAuthoring(Authoring* mode) { authoring = mode; }

private:
    bool fail(std::string text);
    void drawFrame();

    ResourceLoader* loader = nullptr;
    Animation* animation = nullptr;
    std::string message;
    std::string title = "Korvath Demosystem";
    bool error = false;
    bool debugMode = false;
    FrameListener* frameListener = nullptr;
    Authoring* authoring = nullptr;
    double frameStepMs = 0.0;
    bool decodeMusicOffline = false;
};
