// Runs the test card's executable with offline options and checks the pictures it writes.
#include "RunSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

using e2e::load;
using e2e::Outcome;
using e2e::Picture;
using e2e::runCommand;

const int Width = 160;
const int Height = 90;

Outcome runDemo(const std::string& program, const std::string& arguments) {
    return runCommand(program + " --no-launcher --size " + std::to_string(Width) + "x" +
                      std::to_string(Height) + " " + arguments);
}

// Screen units (-1 to 1, y up) to the pixel of a top-row-first picture.
std::array<int, 3> pixelAtScreen(const Picture& picture, float x, float y) {
    int px = static_cast<int>((x + 1.0f) * 0.5f * picture.width);
    int py = static_cast<int>((1.0f - (y + 1.0f) * 0.5f) * picture.height);
    return picture.at(std::min(px, picture.width - 1), std::min(py, picture.height - 1));
}

void expectColour(const std::array<int, 3>& actual, int r, int g, int b, const std::string& where) {
    EXPECT_NEAR(actual[0], r, 4) << where;
    EXPECT_NEAR(actual[1], g, 4) << where;
    EXPECT_NEAR(actual[2], b, 4) << where;
}

class TestCardRun : public e2e::TestFolder {
protected:
    TestCardRun() : TestFolder("brinova_e2e_") {}

    // A copy of the test card with its resources, to be damaged by a test.
    std::string copyOfTestCard() {
        fs::path copy = folder / "card";
        fs::create_directories(copy);
        fs::copy(TESTCARD_FOLDER, copy, fs::copy_options::recursive);
        return (copy / fs::path(TESTCARD_DEMO).filename()).string();
    }

    std::string shot(const std::string& time, const std::string& name) {
        return "--shot " + time + "=" + (folder / name).string();
    }
};

} // namespace

TEST_F(TestCardRun, EffectsDrawInTheirIntervalsTargetsAndPriorities) {
    Outcome run = runDemo(TESTCARD_DEMO,
                          shot("00:00:500", "a.png") + " " + shot("00:01:200", "b.png") + " " +
                              shot("00:01:500", "c.png") + " " + shot("00:01:900", "d.png") + " " +
                              shot("00:02:250", "e.png") + " " + shot("00:02:600", "f.png") + " " +
                              shot("00:02:900", "g.png") + " " + shot("00:03:500", "h.png"));
    ASSERT_EQ(run.status, 0) << run.output;

    Picture early = load(folder / "a.png");
    ASSERT_EQ(early.width, Width);
    ASSERT_EQ(early.height, Height);
    expectColour(pixelAtScreen(early, 0, 0), 191, 64, 0, "background alone at 0.5 s");

    Picture composited = load(folder / "c.png");
    expectColour(pixelAtScreen(composited, 0, 0), 255, 255, 255, "off-screen box composited");
    expectColour(pixelAtScreen(composited, 0, 0.8f), 64, 191, 0, "background above the box");

    Picture left = load(folder / "b.png");
    Picture right = load(folder / "d.png");
    expectColour(pixelAtScreen(left, -0.6f, 0), 255, 255, 255, "box on the left at 1.2 s");
    expectColour(pixelAtScreen(right, -0.6f, 0), 13, 242, 0,
                 "the off-screen target was cleared since the box moved right");
    expectColour(pixelAtScreen(right, 0.5f, 0), 255, 255, 255, "box on the right at 1.9 s");

    expectColour(pixelAtScreen(load(folder / "e.png"), 0, 0), 0, 255, 0, "between intervals");
    expectColour(pixelAtScreen(load(folder / "f.png"), 0, 0), 255, 255, 255, "box on screen");
    expectColour(pixelAtScreen(load(folder / "g.png"), 0, 0), 0, 0, 255,
                 "the later priority draws on top");
    expectColour(pixelAtScreen(load(folder / "h.png"), 0, 0), 0, 255, 0, "after every interval");
}

// An offline render covers start <= t < end: frames at start + k / fps, numbered from 0.
TEST_F(TestCardRun, CaptureWritesTheFramesOfTheIntervalExactly) {
    Outcome run = runDemo(TESTCARD_DEMO, "--capture " + folder.string() + " --fps 10");
    ASSERT_EQ(run.status, 0) << run.output;
    int frames = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        frames += entry.path().extension() == ".png" ? 1 : 0;
    }
    EXPECT_EQ(frames, 40) << "0 to 4 s at 10 frames a second, the end excluded";
    expectColour(pixelAtScreen(load(folder / "frame000005.png"), 0, 0), 191, 64, 0,
                 "frame 5 shows 0.5 s");
    EXPECT_NE(run.output.find("Duration : (0000003900)-[00:03:900]\nRendered 40 frames in "),
              std::string::npos)
        << run.output;
}

TEST_F(TestCardRun, BenchmarkPrintsLoadTimeAndFrameStatistics) {
    Outcome run = runDemo(TESTCARD_DEMO, "--benchmark --end 00:03:000");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("Benchmark: load time (start to first frame) "), std::string::npos);
    // The load includes decoding the music, which must be sound, though none plays.
    EXPECT_NE(run.output.find("Sound : decoded 'resources/sound/testcard.flac' (not played"),
              std::string::npos);
    std::string program = copyOfTestCard();
    std::ofstream(fs::path(program).parent_path() / "resources/sound/testcard.flac")
        << std::string(4096, 'x');
    Outcome broken = runDemo(program, "--benchmark --end 00:00:300");
    EXPECT_EQ(broken.status, 1);
    EXPECT_NE(broken.output.find("The decoder cannot read it: 'resources/sound/testcard.flac'"),
              std::string::npos)
        << broken.output;
    EXPECT_NE(run.output.find("Benchmark: 181 frames, mean "), std::string::npos) << run.output;
    // Section by section: the frames timed before 2 s are red's, the rest green's.
    EXPECT_NE(run.output.find("Benchmark: section red from (0000000000)-[00:00:000]: 119 frames"),
              std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("Benchmark: section green from (0000002000)-[00:02:000]: 62 frames"),
              std::string::npos);
    // The capability report follows its heading: the limits, then the extension names.
    const size_t report = run.output.find("[Supported OpenGL Extensions]\n"
                                          "--- Implementation Independent API Values ---\n");
    ASSERT_NE(report, std::string::npos) << run.output;
    EXPECT_NE(run.output.find("GL_ARB_texture_float ", report), std::string::npos);
    EXPECT_NE(run.output.find("99th "), std::string::npos);
}

TEST_F(TestCardRun, InvalidOptionsStopBeforeAnythingStarts) {
    Outcome run = runCommand(std::string(TESTCARD_DEMO) + " --size 12");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("invalid value '12' for --size"), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("[Creating DataPools]"), std::string::npos);
    EXPECT_EQ(runCommand(std::string(TESTCARD_DEMO) + " --version").status, 0);
    // The end is the production's unless --end moves it; bar.beat follows its tempo.
    for (const std::string& late :
         {std::string("--shot 00:05:000=x.png"), std::string("--end 1.2 --shot 00:00:600=x.png")}) {
        Outcome past = runDemo(TESTCARD_DEMO, late);
        EXPECT_EQ(past.status, 2) << late;
        EXPECT_NE(past.output.find(late[2] == 's'
                                       ? "the shot at 00:05:000 lies past the end 00:04:000"
                                       : "the shot at 00:00:600 lies past the end 00:00:500"),
                  std::string::npos)
            << past.output;
        EXPECT_EQ(past.output.find("[Creating DataPools]"), std::string::npos);
    }
}

// Output paths the user types are relative to where they stand, not to the program's folder;
// a capture folder is made when missing; the program names itself.
TEST_F(TestCardRun, RelativePathsAreTheUsersAndTheProgramNamesItself) {
    const std::string inFolder = "cd " + folder.string() + " && " + TESTCARD_DEMO;
    Outcome shot = runCommand(inFolder + " --no-launcher --size 160x90 --shot 00:00:500=mine.png");
    ASSERT_EQ(shot.status, 0) << shot.output;
    EXPECT_NE(shot.output.find("'resources/sound/testcard.flac' is not decoded"),
              std::string::npos);
    EXPECT_TRUE(fs::exists(folder / "mine.png"));
    Outcome capture = runCommand(inFolder + " --no-launcher --size 160x90 --end 00:00:200"
                                            " --capture frames/deep --fps 10");
    ASSERT_EQ(capture.status, 0) << capture.output;
    EXPECT_TRUE(fs::exists(folder / "frames/deep/frame000000.png")) << capture.output;
    EXPECT_NE(capture.output.find("Made the capture folder '" + (folder / "frames/deep").string()),
              std::string::npos);
    EXPECT_NE(
        runCommand(std::string(TESTCARD_DEMO) + " --help").output.find("Usage: testcard_demo"),
        std::string::npos);
}

TEST_F(TestCardRun, MissingResourceFolderIsNamed) {
    fs::path lonely = folder / "lonely";
    fs::create_directories(lonely);
    fs::copy_file(TESTCARD_DEMO, lonely / "demo");
    Outcome run = runDemo((lonely / "demo").string(), shot("00:00:000", "x.png"));
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("the resources '" + lonely.string() + "/resources' are missing"),
              std::string::npos)
        << run.output;
}

TEST_F(TestCardRun, LoaderFailuresAreReportedAtShutdown) {
    struct Damage {
        std::string file;
        std::string message;
        // Written over the file; the file is removed when empty.
        std::string bytes;
    };
    const std::vector<Damage> cases = {
        {"resources/shaders/flat.frag", "Fragement shader 'flat.frag' not found", ""},
        {"resources/shaders/colour.inc", "Failed to include '#include colour.inc'", ""},
        {"resources/graphics/Check.png",
         "Failed to load texture!\nFile : 'resources/graphics/Check.png'", ""},
        {"resources/shaders/colour.inc",
         "Error while compiling fragment shader\nShader: flat.frag\nFirst error in colour.inc, "
         "line 4: ",
         "#ifndef BRIGHTNESS\n#define BRIGHTNESS 1.0\n#endif\nvec3 broken( {\n"},
        {"resources/tracks/index.list", "Track file 'resources/tracks/index.list' is missing", ""},
        {"resources/tracks/track.data", "Track file 'resources/tracks/track.data' is missing", ""},
        {"resources/tracks/index.list",
         "Track file 'resources/tracks/index.list' is corrupt: the index has no valid entry count",
         std::string("\xfb\xff\xff\xff", 4)},
    };
    for (const Damage& damage : cases) {
        std::string program = copyOfTestCard();
        const fs::path damaged = fs::path(program).parent_path() / damage.file;
        fs::remove(damaged);
        if (!damage.bytes.empty()) {
            std::ofstream(damaged, std::ios::binary) << damage.bytes;
        }
        Outcome run = runDemo(program, shot("00:00:500", "x.png"));
        EXPECT_EQ(run.status, 1) << damage.file;
        size_t shutdown = run.output.find("[Shutting Down]");
        ASSERT_NE(shutdown, std::string::npos) << run.output;
        EXPECT_NE(run.output.find("Message from resourceloader\n" + damage.message, shutdown),
                  std::string::npos)
            << run.output;
        // The failure is the last thing said, on one line.
        std::string said = damage.message;
        std::replace(said.begin(), said.end(), '\n', ' ');
        const std::string output = run.output.substr(0, run.output.size() - 1);
        EXPECT_EQ(output.substr(output.rfind('\n') + 1)
                      .rfind("testcard_demo: loading failed: " + said, 0),
                  0u)
            << run.output;
        fs::remove_all(folder / "card");
    }
}

TEST_F(TestCardRun, CorruptTrackDataIsNamedAndTheDemoStillPlays) {
    std::string program = copyOfTestCard();
    fs::path data = fs::path(program).parent_path() / "resources/tracks/track.data";
    fs::resize_file(data, fs::file_size(data) / 2);
    Outcome run = runDemo(program, shot("00:00:500", "x.png"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("Track file 'resources/tracks/track.data' is corrupt"),
              std::string::npos)
        << run.output;
    EXPECT_TRUE(fs::exists(folder / "x.png"));
}

// The archive holds what the test card declares, shader includes too, and nothing else from
// the folder (neither the launcher's banner nor a stray file).
TEST_F(TestCardRun, PackedResourcesPlayLikeTheFolder) {
    std::string program = copyOfTestCard();
    fs::path card = fs::path(program).parent_path();
    fs::copy_file(card / "resources/graphics/Check.png", card / "resources/graphics/Stray.png");
    Outcome pack = runCommand(program + " --pack");
    ASSERT_EQ(pack.status, 0) << pack.output;
    ASSERT_TRUE(fs::exists(card / "resources.7z"));
    Outcome listing = runCommand("cd '" + card.string() + "' && 7zz l -ba -slt resources.7z");
    std::set<std::string> entries;
    std::istringstream lines(listing.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("Path = ", 0) == 0) {
            entries.insert(line.substr(7));
        }
    }
    EXPECT_EQ(entries,
              (std::set<std::string>{"resources/graphics/Check.png", "resources/shaders/colour.inc",
                                     "resources/shaders/copy.frag", "resources/shaders/copy.vert",
                                     "resources/shaders/flat.frag", "resources/shaders/flat.vert",
                                     "resources/sound/testcard.flac", "resources/tracks/index.list",
                                     "resources/tracks/track.data"}))
        << listing.output;
    Outcome folderRun = runDemo(program, shot("00:02:900", "folder.png"));
    fs::rename(card / "resources", card / "moved-away");
    Outcome archiveRun = runDemo(program, "--archive " + shot("00:02:900", "archive.png"));
    ASSERT_EQ(folderRun.status, 0) << folderRun.output;
    ASSERT_EQ(archiveRun.status, 0) << archiveRun.output;
    Picture fromFolder = load(folder / "folder.png");
    Picture fromArchive = load(folder / "archive.png");
    ASSERT_EQ(fromArchive.width, Width);
    EXPECT_EQ(fromFolder.rgb, fromArchive.rgb);
    expectColour(pixelAtScreen(fromArchive, 0, 0), 0, 0, 255, "the archive's effects drew");
    // A video takes its music out of the archive.
    const fs::path video = folder / "archive.mp4";
    Outcome videoRun = runDemo(program, "--archive --end 00:00:500 --video " + video.string());
    ASSERT_EQ(videoRun.status, 0) << videoRun.output;
    EXPECT_EQ(
        runCommand("ffprobe -v error -show_entries stream=codec_name -of csv=p=0 " + video.string())
            .output,
        "h264\naac\n");

    // A damaged entry (the music's bytes stored as they are, so a flip cannot be undone by
    // the coder) and an archive that is not one are named, and fail the load.
    std::string archive;
    {
        std::ifstream in(card / "resources.7z", std::ios::binary);
        archive.assign(std::istreambuf_iterator<char>(in), {});
    }
    for (const auto& [bytes, expected] :
         {std::pair{archive, std::string("entry 'resources/sound/testcard.flac' of "
                                         "'resources.7z' is damaged: 7-Zip bad CRC")},
          std::pair{std::string(4096, 'x'),
                    std::string("Cannot open the resource archive: 'resources.7z' is missing, "
                                "damaged, not a 7z archive")}}) {
        std::string damaged = bytes;
        damaged[damaged.size() / 2] ^= 0x10;
        std::ofstream(card / "resources.7z", std::ios::binary) << damaged;
        Outcome broken = runDemo(program, "--archive --end 00:00:300");
        EXPECT_EQ(broken.status, 1) << broken.output;
        EXPECT_NE(broken.output.find(expected), std::string::npos) << broken.output;
    }
}
