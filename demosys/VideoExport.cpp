#include "VideoExport.h"

#include "File.h"
#include "FrameReadback.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "KVTTime.h"
#include "ScreenMetrics.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// "mm:ss" of a number of seconds.
std::string minutesSeconds(double seconds) {
    const long whole = static_cast<long>(seconds + 0.5);
    char text[32];
    std::snprintf(text, sizeof text, "%02ld:%02ld", whole / 60, whole % 60);
    return text;
}

std::string megabytes(const std::string& file) {
    std::error_code failure;
    const auto size = fs::file_size(file, failure);
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", failure ? 0.0 : static_cast<double>(size) / 1e6);
    return text;
}

} // namespace

VideoExport::VideoExport(std::string video, int framesPerSecond)
    : file(std::move(video)), fps(framesPerSecond) {}

VideoExport::~VideoExport() {
    abandon();
}

bool VideoExport::begin(unsigned int startMs, unsigned long count, std::string& error) {
    frames = count;
    VideoEncoder::Settings settings;
    settings.file = file;
    settings.width = KVTDemosys::screenMetrics->getWidth();
    settings.height = KVTDemosys::screenMetrics->getHeight();
    settings.fps = fps;
    settings.musicStartSeconds = startMs / 1000.0;
    settings.seconds = static_cast<double>(frames) / fps;
    if (!musicForFfmpeg(settings.music, error) || !encoder.start(settings, error)) {
        return false;
    }
    readback = std::make_unique<FrameReadback>(settings.width, settings.height);
    started = Clock::now();
    lastShown = started;
    std::cout << "Video: " << frames << " frames at " << fps << " frames a second to '" << file
              << "'" << std::endl;
    return true;
}

// ffmpeg reads the music itself: from the resource folder, or from a copy of the archive's.
bool VideoExport::musicForFfmpeg(std::string& path, std::string& error) {
    if (KVTDemosys::MusicFile.empty()) {
        path.clear();
        return true;
    }
    const std::string name = KVTIO::SoundPath + KVTDemosys::MusicFile;
    if (KVTIO::ResourceType != KVTIO::KVT_RESOURCES_7Z) {
        path = fs::absolute(name).string();
        if (!File::exists(path)) {
            error = "the music '" + path + "' is missing";
            return false;
        }
        return true;
    }
    KVTIO::init(KVTIO::KVT_RESOURCES_7Z);
    std::unique_ptr<File> music(KVTIO::loadFile(name));
    KVTIO::destroy();
    if (music == nullptr || !music->exists()) {
        error = "the music '" + name + "' is missing from resources.7z";
        return false;
    }
    char copyName[] = "/tmp/brinova-music-XXXXXX";
    const int copy = mkstemp(copyName);
    if (copy < 0) {
        error = "cannot copy the music out of resources.7z";
        return false;
    }
    close(copy);
    musicCopy = copyName;
    const std::vector<unsigned char> bytes = music->getUnsigned();
    std::ofstream(musicCopy, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
    path = musicCopy;
    return true;
}

bool VideoExport::addFrame(std::string& error) {
    auto toEncoder = [&](const unsigned char* bgra) { return encoder.write(bgra, error); };
    if (!readback->push(toEncoder)) {
        return false;
    }
    ++done;
    showProgress(false);
    if (done < frames) {
        return true;
    }
    return readback->flush(toEncoder) && finish(error);
}

bool VideoExport::finish(std::string& error) {
    readback.reset();
    if (!encoder.finish(error)) {
        return false;
    }
    finished = true;
    showProgress(true);
    const double taken = std::chrono::duration<double>(Clock::now() - started).count();
    std::cout << "Video: wrote '" << file << "': " << frames << " frames, "
              << static_cast<double>(frames) / fps << " s, " << megabytes(file) << ", in "
              << minutesSeconds(taken) << " (" << frames / taken << " frames a second)"
              << std::endl;
    return true;
}

// One line, rewritten in place at most four times a second.
void VideoExport::showProgress(bool last) {
    const Clock::time_point now = Clock::now();
    if (!last && now - lastShown < std::chrono::milliseconds(250)) {
        return;
    }
    lastShown = now;
    const double elapsed = std::chrono::duration<double>(now - started).count();
    const double rate = elapsed > 0.0 ? done / elapsed : 0.0;
    const double left = rate > 0.0 ? (frames - done) / rate : 0.0;
    char line[128];
    std::snprintf(line, sizeof line, "\rVideo: %lu / %lu frames, %.1f frames a second, %s left ",
                  done, frames, rate, minutesSeconds(left).c_str());
    std::cout << line << (last ? "\n" : "") << std::flush;
}

void VideoExport::abandon() {
    if (!finished) {
        if (done > 0) {
            std::cout << std::endl; // ends the progress line
            done = 0;
        }
        readback.reset();
        encoder.abandon();
    }
    if (!musicCopy.empty()) {
        std::remove(musicCopy.c_str());
        musicCopy.clear();
    }
}
