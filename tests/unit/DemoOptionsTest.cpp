#include "DemoOptions.h"

#include <gtest/gtest.h>

namespace {

struct Parsed {
    bool ok;
    std::string error;
    DemoOptions options;
};

Parsed parse(std::vector<std::string> args) {
    args.insert(args.begin(), "brinova");
    std::vector<const char*> argv;
    for (const std::string& arg : args) {
        argv.push_back(arg.c_str());
    }
    Parsed parsed;
    parsed.ok = parsed.options.parse(static_cast<int>(argv.size()), argv.data(), parsed.error);
    return parsed;
}

} // namespace

TEST(DemoOptions, NoOptionsMeansTheLauncherAndNormalPlay) {
    Parsed plain = parse({});
    ASSERT_TRUE(plain.ok);
    EXPECT_TRUE(plain.options.showLauncher());
    EXPECT_FALSE(plain.options.framesDriveClock());
}

TEST(DemoOptions, ScreenChoiceWithoutTheDialog) {
    Parsed chosen =
        parse({"--no-launcher", "--size", "640x360", "--fullscreen", "--vsync", "off", "--aa", "4",
               "--quality", "1", "--start", "01:04:000", "--end", "01:36:000"});
    ASSERT_TRUE(chosen.ok) << chosen.error;
    const DemoOptions& o = chosen.options;
    EXPECT_FALSE(o.showLauncher());
    EXPECT_EQ(o.width, 640);
    EXPECT_EQ(o.height, 360);
    EXPECT_TRUE(o.fullscreen);
    EXPECT_FALSE(o.vsync);
    EXPECT_EQ(o.antialiasing, 4);
    EXPECT_EQ(o.quality, 1);
    EXPECT_EQ(o.startMs, 64000u);
    EXPECT_EQ(o.endMs, 96000u);
}

// Times as the sync text writes them: rows at 20 a second, bar.beat at the music's tempo.
TEST(DemoOptions, StartAndEndTakeRowsAndBarBeats) {
    Parsed rows = parse({"--start", "640", "--end", "49.1"});
    ASSERT_TRUE(rows.ok) << rows.error;
    EXPECT_EQ(rows.options.startMs, 32000u);
    std::string error;
    ASSERT_TRUE(rows.options.resolveBarBeats(120.0, error)) << error;
    EXPECT_EQ(rows.options.endMs, 96000u) << "bar 49 starts after 48 bars of 2 s";

    Parsed reversed = parse({"--start", "33.1", "--end", "00:30:000"});
    ASSERT_TRUE(reversed.ok) << reversed.error;
    EXPECT_FALSE(reversed.options.resolveBarBeats(120.0, error));
    EXPECT_EQ(error, "--end must lie after --start");
    Parsed noTempo = parse({"--start", "9.3"});
    EXPECT_FALSE(noTempo.options.resolveBarBeats(0.0, error));
    EXPECT_NE(error.find("--start 9.3 is bar.beat, but the production gives no tempo"),
              std::string::npos);
}

TEST(DemoOptions, OfflineModesSkipTheLauncherAndUseTheFrameClock) {
    std::string dir = ::testing::TempDir();
    Parsed shots =
        parse({"--shot", "00:01:500=" + dir + "a.png", "--shot", "02:00:000=" + dir + "b.png"});
    ASSERT_TRUE(shots.ok) << shots.error;
    ASSERT_EQ(shots.options.shots.size(), 2u);
    EXPECT_EQ(shots.options.shots[0].timeMs, 1500u);
    EXPECT_EQ(shots.options.shots[1].file, dir + "b.png");
    EXPECT_FALSE(shots.options.showLauncher());
    EXPECT_TRUE(shots.options.framesDriveClock());

    Parsed capture = parse({"--capture", dir, "--fps", "25"});
    ASSERT_TRUE(capture.ok) << capture.error;
    EXPECT_DOUBLE_EQ(capture.options.frameStepMs(), 40.0);
    EXPECT_TRUE(parse({"--benchmark"}).options.framesDriveClock());
    EXPECT_FALSE(parse({"--pack"}).options.showLauncher());
    EXPECT_FALSE(parse({"--dev"}).options.showLauncher());
}

// The program runs from its own folder, so the paths the user typed are fixed to the folder
// it was started in; absolute ones stay as they are.
TEST(DemoOptions, RelativeOutputPathsResolveAgainstTheStartFolder) {
    Parsed shots = parse({"--shot", "00:01:000=a.png", "--shot", "00:02:000=/tmp/b.png"});
    ASSERT_TRUE(shots.ok) << shots.error;
    shots.options.resolvePaths("/home/viewer");
    EXPECT_EQ(shots.options.shots[0].file, "/home/viewer/a.png");
    EXPECT_EQ(shots.options.shots[1].file, "/tmp/b.png");
    Parsed capture = parse({"--capture", "frames/new", "--fps", "10"});
    ASSERT_TRUE(capture.ok) << capture.error;
    capture.options.resolvePaths("/home/viewer");
    EXPECT_EQ(capture.options.captureDir, "/home/viewer/frames/new");
    Parsed video = parse({"--video", "demo.webm"});
    ASSERT_TRUE(video.ok) << video.error;
    EXPECT_TRUE(video.options.framesDriveClock());
    EXPECT_DOUBLE_EQ(video.options.frameStepMs(), 1000.0 / 60);
    video.options.resolvePaths("/home/viewer");
    EXPECT_EQ(video.options.videoFile, "/home/viewer/demo.webm");
}

TEST(DemoOptions, InvalidValuesAreNamed) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--size", "640"}, "invalid value '640' for --size"},
        {{"--size", "0x360"}, "invalid value '0x360' for --size"},
        {{"--size", "99999x360"}, "invalid value '99999x360' for --size"},
        {{"--vsync", "yes"}, "invalid value 'yes' for --vsync: expected on or off"},
        {{"--aa", "3"}, "invalid value '3' for --aa: expected 0, 2, 4, 6 or 8"},
        {{"--quality", "4"}, "invalid value '4' for --quality: expected 0, 1, 2 or 3"},
        {{"--quality", "-1"}, "invalid value '-1' for --quality"},
        {{"--start", "1:2"}, "invalid value '1:2' for --start"},
        {{"--start", "0.1"}, "invalid value '0.1' for --start"},
        {{"--end", "3.5"}, "invalid value '3.5' for --end"},
        {{"--shot", "71583:00:000=x.png"}, "invalid value '71583:00:000=x.png' for --shot"},
        {{"--end", "00:-1:00"}, "invalid value '00:-1:00' for --end"},
        {{"--shot", "00:01:000"},
         "invalid value '00:01:000' for --shot: expected mm:ss:ms=FILE.png"},
        {{"--shot", "00:01:000=x.jpg"}, "invalid value '00:01:000=x.jpg' for --shot"},
        {{"--shot", "00:01:000=/no/such/dir/x.png"},
         "folder '/no/such/dir' for --shot does not exist"},
        {{"--capture", "", "--fps", "30"}, "invalid value '' for --capture"},
        {{"--fps", "0"}, "invalid value '0' for --fps"},
        {{"--fps", "30"}, "--fps N goes with --capture DIR or --video FILE"},
        {{"--capture", "frames"}, "--capture DIR needs --fps N"},
        {{"--video", "demo.avi"}, "invalid value 'demo.avi' for --video"},
        {{"--video", "/no/such/dir/demo.mp4"}, "folder '/no/such/dir' for --video does not exist"},
        {{"--video", "demo.mp4", "--size", "321x180"}, "even width and height, not 321x180"},
        {{"--video", "demo.mp4", "--capture", "frames", "--fps", "30"}, "cannot be combined"},
        {{"--start", "01:00:000", "--end", "00:30:000"}, "--end must lie after --start"},
        {{"--benchmark", "--shot", "00:00:000=x.png"}, "cannot be combined"},
        {{"--aa"}, "option --aa needs a value"},
        {{"--bogus"}, "unknown option '--bogus'"},
        {{"--watch", "/tmp"}, "--watch DIR goes with --dev"},
        {{"--dev", "--watch", "/no/such/dir"}, "invalid value '/no/such/dir' for --watch"},
    };
    for (const auto& [args, expected] : cases) {
        Parsed parsed = parse(args);
        EXPECT_FALSE(parsed.ok) << args[0];
        EXPECT_NE(parsed.error.find(expected), std::string::npos)
            << "error '" << parsed.error << "' should contain '" << expected << "'";
    }
}

TEST(DemoOptions, UsageListsEveryOption) {
    std::string text = DemoOptions::usage("brinova");
    for (const char* option :
         {"--help",       "--version",   "--no-launcher", "--size",    "--windowed",
          "--fullscreen", "--vsync",     "--aa",          "--quality", "--archive",
          "--start",      "--end",       "--shot",        "--capture", "--fps",
          "--video",      "--benchmark", "--pack",        "--dev",     "--watch"}) {
        EXPECT_NE(text.find(option), std::string::npos) << option;
    }
}
