#include "DemoOptions.h"

#include "File.h"
#include "KVTTime.h"
#include "StringUtils.h"
#include "TrackSystem.h"
#include "VideoEncoder.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

const int OfflineFps = 60;

std::string folderOf(const std::string& file) {
    size_t slash = file.rfind('/');
    return slash == std::string::npos ? "." : (slash == 0 ? "/" : file.substr(0, slash));
}

bool readWhole(const std::string& text, int least, int most, int& out) {
    if (text.empty() || text.size() > 6 || !StringUtils::isInt(text) || text[0] == '-') {
        return false;
    }
    out = std::stoi(text);
    return out >= least && out <= most;
}

// The clock counts milliseconds in 32 bits: a longer time would wrap around.
bool fitsTheClock(const std::string& text) {
    long long ms = 0;
    size_t from = 0;
    for (long long unit : {60000LL, 1000LL, 1LL}) {
        const size_t colon = std::min(text.find(':', from), text.size());
        const std::string field = text.substr(from, colon - from);
        if (field.empty() || field.size() > 9 || !StringUtils::isInt(field)) {
            return false;
        }
        ms += std::stoll(field) * unit;
        from = colon + 1;
    }
    return ms <= 0xFFFFFFFFLL;
}

// A time written mm:ss:ms with three whole fields.
bool readTime(const std::string& text, unsigned int& out) {
    KVTTime time(text);
    if (!time.isValid() || text.find('-') != std::string::npos || !fitsTheClock(text)) {
        return false;
    }
    out = time.getTicks();
    return true;
}

// A row of the sync tracks, a whole number at their fixed rows a second.
bool readRow(const std::string& text, unsigned int& out) {
    int row = 0;
    if (!readWhole(text, 0, 999999, row)) {
        return false;
    }
    out = static_cast<unsigned int>(row * 1000LL / TrackSystem::DefaultRowRate);
    return true;
}

// bar.beat as the sync text writes it: bars from 1, beats 1 to 4; beats counts from 0.
bool readBarBeat(const std::string& text, long& beats) {
    const size_t dot = text.find('.');
    int bar = 0;
    int beat = 0;
    if (dot == std::string::npos || !readWhole(text.substr(0, dot), 1, 99999, bar) ||
        !readWhole(text.substr(dot + 1), 1, 4, beat)) {
        return false;
    }
    beats = (bar - 1) * 4L + beat - 1;
    return true;
}

} // namespace

bool DemoOptions::readSize(const std::string& text, int& width, int& height) {
    size_t x = text.find('x');
    return x != std::string::npos && readWhole(text.substr(0, x), 16, 16384, width) &&
           readWhole(text.substr(x + 1), 16, 16384, height);
}

std::string DemoOptions::usage(const std::string& program) {
    return "Usage: " + program +
           " [options]\n"
           "\n"
           "Plays the demo. Without options a launcher dialog chooses the screen.\n"
           "\n"
           "Options:\n"
           "  --help                show this help and exit\n"
           "  --version             show the program name and version and exit\n"
           "  --no-launcher         skip the dialog; the options below choose the screen\n"
           "  --size WxH            window or screen size (default 1280x720)\n"
           "  --windowed            play in a window (default without the dialog)\n"
           "  --fullscreen          play full screen\n"
           "  --vsync on|off        wait for vertical sync (default on)\n"
           "  --aa N                antialiasing samples: 0, 2, 4, 6 or 8 (default 0)\n"
           "  --quality N           0 low, 1 medium, 2 high, 3 ultra (default 2)\n"
           "  --archive             read resources from resources.7z instead of the folder\n"
           "  --start TIME          play from this time: mm:ss:ms, a sync row (20 a second)\n"
           "                        or bar.beat at the music's tempo (1.1 is the start)\n"
           "  --end TIME            stop after this time (the same forms); a capture or a\n"
           "                        video holds the frames from start up to, not at, the end\n"
           "  --shot mm:ss:ms=FILE.png\n"
           "                        render the frame at that time to a PNG (repeatable), quit\n"
           "  --capture DIR --fps N render every frame at N frames a second into DIR as PNGs\n"
           "  --video FILE          render a video with the music: .mp4 (H.264, AAC), .mkv or\n"
           "                        .webm (VP9, Opus), at --fps N (default 60); needs ffmpeg\n"
           "  --benchmark           render as fast as possible and print frame statistics\n"
           "  --pack                pack the production's resources into resources.7z, quit\n"
           "  --dev                 authoring mode in a window: pause, seek and loop keys, a\n"
           "                        timeline (F1), live reload of shaders and sync text\n"
           "  --watch DIR           with --dev: reload from DIR (shaders/ and a .sync file)\n"
           "                        instead of the production's source folder\n"
           "  --sync-editor [HOST:PORT]\n"
           "                        with --dev: link to a sync-tracker editor and take its\n"
           "                        keys live (default 127.0.0.1:1338)\n";
}

bool DemoOptions::showLauncher() const {
    return !noLauncher && !dev && !framesDriveClock() && !pack;
}

int DemoOptions::framesPerSecond() const {
    return fps > 0 ? fps : OfflineFps;
}

double DemoOptions::frameStepMs() const {
    return 1000.0 / framesPerSecond();
}

bool DemoOptions::parse(int argc, const char* const* argv, std::string& error) {
    if (argc > 0) {
        const std::string path = argv[0];
        program = path.substr(path.rfind('/') + 1);
    }
    for (int i = 1; i < argc; ++i) {
        std::string name = argv[i];
        std::string value = i + 1 < argc ? argv[i + 1] : "";
        bool usedValue = false;
        if (!parseOption(name, i + 1 < argc ? &value : nullptr, usedValue, error)) {
            return false;
        }
        if (usedValue) {
            ++i;
        }
    }
    return checkCombination(error);
}

// The program works from its own folder: paths the user gave are made absolute against the
// folder it was started in first.
void DemoOptions::resolvePaths(const std::string& startFolder) {
    auto absolute = [&](std::string& path) {
        if (!path.empty() && path[0] != '/') {
            path = startFolder + "/" + path;
        }
    };
    for (Shot& shot : shots) {
        absolute(shot.file);
    }
    absolute(captureDir);
    absolute(videoFile);
    absolute(watchDir);
}

bool DemoOptions::parseOption(const std::string& name, const std::string* value, bool& usedValue,
                              std::string& error) {
    static const std::vector<std::string> withValue = {"--size",  "--vsync", "--aa",   "--quality",
                                                       "--start", "--end",   "--shot", "--capture",
                                                       "--fps",   "--video", "--watch"};
    bool needsValue = std::find(withValue.begin(), withValue.end(), name) != withValue.end();
    if (needsValue && value == nullptr) {
        error = "option " + name + " needs a value";
        return false;
    }
    usedValue = needsValue;
    if (name == "--sync-editor") {
        // The address is optional: a following option is not one.
        syncEditor = true;
        usedValue = value != nullptr && value->rfind("--", 0) != 0;
        if (usedValue && !readEditorAddress(*value)) {
            error = "invalid value '" + *value + "' for " + name +
                    ": expected HOST:PORT with a port from 1 to 65535";
            return false;
        }
        return true;
    }
    const std::string text = needsValue ? *value : "";
    auto invalid = [&](const std::string& expected) {
        error = "invalid value '" + text + "' for " + name + ": expected " + expected;
        return false;
    };
    if (name == "--help") {
        help = true;
    } else if (name == "--version") {
        version = true;
    } else if (name == "--no-launcher") {
        noLauncher = true;
    } else if (name == "--windowed") {
        fullscreen = false;
    } else if (name == "--fullscreen") {
        fullscreen = true;
    } else if (name == "--archive") {
        archive = true;
    } else if (name == "--pack") {
        pack = true;
    } else if (name == "--benchmark") {
        benchmark = true;
    } else if (name == "--dev") {
        dev = true;
    } else if (name == "--watch") {
        if (!File::isFolder(text)) {
            return invalid("a folder with the production's sources");
        }
        watchDir = text;
    } else if (name == "--size") {
        if (!readSize(text, width, height)) {
            return invalid("WxH with sides from 16 to 16384, like 1280x720");
        }
    } else if (name == "--vsync") {
        if (text != "on" && text != "off") {
            return invalid("on or off");
        }
        vsync = text == "on";
    } else if (name == "--aa") {
        if (!readWhole(text, 0, 8, antialiasing) || antialiasing % 2 != 0) {
            return invalid("0, 2, 4, 6 or 8");
        }
    } else if (name == "--quality") {
        if (!readWhole(text, 0, 3, quality)) {
            return invalid("0, 1, 2 or 3");
        }
    } else if (name == "--start" || name == "--end") {
        const bool start = name == "--start";
        long beats = 0;
        if (readBarBeat(text, beats)) {
            (start ? startBarBeat : endBarBeat) = text;
        } else if (!readTime(text, start ? startMs : endMs) &&
                   !readRow(text, start ? startMs : endMs)) {
            return invalid("mm:ss:ms, a row or bar.beat, like 01:04:000, 1280 or 33.1");
        }
        (start ? hasStart : hasEnd) = true;
    } else if (name == "--shot") {
        size_t equals = text.find('=');
        Shot shot{0, equals == std::string::npos ? "" : text.substr(equals + 1)};
        if (equals == std::string::npos || !readTime(text.substr(0, equals), shot.timeMs) ||
            shot.file.size() < 5 || shot.file.compare(shot.file.size() - 4, 4, ".png") != 0) {
            return invalid("mm:ss:ms=FILE.png");
        }
        if (!File::isFolder(folderOf(shot.file))) {
            error = "folder '" + folderOf(shot.file) + "' for " + name + " does not exist";
            return false;
        }
        shots.push_back(shot);
    } else if (name == "--capture") {
        if (text.empty()) {
            return invalid("a folder for the frames");
        }
        captureDir = text;
    } else if (name == "--video") {
        if (!VideoEncoder::knownContainer(text)) {
            return invalid("a video file ending in .mp4, .mkv or .webm");
        }
        if (!File::isFolder(folderOf(text))) {
            error = "folder '" + folderOf(text) + "' for " + name + " does not exist";
            return false;
        }
        videoFile = text;
    } else if (name == "--fps") {
        if (!readWhole(text, 1, 240, fps)) {
            return invalid("frames a second from 1 to 240");
        }
    } else {
        error = "unknown option '" + name + "'";
        return false;
    }
    return true;
}

bool DemoOptions::readEditorAddress(const std::string& text) {
    const size_t colon = text.rfind(':');
    int port = 0;
    if (colon == 0 || colon == std::string::npos ||
        !readWhole(text.substr(colon + 1), 1, 65535, port)) {
        return false;
    }
    editorHost = text.substr(0, colon);
    editorPort = static_cast<unsigned short>(port);
    return true;
}

bool DemoOptions::resolveBarBeats(double beatsPerMinute, std::string& error) {
    for (auto [text, target, name] : {std::tuple{&startBarBeat, &startMs, "--start"},
                                      std::tuple{&endBarBeat, &endMs, "--end"}}) {
        long beats = 0;
        if (text->empty() || !readBarBeat(*text, beats)) {
            continue;
        }
        if (beatsPerMinute <= 0.0) {
            error = std::string(name) + " " + *text +
                    " is bar.beat, but the production gives "
                    "no tempo: use mm:ss:ms or a row";
            return false;
        }
        *target = static_cast<unsigned int>(std::llround(beats * 60000.0 / beatsPerMinute));
        text->clear();
    }
    return checkInterval(error);
}

bool DemoOptions::checkInterval(std::string& error) const {
    const bool known = startBarBeat.empty() && endBarBeat.empty();
    if (known && hasStart && hasEnd && endMs <= startMs) {
        error = "--end must lie after --start";
        return false;
    }
    return true;
}

bool DemoOptions::checkCombination(std::string& error) const {
    if (capture() && fps == 0) {
        error = "--capture DIR needs --fps N";
        return false;
    }
    if (fps > 0 && !capture() && !video()) {
        error = "--fps N goes with --capture DIR or --video FILE";
        return false;
    }
    if (!watchDir.empty() && !dev) {
        error = "--watch DIR goes with --dev";
        return false;
    }
    if (syncEditor && !dev) {
        error = "--sync-editor goes with --dev";
        return false;
    }
    // The encoder's 4:2:0 colour halves both sides.
    if (video() && (width % 2 != 0 || height % 2 != 0)) {
        error = "--video needs an even width and height, not " + std::to_string(width) + "x" +
                std::to_string(height);
        return false;
    }
    if (!checkInterval(error)) {
        return false;
    }
    int offlineModes =
        (capture() ? 1 : 0) + (video() ? 1 : 0) + (shots.empty() ? 0 : 1) + (benchmark ? 1 : 0);
    if (offlineModes > 1) {
        error = "--capture, --video, --shot and --benchmark cannot be combined";
        return false;
    }
    return true;
}
