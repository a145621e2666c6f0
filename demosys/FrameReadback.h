#pragma once

#include <cstddef>
#include <functional>
#include <vector>

// Reads the frames of the back buffer as BGRA, bottom row first. Where the driver has pixel
// buffer objects, two of them take turns: the copy of one frame runs on the GPU while the next
// is drawn, and each frame is handed on one frame late, straight from the mapped buffer.
// Without them each frame is read at once into memory. Needs the GL context it was made in.
class FrameReadback {
public:
    // Receives one frame; false stops the export.
    using Sink = std::function<bool(const unsigned char* bgra)>;

    FrameReadback(int width, int height);
    FrameReadback(const FrameReadback&) = delete;
    FrameReadback& operator=(const FrameReadback&) = delete;
    ~FrameReadback();

    // Starts reading the frame just drawn and hands the one before it (if any) to sink.
    bool push(const Sink& sink);
    // Hands the last frame started to sink.
    bool flush(const Sink& sink);

private:
    bool deliver(unsigned int buffer, const Sink& sink);

    int width;
    int height;
    size_t bytes;
    unsigned int buffers[2] = {0, 0};
    int next = 0;
    bool pending = false;
    std::vector<unsigned char> memory;
};
