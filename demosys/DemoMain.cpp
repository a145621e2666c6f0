#include "DemoMain.h"

#include "Authoring.h"
#include "BrinovaVersion.h"
#include "Demo.h"
#include "DemoOptions.h"
#include "File.h"
#include "KVTDemosys.h"
#include "KVTGui.h"
#include "KVTIO.h"
#include "OfflineRenderer.h"
#include "ResourceDefinition.h"
#include "ScreenMetrics.h"

#include <FL/Fl.H>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// A capture folder that does not exist yet is made, parents and all.
bool makeCaptureFolder(const DemoOptions& options) {
    if (File::isFolder(options.captureDir)) {
        return true;
    }
    std::error_code failure;
    fs::create_directories(options.captureDir, failure);
    if (failure) {
        std::cerr << options.program << ": cannot make the capture folder '" << options.captureDir
                  << "': " << failure.message() << std::endl;
        return false;
    }
    std::cout << "Made the capture folder '" << options.captureDir << "'" << std::endl;
    return true;
}

// What the production declares about its time line, read before anything opens: a scratch
// copy of its resource list defines its parameters and is thrown away.
struct TimeLine {
    unsigned int endMs;
    double tempo;
};

TimeLine productionTimeLine(const DemoMain::Production& production) {
    std::unique_ptr<ResourceDefinition> scratch(production.makeResources());
    ScreenMetrics metrics;
    metrics.setFullscreenOverride(true);
    scratch->DefineDemoParameters(&metrics);
    return {KVTDemosys::DemoEndTime.getTicks(), scratch->getTempo()};
}

// mm:ss:ms, as the user writes times.
std::string clockText(unsigned int ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%03u", ms / 60000, ms / 1000 % 60, ms % 1000);
    return text;
}

// bar.beat times take the production's tempo; a shot past the end would never be drawn.
bool settleTimes(DemoOptions& options, const TimeLine& timeLine, std::string& error) {
    if (!options.resolveBarBeats(timeLine.tempo, error)) {
        return false;
    }
    const unsigned int end = options.hasEnd ? options.endMs : timeLine.endMs;
    for (const DemoOptions::Shot& shot : options.shots) {
        if (shot.timeMs > end) {
            error =
                "the shot at " + clockText(shot.timeMs) + " lies past the end " + clockText(end);
            return false;
        }
    }
    return true;
}

// The folder of the running executable, so resources beside it are found from anywhere.
bool enterExecutableFolder(std::string& folder) {
    char path[4096];
    ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) {
        return false;
    }
    folder.assign(path, static_cast<size_t>(length));
    folder = folder.substr(0, folder.rfind('/'));
    return chdir(folder.c_str()) == 0;
}

// Shows the launcher and copies its choice into the metrics; false when the viewer left.
bool chooseWithLauncher(ScreenMetrics& metrics) {
    KVTGui gui(450, 300, "Korvath Demosys v.1.0");
    Fl::scheme("gtk+");
    Fl::run();
    metrics.setResolution(KVTGui::getScreenWidth(), KVTGui::getScreenHeight());
    metrics.setFullscreen(KVTGui::getFullscreen());
    metrics.setFullscreenOverride(true);
    metrics.setFSAASamples(KVTGui::getAntialiasing());
    metrics.setQuality(KVTGui::getQuality());
    return !KVTGui::checkQuit();
}

void chooseFromOptions(const DemoOptions& options, ScreenMetrics& metrics) {
    metrics.setResolution(options.width, options.height);
    metrics.setFullscreen(options.fullscreen && !options.dev);
    metrics.setFullscreenOverride(true);
    metrics.setFSAASamples(options.antialiasing);
    metrics.setQuality(options.quality);
    metrics.setVSync(options.vsync && !options.benchmark);
}

// A loader message over several lines, as one.
std::string oneLine(std::string text) {
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// The production's parts into the registry, where loading finds them.
void installProduction(const DemoMain::Production& production) {
    KVTDemosys::pBar = production.makeProgressBar();
    KVTDemosys::shaderCache = production.makeShaderCache();
    KVTDemosys::resources = production.makeResources();
}

// The loader disposes of the other parts.
void removeProduction() {
    delete KVTDemosys::resources;
    KVTDemosys::resources = nullptr;
}

// Loads the production as for a run, so that its declarations are complete, then writes
// resources.7z beside the program from the resources it loaded instead of playing.
int pack(int argc, char** argv, const DemoOptions& options, const std::string& folder,
         const DemoMain::Production& production) {
    ScreenMetrics metrics;
    chooseFromOptions(options, metrics);
    Demo demo(argc, argv);
    installProduction(production);
    // Nothing plays: the frame clock spares decoding the music and opening a sound device.
    demo.useFrameClock(options.frameStepMs());
    demo.load(&metrics, KVTIO::KVT_RESOURCES_FLAT);
    const bool packed = demo.pack();
    demo.dispose();
    removeProduction();
    if (!packed) {
        std::cerr << options.program << ": packing failed" << std::endl;
        return 1;
    }
    std::cout << "Packed " << folder << "/resources.7z" << std::endl;
    return 0;
}

int play(int argc, char** argv, const DemoOptions& options, ScreenMetrics& metrics,
         const DemoMain::Production& production, OfflineRenderer::Clock::time_point start) {
    std::cout << "Run demo" << std::endl;
    Demo demo(argc, argv);
    installProduction(production);
    OfflineRenderer offline(options, start);
    if (options.framesDriveClock()) {
        demo.useFrameClock(options.frameStepMs(), options.benchmark);
        demo.setFrameListener(&offline);
    }
    bool loaded =
        demo.load(&metrics, options.archive ? KVTIO::KVT_RESOURCES_7Z : KVTIO::KVT_RESOURCES_FLAT);
    if (options.hasStart) {
        KVTDemosys::DemoStartTime.setTicks(options.startMs);
    }
    if (options.hasEnd) {
        KVTDemosys::DemoEndTime.setTicks(options.endMs);
    }
    demo.init();
    std::unique_ptr<Authoring> authoring;
    if (options.dev && demo.isValid()) {
        authoring = std::make_unique<Authoring>(Authoring::findSources(
            options.watchDir.empty() ? production.sourceFolder : options.watchDir));
        // Offline frames end at the end time; an author's playing clock waits there.
        authoring->quitAtEnd(options.framesDriveClock());
        if (options.syncEditor) {
            authoring->connectEditor(options.editorHost, options.editorPort);
        }
        demo.setAuthoring(authoring.get());
    }
    demo.run();
    authoring.reset();
    demo.dispose();
    removeProduction();
    if (!loaded) {
        // Said last, so that it is what the user reads; a plain run keeps its status 0.
        std::cerr << options.program << ": loading failed: " << oneLine(demo.getMessage())
                  << std::endl;
        return argc > 1 ? 1 : 0;
    }
    if (!options.framesDriveClock()) {
        return 0;
    }
    return offline.finish() ? 0 : 1;
}

} // namespace

int DemoMain::run(int argc, char** argv, const Production& production) {
    OfflineRenderer::Clock::time_point start = OfflineRenderer::Clock::now();
    DemoOptions options;
    std::string error;
    if (!options.parse(argc, argv, error)) {
        std::cerr << options.program << ": " << error << "\n\n"
                  << DemoOptions::usage(options.program);
        return 2;
    }
    if (options.help) {
        std::cout << DemoOptions::usage(options.program);
        return 0;
    }
    if (options.version) {
        std::cout << options.program << " " << BRINOVA_VERSION << std::endl;
        return 0;
    }
    options.resolvePaths(fs::current_path().string());
    if (!settleTimes(options, productionTimeLine(production), error)) {
        std::cerr << options.program << ": " << error << std::endl;
        return 2;
    }
    if (options.capture() && !makeCaptureFolder(options)) {
        return 2;
    }
    std::string folder;
    if (!enterExecutableFolder(folder)) {
        std::cerr << options.program << ": cannot change to the program's folder" << std::endl;
        return 1;
    }
    const bool fromArchive = options.archive && !options.pack;
    std::string resources = fromArchive ? "resources.7z" : "resources";
    if (!(fromArchive ? access(resources.c_str(), R_OK) == 0 : File::isFolder(resources))) {
        std::cerr << options.program << ": the resources '" << folder << "/" << resources
                  << "' are missing" << std::endl;
        return 1;
    }
    if (options.pack) {
        return pack(argc, argv, options, folder, production);
    }
    ScreenMetrics metrics;
    if (options.showLauncher()) {
        if (!chooseWithLauncher(metrics)) {
            std::cout << "Quit demo" << std::endl;
            return 0;
        }
    } else {
        chooseFromOptions(options, metrics);
    }
    return play(argc, argv, options, metrics, production, start);
}
