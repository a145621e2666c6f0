// Authoring mode on the test card, in-process: the keys (pushed as SDL events) pause and move
// the clock by beats and bars, a loop wraps at its section's end, and edits to a copy of the
// test card's shaders and sync text show on the next frame while broken edits change nothing;
// a sync-tracker editor inside the test keys the tracks live over TCP.
#include "Authoring.h"
#include "Demo.h"
#include "FrameListener.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "RunSupport.h"
#include "ScreenMetrics.h"
#include "SyncEditorLink.h"
#include "SyncText.h"
#include "TestCard.h"
#include "Timer.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackStartStop.h"
#include "TrackSystem.h"

#include <GL/glew.h>
#include <SDL.h>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
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

    // Runs the steps one after the other, a frame each at least: a step that returns false
    // is tried again on the next frame. Stops after the last step or maxFrames.
    int playSteps(const std::vector<std::function<bool(const Frame&)>>& steps, int maxFrames) {
        size_t step = 0;
        play([&](const Frame& frame) {
            step += steps[step](frame) ? 1 : 0;
            return step < steps.size() && frame.number < maxFrames;
        });
        return static_cast<int>(step);
    }

    fs::path sources;
    ScreenMetrics metrics;
    Demo demo{0, nullptr};
    std::unique_ptr<Authoring> authoring;
    std::string output;
};

std::string bigEndian(unsigned int value) {
    const unsigned int net = htonl(value);
    return std::string(reinterpret_cast<const char*>(&net), 4);
}

std::string setKey(unsigned int track, unsigned int row, float value, char type) {
    unsigned int bits;
    std::memcpy(&bits, &value, 4);
    return '\0' + bigEndian(track) + bigEndian(row) + bigEndian(bits) + type;
}

// A sync-tracker editor: listens on an ephemeral port of 127.0.0.1 and, between the demo's
// frames, takes its connection, reads what it sent and answers. Nothing here waits.
class TestEditor {
public:
    TestEditor() {
        listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(listener, reinterpret_cast<sockaddr*>(&address), size);
        listen(listener, 4);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        port = ntohs(address.sin_port);
    }
    ~TestEditor() {
        hangUp();
        close(listener);
    }

    bool accept() {
        peer = ::accept(listener, nullptr, nullptr);
        received.clear();
        // Each message goes out at once, to be read by the demo's next frame.
        const int noDelay = 1;
        setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
        return peer >= 0;
    }
    // True once count bytes arrived; they are then taken into out.
    bool take(size_t count, std::string& out) {
        char chunk[4096];
        ssize_t got;
        while ((got = recv(peer, chunk, sizeof chunk, MSG_DONTWAIT)) > 0) {
            received.append(chunk, static_cast<size_t>(got));
        }
        if (received.size() < count) {
            return false;
        }
        out = received.substr(0, count);
        received.erase(0, count);
        return true;
    }
    // The names of GET_TRACK requests, once count of them arrived.
    bool takeTrackNames(size_t count, std::vector<std::string>& names) {
        std::string ignored;
        take(0, ignored);
        while (names.size() < count && received.size() >= 5) {
            EXPECT_EQ(received[0], 2) << "GET_TRACK";
            const size_t size = ntohl(*reinterpret_cast<const uint32_t*>(received.data() + 1));
            if (received.size() < 5 + size) {
                break;
            }
            names.push_back(received.substr(5, size));
            received.erase(0, 5 + size);
        }
        return names.size() == count;
    }
    void send(const std::string& bytes) { ::send(peer, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
    void hangUp() {
        if (peer >= 0) {
            close(peer);
        }
        peer = -1;
    }

    unsigned short port = 0;

private:
    int listener = -1;
    int peer = -1;
    std::string received;
};

const std::vector<std::string> TestCardTracks = {"background:active",
                                                 "background:red",
                                                 "background:green",
                                                 "background:blue",
                                                 "box:active",
                                                 "box:x",
                                                 "box:y",
                                                 "box:red",
                                                 "box:green",
                                                 "box:blue",
                                                 "composite:active",
                                                 "cover:active",
                                                 "cover:x",
                                                 "cover:y",
                                                 "cover:red",
                                                 "cover:green",
                                                 "cover:blue"};
const unsigned int BackgroundRed = 1;
const char Linear = 1;
const char Step = 0;

} // namespace

TEST_F(AuthoringSession, EditorKeysTracksLiveSeeksPausesAndSaves) {
    TestEditor editor;
    authoring->connectEditor("127.0.0.1", editor.port);
    const TrackInterpolate* red =
        KVTDemosys::tracks->getTrackGroupByName("background")->getInterpolateTrackByName("red");
    std::string bytes;
    std::vector<std::string> names;
    std::vector<float> values;
    std::vector<unsigned int> rowsSent;
    const int steps = playSteps(
        {[&](const Frame&) { return editor.accept(); },
         [&](const Frame&) {
             if (!editor.take(19, bytes)) {
                 return false;
             }
             EXPECT_EQ(bytes, "hello, synctracker!");
             editor.send("hello, demo!");
             return true;
         },
         [&](const Frame&) { return editor.takeTrackNames(TestCardTracks.size(), names); },
         [&](const Frame& frame) {
             EXPECT_EQ(red->size(), 0u) << "the editor is the master: no keys until it sends";
             EXPECT_EQ(frame.centre[0], 0);
             // Paused at row 10 (0.5 s, only the background draws) with red 0.25 from row 0
             // and 0.75 from row 10, then a key on a read-only track.
             editor.send(std::string("\x04\x01", 2) + '\x03' + bigEndian(10) +
                         setKey(BackgroundRed, 0, 0.25f, Linear) +
                         setKey(BackgroundRed, 10, 0.75f, Step) + setKey(0, 5, 1.0f, Step));
             return true;
         },
         [&](const Frame& frame) {
             if (frame.time != 500) {
                 return false;
             }
             EXPECT_TRUE(authoring->paused());
             values.push_back(red->getValue(frame.time));
             EXPECT_NEAR(frame.centre[0], 191, 2) << "the picture shows the new key";
             editor.send(std::string("\x01", 1) + bigEndian(BackgroundRed) + bigEndian(10));
             return true;
         },
         [&](const Frame& frame) {
             values.push_back(red->getValue(frame.time));
             editor.send(std::string("\x05", 1));
             return true;
         },
         [&](const Frame&) {
             editor.send(std::string("\x04\x00", 2));
             return true;
         },
         [&](const Frame&) {
             while (editor.take(5, bytes)) {
                 EXPECT_EQ(bytes[0], 3) << "SET_ROW";
                 rowsSent.push_back(ntohl(*reinterpret_cast<const uint32_t*>(bytes.data() + 1)));
             }
             SDL_Delay(20);
             return rowsSent.size() >= 3;
         }},
        400);
    EXPECT_EQ(steps, 8);
    EXPECT_EQ(names, TestCardTracks);
    EXPECT_EQ(values, (std::vector<float>{0.75f, 0.25f})) << "SET_KEY, then DELETE_KEY";
    ASSERT_GE(rowsSent.size(), 3u);
    EXPECT_GT(rowsSent.back(), rowsSent.front()) << "a playing demo tells its row";
    EXPECT_GE(rowsSent.back(), 11u) << "playing on from the row the editor set";

    // The saved text keeps its comments and intervals and compiles back into the same keys.
    const std::string saved = readText(sources / "testcard.sync");
    EXPECT_NE(saved.find("# Background colour over the whole piece"), std::string::npos);
    EXPECT_NE(saved.find("start 00:01:000 offscreen\nstop 00:02:000\n"), std::string::npos);
    synctext::Document document;
    std::string error;
    ASSERT_TRUE(synctext::parse(saved, "testcard.sync", nullptr, document, error)) << error;
    const synctext::Effect& background = document.effects.at(0);
    ASSERT_EQ(background.tracks.at(0).name, "red");
    ASSERT_EQ(background.tracks[0].keyframes.size(), 1u);
    EXPECT_EQ(background.tracks[0].keyframes[0].row, 0u);
    EXPECT_EQ(background.tracks[0].keyframes[0].value, 0.25f);
    EXPECT_EQ(background.tracks[0].keyframes[0].interpolation, TrackInterpolate::LINEAR);
    EXPECT_TRUE(background.tracks[1].keyframes.empty()) << "green was never keyed";
    EXPECT_EQ(document.effects.at(1).intervals.size(), 2u);
    EXPECT_TRUE(authoring->editor()->linked());
    authoring.reset();
    output = testing::internal::GetCapturedStdout();
    EXPECT_NE(output.find("saved the tracks into"), std::string::npos) << output;
    EXPECT_NE(output.find("'background:active' only shows"), std::string::npos) << output;
    testing::internal::CaptureStdout();
}

// Each connection breaks the protocol another way; the link closes with the reason, the
// picture goes on, and the demo comes back no sooner than a second later.
TEST_F(AuthoringSession, BrokenEditorsCloseTheLinkAndTheDemoPlaysOn) {
    KVTDemosys::DemoEndTime.setTicks(60000);
    authoring->quitAtEnd(false);
    TestEditor editor;
    authoring->connectEditor("127.0.0.1", editor.port);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"hello, demo?", "greeting"},
        {std::string("hello, demo!\x09", 13), "unknown command 9"},
        {"hello, demo!" + setKey(0, 1, 1.0f, Linear).substr(0, 6), "in the middle of a message"},
        {"hello, demo!" + setKey(99, 1, 1.0f, Linear), "track 99 of 17"},
        {"hello, demo!", "the editor"}};
    std::vector<unsigned int> acceptedAt;
    std::vector<std::string> problems;
    unsigned int closedAt = 0;
    std::string greeting;
    std::vector<std::function<bool(const Frame&)>> steps;
    for (const auto& [bytes, reason] : cases) {
        steps.push_back([&](const Frame&) {
            if (!editor.accept()) {
                return false;
            }
            acceptedAt.push_back(SDL_GetTicks());
            return true;
        });
        steps.push_back([&, sent = bytes](const Frame&) {
            if (!editor.take(19, greeting)) {
                return false;
            }
            // The last editor vanishes as soon as it greeted, while the demo asks for tracks.
            editor.send(sent);
            editor.hangUp();
            return true;
        });
        steps.push_back([&](const Frame& frame) {
            if (authoring->editor()->linked() || authoring->editor()->lastProblem().empty()) {
                return false;
            }
            problems.push_back(authoring->editor()->lastProblem());
            closedAt = frame.time;
            return true;
        });
        steps.push_back([&](const Frame& frame) { return frame.time > closedAt; });
    }
    EXPECT_EQ(playSteps(steps, 20000), static_cast<int>(steps.size()));
    ASSERT_EQ(problems.size(), cases.size());
    for (size_t i = 0; i < cases.size(); ++i) {
        EXPECT_NE(problems[i].find(cases[i].second), std::string::npos) << problems[i];
    }
    for (size_t i = 1; i < acceptedAt.size(); ++i) {
        EXPECT_GE(acceptedAt[i] - acceptedAt[i - 1], SyncEditorLink::RetryIntervalMs - 50)
            << "at most one attempt a second";
    }
}

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
    // A loaded machine may take a while to show the first frame after resuming.
    EXPECT_LT(resumedTimes.front(), 1500u);
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
