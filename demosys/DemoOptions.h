#pragma once

#include <string>
#include <vector>

// The command-line choices of a demo run. Without any option the program shows the launcher
// dialog and plays normally; options choose the screen without the dialog, limit the part
// played, render offline (shots, capture, benchmark) or pack the resources.
class DemoOptions {
public:
    struct Shot {
        unsigned int timeMs;
        std::string file;
    };

    // Reads argv; false with a message naming the option and value when one is invalid.
    bool parse(int argc, const char* const* argv, std::string& error);
    static std::string usage(const std::string& program);
    // "WxH" with both sides from 16 to 16384, as --size takes it.
    static bool readSize(const std::string& text, int& width, int& height);
    // Makes relative output paths (shots, capture folder) absolute against startFolder.
    void resolvePaths(const std::string& startFolder);
    // Turns --start and --end given as bar.beat into times at the production's tempo (beats
    // a minute; 0 when it has none); false with a message when they cannot be.
    bool resolveBarBeats(double beatsPerMinute, std::string& error);

    // The launcher is skipped with --no-launcher, --dev and by every offline mode.
    bool showLauncher() const;
    // Offline modes take their clock from the frame counter instead of the music.
    bool framesDriveClock() const { return capture() || video() || !shots.empty() || benchmark; }
    bool capture() const { return !captureDir.empty(); }
    bool video() const { return !videoFile.empty(); }
    // The frame rate of offline rendering, and its fixed time step in milliseconds.
    int framesPerSecond() const;
    double frameStepMs() const;

    // The program's own name, from the command line, for its messages.
    std::string program = "brinova";
    bool help = false;
    bool version = false;
    bool noLauncher = false;
    bool archive = false;
    bool pack = false;
    bool benchmark = false;
    int width = 1280;
    int height = 720;
    bool fullscreen = false;
    bool vsync = true;
    int antialiasing = 0;
    int quality = 2;
    bool hasStart = false;
    unsigned int startMs = 0;
    bool hasEnd = false;
    unsigned int endMs = 0;
    std::string captureDir;
    std::string videoFile;
    int fps = 0;
    std::vector<Shot> shots;
    // Authoring mode, always in a window, and the folder it watches instead of the
    // production's own (empty: the production's).
    bool dev = false;
    std::string watchDir;
    // With --dev: the sync-tracker editor to link to.
    bool syncEditor = false;
    std::string editorHost = "127.0.0.1";
    unsigned short editorPort = 1338;

private:
    // --start or --end as the user wrote them in bar.beat, until the tempo is known.
    std::string startBarBeat;
    std::string endBarBeat;

    bool parseOption(const std::string& name, const std::string* value, bool& usedValue,
                     std::string& error);
    bool checkCombination(std::string& error) const;
    bool readEditorAddress(const std::string& text);
    bool checkInterval(std::string& error) const;
};
