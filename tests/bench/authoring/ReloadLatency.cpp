// Prints how long a saved shader takes to reach the picture in authoring mode: the test card
// plays with its sources copied to a temporary folder, the flat shader is saved with another
// colour order every few frames, and the time from the save to the first frame whose centre
// pixel shows it is measured, watcher poll included.
//   xvfb-run -a -s "-screen 0 1280x720x24" tests/bench/authoring_latency
#include "Authoring.h"
#include "Demo.h"
#include "FrameListener.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "ScreenMetrics.h"
#include "TestCard.h"

#include <GL/glew.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

const int Saves = 10;

// Saves the shader in turn with red and blue swapped or not; the background's centre pixel
// then changes between reddish and bluish.
class Saver : public FrameListener {
public:
    Saver(fs::path shader, Authoring& mode) : file(std::move(shader)), authoring(mode) {}

    void afterFrame(unsigned int) override {
        // Held near the start, where the background is red.
        if (!authoring.paused()) {
            authoring.togglePause();
        }
        unsigned char rgb[3];
        glReadPixels(80, 45, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, rgb);
        const bool bluish = rgb[2] > rgb[0];
        if (waiting && bluish == swapped) {
            latencies.push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - saved).count());
            waiting = false;
        } else if (!waiting) {
            save();
        }
        if (latencies.size() == Saves) {
            KVTDemosys::setQuit(true);
        }
    }

    std::vector<double> latencies;

private:
    void save() {
        swapped = !swapped;
        std::ofstream(file, std::ios::trunc)
            << "#include colour.inc\nuniform vec4 colour;\nvoid main() {\n"
            << "    gl_FragColor = vec4(colour." << (swapped ? "bgr" : "rgb")
            << " * BRIGHTNESS, colour.a);\n}\n";
        saved = Clock::now();
        waiting = true;
    }

    fs::path file;
    Authoring& authoring;
    bool swapped = false;
    bool waiting = false;
    Clock::time_point saved;
};

} // namespace

int main() {
    const fs::path sources = fs::temp_directory_path() / "authoring_latency";
    fs::remove_all(sources);
    fs::create_directories(sources);
    fs::copy(fs::path(TESTCARD_SOURCE) / "resources", sources / "resources",
             fs::copy_options::recursive);
    fs::current_path(TESTCARD_FOLDER);
    ScreenMetrics metrics;
    testcard::installForLoop(metrics);
    Demo demo(0, nullptr);
    if (!demo.load(&metrics, KVTIO::KVT_RESOURCES_FLAT)) {
        std::cerr << "authoring_latency: " << demo.getMessage() << std::endl;
        return 1;
    }
    demo.init();
    auto authoring = std::make_unique<Authoring>(Authoring::findSources(sources.string()));
    Saver saver(sources / "resources" / "shaders" / "flat.frag", *authoring);
    demo.setAuthoring(authoring.get());
    demo.setFrameListener(&saver);
    demo.run();
    // The overlay goes before the window it draws into.
    authoring.reset();
    demo.dispose();
    delete KVTDemosys::resources;
    fs::remove_all(sources);
    std::vector<double>& ms = saver.latencies;
    std::sort(ms.begin(), ms.end());
    std::cout << "Save to picture over " << ms.size() << " saves: fastest " << ms.front()
              << " ms, median " << ms[ms.size() / 2] << " ms, slowest " << ms.back() << " ms"
              << std::endl;
    return 0;
}
