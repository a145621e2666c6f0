#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

// Streams raw frames into an ffmpeg process, which encodes them and muxes the music into a
// video file. ffmpeg writes to a partial name beside the file; the file appears under its own
// name only once ffmpeg has finished without error, so a failed or stopped export leaves
// nothing behind. The encoder owns the ffmpeg process and the partial file.
class VideoEncoder {
public:
    struct Settings {
        // The video to write; its extension picks the container and codecs.
        std::string file;
        int width = 0;
        int height = 0;
        int fps = 60;
        // The music to mux (any file ffmpeg reads), empty for a silent video.
        std::string music;
        // Where in the music the video starts, and how long the video is.
        double musicStartSeconds = 0.0;
        double seconds = 0.0;
    };

    VideoEncoder() = default;
    VideoEncoder(const VideoEncoder&) = delete;
    VideoEncoder& operator=(const VideoEncoder&) = delete;
    // Abandons a video that was not finished.
    ~VideoEncoder();

    // True for the extensions a video can have: .mp4, .mkv, .webm.
    static bool knownContainer(const std::string& file);

    // Starts ffmpeg; false with a message when it is missing or cannot be started.
    bool start(const Settings& settings, std::string& error);
    // One frame of width x height BGRA pixels, bottom row first (ffmpeg flips it).
    bool write(const unsigned char* bgra, std::string& error);
    // Ends the stream, waits for ffmpeg and gives the video its name.
    bool finish(std::string& error);
    // Stops ffmpeg and removes what it wrote.
    void abandon();

private:
    // status: ffmpeg's exit status when it was already collected.
    bool failWithLog(std::string& error, int status = -1);
    void closeInput();
    int waitForExit();
    void removeFiles();

    Settings settings;
    std::string partialFile;
    std::string logFile;
    size_t frameBytes = 0;
    pid_t process = -1;
    int input = -1;
};
