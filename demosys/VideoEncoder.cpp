#include "VideoEncoder.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

struct Container {
    const char* extension;
    const char* format;
    std::vector<std::string> videoCodec;
    std::vector<std::string> audioCodec;
};

// H.264 with AAC plays everywhere and uploads as it is; VP9 with Opus for the web.
const std::vector<Container>& containers() {
    static const std::vector<Container> all = {
        {".mp4",
         "mp4",
         {"-c:v", "libx264", "-preset", "fast", "-crf", "18", "-pix_fmt", "yuv420p", "-movflags",
          "+faststart"},
         {"-c:a", "aac", "-b:a", "192k"}},
        {".mkv",
         "matroska",
         {"-c:v", "libx264", "-preset", "fast", "-crf", "18", "-pix_fmt", "yuv420p"},
         {"-c:a", "aac", "-b:a", "192k"}},
        {".webm",
         "webm",
         {"-c:v", "libvpx-vp9", "-crf", "30", "-b:v", "0", "-row-mt", "1", "-deadline", "good",
          "-cpu-used", "4", "-pix_fmt", "yuv420p"},
         {"-c:a", "libopus", "-b:a", "160k"}},
    };
    return all;
}

const Container* containerOf(const std::string& file) {
    for (const Container& container : containers()) {
        const size_t length = std::strlen(container.extension);
        if (file.size() > length &&
            file.compare(file.size() - length, length, container.extension) == 0) {
            return &container;
        }
    }
    return nullptr;
}

std::string seconds(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", value);
    return text;
}

std::vector<std::string> ffmpegArguments(const VideoEncoder::Settings& settings,
                                         const Container& container, const std::string& output) {
    std::vector<std::string> arguments = {
        "ffmpeg",      "-hide_banner",
        "-loglevel",   "error",
        "-nostats",    "-y",
        "-f",          "rawvideo",
        "-pix_fmt",    "bgra",
        "-video_size", std::to_string(settings.width) + "x" + std::to_string(settings.height),
        "-framerate",  std::to_string(settings.fps),
        "-i",          "pipe:0"};
    if (!settings.music.empty()) {
        arguments.insert(arguments.end(), {"-ss", seconds(settings.musicStartSeconds), "-i",
                                           settings.music, "-map", "0:v", "-map", "1:a"});
    }
    // OpenGL hands the rows bottom first.
    arguments.insert(arguments.end(), {"-vf", "vflip"});
    arguments.insert(arguments.end(), container.videoCodec.begin(), container.videoCodec.end());
    if (!settings.music.empty()) {
        arguments.insert(arguments.end(), container.audioCodec.begin(), container.audioCodec.end());
    }
    arguments.insert(arguments.end(),
                     {"-t", seconds(settings.seconds), "-f", container.format, output});
    return arguments;
}

// The last few lines ffmpeg wrote, which name what went wrong.
std::string lastLines(const std::string& file, size_t count) {
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    std::string text;
    for (size_t i = lines.size() > count ? lines.size() - count : 0; i < lines.size(); ++i) {
        text += "\n  " + lines[i];
    }
    return text.empty() ? "\n  (ffmpeg said nothing)" : text;
}

} // namespace

VideoEncoder::~VideoEncoder() {
    abandon();
}

bool VideoEncoder::knownContainer(const std::string& file) {
    return containerOf(file) != nullptr;
}

bool VideoEncoder::start(const Settings& chosen, std::string& error) {
    settings = chosen;
    const Container* container = containerOf(settings.file);
    if (container == nullptr) {
        error = "'" + settings.file + "' is not a .mp4, .mkv or .webm file";
        return false;
    }
    frameBytes = static_cast<size_t>(settings.width) * settings.height * 4;
    partialFile = settings.file + ".partial";
    char logName[] = "/tmp/brinova-ffmpeg-XXXXXX";
    const int log = mkstemp(logName);
    if (log < 0) {
        error = std::string("cannot make a log file for ffmpeg: ") + std::strerror(errno);
        return false;
    }
    logFile = logName;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        close(log);
        error = std::string("cannot make a pipe to ffmpeg: ") + std::strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, log, 2);
    // A process group of its own: Ctrl-C reaches the demo, which decides what becomes of the
    // video, and not ffmpeg.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    std::vector<std::string> arguments = ffmpegArguments(settings, *container, partialFile);
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    const int spawned =
        posix_spawnp(&process, "ffmpeg", &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(ends[0]);
    close(log);
    if (spawned != 0) {
        process = -1;
        close(ends[1]);
        removeFiles();
        error = spawned == ENOENT ? "ffmpeg was not found: the Debian package 'ffmpeg' installs it "
                                    "(apt-get install ffmpeg)"
                                  : std::string("cannot start ffmpeg: ") + std::strerror(spawned);
        return false;
    }
    input = ends[1];
    // A closed pipe must show up as an error from write, not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    return true;
}

bool VideoEncoder::write(const unsigned char* bgra, std::string& error) {
    size_t done = 0;
    while (done < frameBytes) {
        const ssize_t written = ::write(input, bgra + done, frameBytes - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return failWithLog(error);
        }
        done += static_cast<size_t>(written);
    }
    return true;
}

bool VideoEncoder::finish(std::string& error) {
    closeInput();
    const int status = waitForExit();
    if (status != 0) {
        return failWithLog(error, status);
    }
    if (std::rename(partialFile.c_str(), settings.file.c_str()) != 0) {
        error = "cannot name the video '" + settings.file + "': " + std::strerror(errno);
        removeFiles();
        return false;
    }
    partialFile.clear();
    removeFiles();
    return true;
}

void VideoEncoder::abandon() {
    if (process > 0) {
        kill(process, SIGKILL);
    }
    closeInput();
    waitForExit();
    removeFiles();
}

// ffmpeg has given up (it closed its input or exited): once it is gone, what it said last
// is the reason.
bool VideoEncoder::failWithLog(std::string& error, int status) {
    closeInput();
    if (process > 0) {
        status = waitForExit();
    }
    error = "ffmpeg failed (exit status " + std::to_string(status) + ") writing '" + settings.file +
            "':" + lastLines(logFile, 4);
    removeFiles();
    return false;
}

void VideoEncoder::closeInput() {
    if (input >= 0) {
        close(input);
        input = -1;
    }
}

// ffmpeg's exit status; -1 when it was killed or is not running.
int VideoEncoder::waitForExit() {
    if (process <= 0) {
        return -1;
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void VideoEncoder::removeFiles() {
    if (!partialFile.empty()) {
        std::remove(partialFile.c_str());
        partialFile.clear();
    }
    if (!logFile.empty()) {
        std::remove(logFile.c_str());
        logFile.clear();
    }
}
