#include "OfflineRenderer.h"

#include "FrameTimer.h"
#include "KVTDemosys.h"
#include "KVTTime.h"
#include "ScreenMetrics.h"
#include "VideoExport.h"

#include <GL/glew.h>
#include <stb_image_write.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <sstream>

OfflineRenderer::OfflineRenderer(const DemoOptions& chosen, Clock::time_point start)
    : options(chosen), pendingShots(chosen.shots), programStart(start) {
    std::sort(
        pendingShots.begin(), pendingShots.end(),
        [](const DemoOptions::Shot& a, const DemoOptions::Shot& b) { return a.timeMs < b.timeMs; });
}

OfflineRenderer::~OfflineRenderer() = default;

FrameTimer* OfflineRenderer::frameTimer() const {
    return static_cast<FrameTimer*>(KVTDemosys::timer);
}

void OfflineRenderer::beforeFrame() {
    if (framesStarted) {
        frameTimer()->nextFrame();
    }
    framesStarted = true;
    if (!pendingShots.empty()) {
        frameTimer()->jumpTo(pendingShots.front().timeMs);
    }
}

void OfflineRenderer::afterFrame(unsigned int time) {
    if (!pendingShots.empty()) {
        takeShot(time);
    } else if (options.capture()) {
        captureFrame();
    } else if (options.video()) {
        videoFrame();
    }
    if (options.benchmark) {
        recordFrameTime(time);
    }
}

void OfflineRenderer::takeShot(unsigned int time) {
    const std::string file = pendingShots.front().file;
    pendingShots.erase(pendingShots.begin());
    if (!saveScreen(file, KVTDemosys::screenMetrics->getWidth(),
                    KVTDemosys::screenMetrics->getHeight())) {
        error = "cannot write '" + file + "'";
    }
    std::cout << "Shot " << KVTTime(time).toString() << " -> " << file << std::endl;
    if (pendingShots.empty() || !error.empty()) {
        KVTDemosys::setQuit(true);
    }
}

void OfflineRenderer::captureFrame() {
    char name[32];
    std::snprintf(name, sizeof name, "/frame%06lu.png", captured);
    const std::string file = options.captureDir + name;
    if (!saveScreen(file, KVTDemosys::screenMetrics->getWidth(),
                    KVTDemosys::screenMetrics->getHeight())) {
        error = "cannot write '" + file + "'";
        KVTDemosys::setQuit(true);
        return;
    }
    ++captured;
    stopAfterInterval();
}

void OfflineRenderer::videoFrame() {
    if (video == nullptr) {
        if (framesInInterval() == 0) {
            error = "the video would have no frames: the start is not before the end";
            KVTDemosys::setQuit(true);
            return;
        }
        video = std::make_unique<VideoExport>(options.videoFile, options.framesPerSecond());
        if (!video->begin(KVTDemosys::DemoStartTime.getTicks(), framesInInterval(), error)) {
            KVTDemosys::setQuit(true);
            return;
        }
    }
    if (!video->addFrame(error)) {
        KVTDemosys::setQuit(true);
        return;
    }
    ++captured;
    stopAfterInterval();
}

// The number of frames at start + k / fps before the end.
unsigned long OfflineRenderer::framesInInterval() const {
    const unsigned long long start = KVTDemosys::DemoStartTime.getTicks();
    const unsigned long long end = KVTDemosys::DemoEndTime.getTicks();
    const unsigned long long span = end > start ? end - start : 0;
    return static_cast<unsigned long>((span * options.framesPerSecond() + 999) / 1000);
}

void OfflineRenderer::stopAfterInterval() {
    if (intervalFrames == 0) {
        intervalFrames = framesInInterval();
    }
    if (captured >= intervalFrames) {
        KVTDemosys::setQuit(true);
    }
}

// A video cut short (Ctrl-C, a closed window, an error) is given up while its GL buffers
// can still be freed, and leaves no file.
void OfflineRenderer::afterLastFrame() {
    if (video == nullptr || video->complete()) {
        return;
    }
    video->abandon();
    if (error.empty()) {
        error = "the video export stopped after " + std::to_string(captured) + " of " +
                std::to_string(framesInInterval()) + " frames; no video was written";
    }
}

// The first frame ends the load; every later one is timed from the end of the one before,
// so the buffer swap and all of the frame's work are counted.
void OfflineRenderer::recordFrameTime(unsigned int time) {
    glFinish();
    Clock::time_point now = Clock::now();
    if (!firstFrameDone) {
        loadSeconds = std::chrono::duration<double>(now - programStart).count();
        firstFrameDone = true;
        if (KVTDemosys::resources != nullptr) {
            sections = KVTDemosys::resources->getSections();
        }
    } else {
        frameMs.push_back(std::chrono::duration<double, std::milli>(now - lastFrameEnd).count());
        frameTimes.push_back(time);
    }
    lastFrameEnd = now;
}

bool OfflineRenderer::saveScreen(const std::string& path, int width, int height) {
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    size_t stride = static_cast<size_t>(width) * 3;
    std::vector<unsigned char> topFirst(pixels.size());
    for (int row = 0; row < height; ++row) {
        std::copy(pixels.begin() + static_cast<long>(stride * row),
                  pixels.begin() + static_cast<long>(stride * (row + 1)),
                  topFirst.begin() + static_cast<long>(stride * (height - 1 - row)));
    }
    return stbi_write_png(path.c_str(), width, height, 3, topFirst.data(),
                          static_cast<int>(stride)) != 0;
}

bool OfflineRenderer::finish() {
    if (options.benchmark) {
        printBenchmark();
    }
    if (!pendingShots.empty() && error.empty()) {
        error =
            "the demo ended before the shot at " + KVTTime(pendingShots.front().timeMs).toString();
    }
    if (!error.empty()) {
        std::cerr << options.program << ": " << error << std::endl;
    }
    return error.empty();
}

namespace {

// "N frames, mean …, median …, 95th …, 99th …, worst … ms" of a set of frame times.
std::string statistics(std::vector<double> sorted) {
    std::sort(sorted.begin(), sorted.end());
    double sum = 0.0;
    for (double ms : sorted) {
        sum += ms;
    }
    auto percentile = [&](double p) {
        size_t index = static_cast<size_t>(p * static_cast<double>(sorted.size() - 1) + 0.5);
        return sorted[std::min(index, sorted.size() - 1)];
    };
    std::ostringstream text;
    text << sorted.size() << " frames, mean " << sum / sorted.size() << " ms, median "
         << percentile(0.5) << " ms, 95th " << percentile(0.95) << " ms, 99th " << percentile(0.99)
         << " ms, worst " << sorted.back() << " ms";
    return text.str();
}

} // namespace

void OfflineRenderer::printBenchmark() const {
    std::cout << "Benchmark: load time (start to first frame) " << loadSeconds * 1000.0 << " ms"
              << std::endl;
    if (frameMs.empty()) {
        std::cout << "Benchmark: no frames after the first" << std::endl;
        return;
    }
    std::cout << "Benchmark: " << statistics(frameMs) << std::endl;
    printSections();
}

// One line a section that has frames, so the slow part of the piece stands out.
void OfflineRenderer::printSections() const {
    for (size_t s = 0; s < sections.size(); ++s) {
        const unsigned int from = sections[s].startMs;
        const unsigned int to = s + 1 < sections.size() ? sections[s + 1].startMs : ~0u;
        std::vector<double> inSection;
        for (size_t f = 0; f < frameMs.size(); ++f) {
            if (frameTimes[f] >= from && frameTimes[f] < to) {
                inSection.push_back(frameMs[f]);
            }
        }
        if (!inSection.empty()) {
            std::cout << "Benchmark: section " << sections[s].name << " from "
                      << KVTTime(from).toString() << ": " << statistics(inSection) << std::endl;
        }
    }
}
