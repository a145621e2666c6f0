#pragma once

#include <string>
#include <vector>

// The loading display, redrawn and shown after every loaded item. The base class draws a
// framed bar in normalised device coordinates; a production installs its own subclass in
// KVTDemosys::pBar before loading.
class ProgressBar {
public:
    ProgressBar() = default;
    ProgressBar(float height, float width, float centerY, int ticks);
    virtual ~ProgressBar() = default;
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Draws the current progress and shows it at once.
    virtual void draw();
    // Loads what the bar itself draws with; the base bar needs nothing.
    virtual void loadData() {}

    void setTicks(int count) { ticks = count; }
    // Advances one step and redraws; the progress shown is the share done before this step,
    // so the first tick shows an empty bar. Nothing happens once every step is done.
    void tick();

    int getTicks() const { return ticks; }
    int getTicksDone() const { return ticksDone; }
    float getProgress() const { return progress; }
    int getResourceCount() const { return static_cast<int>(resources.size()); }
    std::string getResource(int index) const { return resources.at(index); }

protected:
    // Swaps the window's buffers; without a window (drawing into a framebuffer) nothing.
    static void showFrame();

    float height = 0.125f;
    float width = 1.8f;
    float centerY = -0.9f;
    float progress = 0.0f;
    int ticks = 1;
    int ticksDone = 0;
    // The files the bar itself loads, listed with the production's files.
    std::vector<std::string> resources;

private:
    void drawBar() const;
};
