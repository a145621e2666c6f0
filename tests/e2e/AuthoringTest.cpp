// Authoring mode on the test card, in-process: the keys (pushed as SDL events) pause and move
// the clock by beats and bars, a loop wraps at its section's end, and edits to a copy of the
// test card's shaders and sync text show on the next frame while broken edits change nothing.
#include "Authoring.h"
#include "Demo.h"
#include "FrameListener.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "RunSupport.h"
#include "ScreenMetrics.h"
#include "TestCard.h"
#include "Timer.h"
#include "TrackGroup.h"
#include "TrackStartStop.h"
#include "TrackSystem.h"

#include <GL/glew.h>
#include <SDL.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

namespace fs = std::filesystem;

namespace {

using Pixel = std::array<int, 3>;

Pixel pixelAt(int x, int y, GLenum buffer = GL_BACK) {
    unsigned char rgb[3] = {0, 0, 0};
    glReadBuffer(buffer);
    glReadPixels(x, y, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, rgb);
    glReadBuffer(GL_BACK);
    return {rgb[0], rgb[1], rgb[2]};
}

std::string readText(const fs::path& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::trunc) << text;
}

// What a script sees of a frame: its number from 1, its time, its centre pixel, and a corner
// pixel of the previous frame as the window got it. Mesa's software renderer keeps the back
// buffer through the swap, so that corner still holds whatever was drawn after the effects.
struct Frame {
    int number;
    unsigned int time;
    Pixel centre;
    Pixel shownCorner;
};

// Runs the script once a frame, after the effects have drawn, until it returns false; keys it
// pushes are seen by the next frame's event handling.
class Script : public FrameListener {
public:
    using Step = std::function<bool(const Frame& frame)>;
    explicit Script(Step step) : run(std::move(step)) {}
    void beforeFrame() override { shownCorner = pixelAt(5, 5); }
    void afterFrame(unsigned int time) override {
        if (!run(Frame{++frame, time, pixelAt(80, 45), shownCorner})) {
            KVTDemosys::setQuit(true);
        }
    }

private:
    Step run;
    int frame = 0;
    Pixel shownCorner{};
};

void pushKey(SDL_Keycode key, Uint16 modifiers = KMOD_NONE) {
    SDL_Event event{};
    event.type = SDL_KEYDOWN;
    event.key.keysym.sym = key;
    event.key.keysym.mod = modifiers;
    SDL_PushEvent(&event);
}

// The test card loaded in this process with authoring mode on sources copied to a temporary
// folder, so tests may edit them.
class AuthoringSession : public testing::Test {
protected:
    void SetUp() override {
        sources = fs::temp_directory_path() / ("authoring_" + std::to_string(getpid()));
        fs::remove_all(sources);
        fs::create_directories(sources);
        fs::copy(fs::path(TESTCARD_SOURCE) / "resources", sources / "resources",
                 fs::copy_options::recursive);
        fs::copy(fs::path(TESTCARD_SOURCE) / "testcard.sync", sources / "testcard.sync");
        fs::current_path(TESTCARD_FOLDER);
        // Each test plays its own loop: the previous one ended by quitting.
        KVTDemosys::setQuit(false);
        testcard::installForLoop(metrics);
        testing::internal::CaptureStdout();
        ASSERT_TRUE(demo.load(&metrics, KVTIO::KVT_RESOURCES_FLAT));
        demo.init();
        authoring = std::make_unique<Authoring>(Authoring::findSources(sources.string()));
        demo.setAuthoring(authoring.get());
    }

    void TearDown() override {
        output = testing::internal::GetCapturedStdout();
        authoring.reset();
        demo.dispose();
        delete KVTDemosys::resources;
        fs::remove_all(sources);
    }

    void play(Script::Step step) {
        Script script(std::move(step));
        demo.setFrameListener(&script);
        demo.run();
    }

    // Pauses at time, then saves the texts into file one a frame, each looked for at once;
    // returns the centre pixel of the paused frame and of the frame after each save.
    std::vector<Pixel> saveInTurn(unsigned int time, const fs::path& file,
                                  const std::vector<std::string>& texts) {
        std::vector<Pixel> centres;
        play([&](const Frame& frame) {
            const size_t saves = static_cast<size_t>(frame.number) - 1;
            if (frame.number == 1) {
                authoring->togglePause();
                authoring->seek(time);
            } else {
                centres.push_back(frame.centre);
            }
            if (saves >= 1 && saves <= texts.size()) {
                writeText(file, texts[saves - 1]);
                authoring->reloadChanged();
            }
            return saves <= texts.size();
        });
        return centres;
    }

    unsigned int row() const { return KVTDemosys::timer->getRow(); }

    fs::path sources;
    ScreenMetrics metrics;
    Demo demo{0, nullptr};
    std::unique_ptr<Authoring> authoring;
    std::string output;
};

} // namespace

TEST_F(AuthoringSession, KeysPauseResumeAndStepByBeatsAndBars) {
    // The piece is four seconds; room for eight bars at 120 beats a minute.
    KVTDemosys::DemoEndTime.setTicks(60000);
    // Each key with the row the next frame shows: a beat is 10 rows, a bar 40.
    const std::vector<std::tuple<SDL_Keycode, Uint16, unsigned int>> keys = {
        {SDLK_HOME, KMOD_NONE, 0},   {SDLK_RIGHT, KMOD_LSHIFT, 40},   {SDLK_RIGHT, KMOD_NONE, 50},
        {SDLK_LEFT, KMOD_NONE, 40},  {SDLK_PAGEDOWN, KMOD_NONE, 360}, {SDLK_PAGEUP, KMOD_NONE, 40},
        {SDLK_LEFT, KMOD_RSHIFT, 0}, {SDLK_RIGHT, KMOD_NONE, 10}};
    std::vector<unsigned int> pausedTimes;
    std::vector<unsigned int> resumedTimes;
    size_t key = 0;
    play([&](const Frame& frame) {
        const unsigned int time = frame.time;
        if (frame.number == 1) {
            pushKey(SDLK_SPACE);
        } else if (frame.number <= 4) {
            pausedTimes.push_back(time);
            SDL_Delay(40);
        } else if (key < keys.size()) {
            if (frame.number > 5) {
                EXPECT_EQ(row(), std::get<2>(keys[key])) << "key " << key;
                ++key;
            }
            if (key < keys.size()) {
                pushKey(std::get<0>(keys[key]), std::get<1>(keys[key]));
            } else {
                pushKey(SDLK_SPACE);
            }
        } else {
            resumedTimes.push_back(time);
            SDL_Delay(40);
        }
        return resumedTimes.size() < 4;
    });
    ASSERT_EQ(pausedTimes.size(), 3u);
    EXPECT_EQ(pausedTimes[0], pausedTimes[2]) << "a paused clock stands still";
    EXPECT_TRUE(authoring->paused() == false);
    EXPECT_GE(resumedTimes.front(), 500u) << "resumed from the last seek, at row 10";
    EXPECT_LT(resumedTimes.front(), 700u);
    EXPECT_GT(resumedTimes.back(), resumedTimes.front()) << "and moving again";
}

TEST_F(AuthoringSession, LoopWrapsAtTheEndOfItsSection) {
    unsigned int latest = 0;
    int wraps = 0;
    play([&](const Frame& frame) {
        const unsigned int time = frame.time;
        if (frame.number == 1) {
            authoring->seek(1700);
            return true;
        }
        if (frame.number == 2) {
            authoring->toggleLoop();
            EXPECT_EQ(authoring->loop()->start, 0u) << "the section 'red' holds the play head";
            EXPECT_EQ(authoring->loop()->end, 2000u) << "up to the section 'green'";
        }
        EXPECT_LT(time, 2000u) << "never past the loop's end";
        wraps += time < latest ? 1 : 0;
        latest = time;
        SDL_Delay(20);
        return wraps < 1 && frame.number < 200;
    });
    EXPECT_EQ(wraps, 1);
    EXPECT_LT(latest, 300u) << "wrapped to the section's start";
    authoring->toggleLoop();
    EXPECT_EQ(authoring->loop(), nullptr);
}

TEST_F(AuthoringSession, ShaderEditsShowOnTheNextFrameAndBrokenOnesChangeNothing) {
    const fs::path frag = sources / "resources" / "shaders" / "flat.frag";
    const std::string original = readText(frag);
    const std::vector<Pixel> centre =
        saveInTurn(500, frag,
                   {std::regex_replace(original, std::regex("colour\\.rgb"), "colour.bgr"),
                    original + "\nvoid broken() { undeclared = 1.0; }\n"});
    ASSERT_EQ(centre.size(), 3u);
    // 0.5 s into the fade from red to green.
    EXPECT_NEAR(centre[0][0], 191, 2);
    EXPECT_NEAR(centre[0][1], 64, 2);
    EXPECT_EQ(centre[0][2], 0);
    EXPECT_EQ(centre[1], (Pixel{centre[0][2], centre[0][1], centre[0][0]}))
        << "the edited shader swaps red and blue from the next frame";
    EXPECT_EQ(centre[2], centre[1]) << "the broken edit keeps the last good program";
    const int brokenLine = static_cast<int>(std::count(original.begin(), original.end(), '\n')) + 2;
    EXPECT_NE(authoring->problems().find("flat.frag, line " + std::to_string(brokenLine)),
              std::string::npos)
        << authoring->problems();
}

TEST_F(AuthoringSession, SyncEditsMoveIntervalsAndBrokenOnesKeepTheTracks) {
    const fs::path sync = sources / "testcard.sync";
    const std::string original = readText(sync);
    const TrackStartStop* cover =
        KVTDemosys::tracks->getTrackGroupByName("cover")->getStartStopTrack();
    // The blue box's interval moves from 2.75 s to 0.5 s; then the box is declared twice.
    const std::vector<Pixel> centre =
        saveInTurn(600, sync,
                   {std::regex_replace(original, std::regex("start 00:02:750"), "start 00:00:500"),
                    original + "effect cover\n"});
    ASSERT_EQ(centre.size(), 3u);
    EXPECT_EQ(centre[0][2], 0) << "only the background at 0.6 s";
    EXPECT_EQ(centre[1], (Pixel{0, 0, 255})) << "the blue box now draws at 0.6 s";
    EXPECT_EQ(centre[2], centre[1]) << "the broken text keeps the tracks";
    EXPECT_TRUE(cover->rowIsStartKeyFrame(10));
    EXPECT_FALSE(cover->rowExists(55));
    const int brokenLine = static_cast<int>(std::count(original.begin(), original.end(), '\n')) + 1;
    EXPECT_NE(authoring->problems().find("testcard.sync:" + std::to_string(brokenLine) + ":"),
              std::string::npos)
        << authoring->problems();
}

TEST_F(AuthoringSession, OverlayDrawsIntoTheWindowAndF1HidesIt) {
    std::vector<bool> overlaid;
    play([&](const Frame& frame) {
        if (frame.number == 1) {
            authoring->togglePause();
        } else if (frame.number == 3) {
            pushKey(SDLK_F1);
        }
        // The corner shows the effects' picture unless the timeline was drawn over it.
        overlaid.push_back(frame.shownCorner != pixelAt(5, 5));
        return frame.number < 6;
    });
    ASSERT_EQ(overlaid.size(), 6u);
    EXPECT_TRUE(overlaid[2]) << "the timeline covers the bottom of the window";
    EXPECT_FALSE(authoring->overlayShown());
    EXPECT_FALSE(overlaid[5]) << "F1 hid it";
}

TEST(Authoring, CapturesNeverHoldTheOverlay) {
    const fs::path root = fs::temp_directory_path() / ("overlay_" + std::to_string(getpid()));
    fs::remove_all(root);
    const std::string common =
        std::string(TESTCARD_DEMO) +
        " --size 320x180 --fps 10 --start 00:01:000 --end 00:01:500 --capture ";
    e2e::Outcome plain = e2e::runCommand(common + (root / "plain").string());
    e2e::Outcome dev = e2e::runCommand(common + (root / "dev").string() + " --dev");
    ASSERT_EQ(plain.status, 0) << plain.output;
    ASSERT_EQ(dev.status, 0) << dev.output;
    EXPECT_NE(dev.output.find("[Authoring]"), std::string::npos) << dev.output;
    int frames = 0;
    for (const auto& entry : fs::directory_iterator(root / "plain")) {
        e2e::Picture withoutDev = e2e::load(entry.path());
        e2e::Picture withDev = e2e::load(root / "dev" / entry.path().filename());
        ASSERT_EQ(withoutDev.width, 320);
        EXPECT_EQ(withDev.rgb, withoutDev.rgb) << entry.path().filename();
        ++frames;
    }
    EXPECT_EQ(frames, 5);
    fs::remove_all(root);
}
