#pragma once

#include "DemoOptions.h"
#include "FrameListener.h"
#include "ResourceDefinition.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class FrameTimer;
class VideoExport;

// Steers the frame clock for offline rendering and collects what it asks for: the frames at
// the shot times as PNGs, every frame of a capture as numbered PNGs or as a video, or the
// frame times of a benchmark, which it prints at the end. A capture or a video covers exactly
// the frames at start + k / fps for start <= time < end.
class OfflineRenderer : public FrameListener {
public:
    using Clock = std::chrono::steady_clock;

    // programStart: when the program started, for the benchmark's load time.
    OfflineRenderer(const DemoOptions& options, Clock::time_point programStart);
    ~OfflineRenderer() override;

    void beforeFrame() override;
    void afterFrame(unsigned int time) override;
    void afterLastFrame() override;
    // Prints the benchmark's figures; false when a picture could not be written.
    bool finish();
    const std::string& getError() const { return error; }

    // Writes the window's back buffer (width x height) as a PNG, top row first.
    static bool saveScreen(const std::string& path, int width, int height);

private:
    FrameTimer* frameTimer() const;
    void takeShot(unsigned int time);
    void captureFrame();
    void videoFrame();
    unsigned long framesInInterval() const;
    void stopAfterInterval();
    void recordFrameTime(unsigned int time);
    void printBenchmark() const;
    void printSections() const;

    DemoOptions options;
    std::vector<DemoOptions::Shot> pendingShots;
    Clock::time_point programStart;
    Clock::time_point lastFrameEnd;
    bool framesStarted = false;
    bool firstFrameDone = false;
    double loadSeconds = 0.0;
    std::vector<double> frameMs;
    // The demo time of each timed frame, and the production's sections, kept from its
    // resource list before that is disposed.
    std::vector<unsigned int> frameTimes;
    std::vector<ResourceDefinition::Section> sections;
    unsigned long captured = 0;
    unsigned long intervalFrames = 0;
    std::unique_ptr<VideoExport> video;
    std::string error;
};
