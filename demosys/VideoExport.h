#pragma once

#include "VideoEncoder.h"

#include <chrono>
#include <memory>
#include <string>

class FrameReadback;

// Turns the frames of an offline render into a video with the production's music: reads each
// frame back, streams it to the encoder and keeps a progress line on the terminal. Owns the
// encoder, the readback and, for an archive, the music copied out of it.
class VideoExport {
public:
    VideoExport(std::string file, int fps);
    ~VideoExport();

    // At the first frame, in the screen's GL context: the video covers frames frames from
    // startMs on.
    bool begin(unsigned int startMs, unsigned long frames, std::string& error);
    // The frame just drawn; the last one finishes the video.
    bool addFrame(std::string& error);
    bool complete() const { return finished; }
    // Gives up an unfinished video, leaving no file.
    void abandon();

private:
    bool finish(std::string& error);
    bool musicForFfmpeg(std::string& path, std::string& error);
    void showProgress(bool last);

    using Clock = std::chrono::steady_clock;
    std::string file;
    int fps;
    VideoEncoder encoder;
    std::unique_ptr<FrameReadback> readback;
    std::string musicCopy;
    unsigned long frames = 0;
    unsigned long done = 0;
    bool finished = false;
    Clock::time_point started;
    Clock::time_point lastShown;
};
