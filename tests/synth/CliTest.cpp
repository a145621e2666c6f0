#include "Cli.h"
#include "AudioFile.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

using namespace synth;

namespace {

struct Result {
    int status;
    std::string out, err;
};

Result run(const std::vector<std::string>& args) {
    std::ostringstream out, err;
    const int status = runCommandLine(args, out, err);
    return {status, out.str(), err.str()};
}

bool exists(const std::string& path) {
    return std::ifstream(path).good();
}

// A song file that is deleted again when the test ends.
struct SongFile {
    SongFile(const std::string& name, const std::string& text)
        : path(synth_test::scratchPath(name)) {
        std::ofstream(path) << text;
    }
    ~SongFile() { std::remove(path.c_str()); }
    const std::string path;
};

const char* const kShortSong = "song\n tempo 120 length 3.5\nend\n"
                               "instrument tone synth\nend\n"
                               "pattern p 1/4\n A3 C4 E4 A4\nend\n"
                               "arrange\n 1 tone p\nend\n";

} // namespace

TEST(CommandLine, BadSongFailsNamingTheSpotAndWritesNothing) {
    const SongFile bad("bad.song", "song\n tempo 120 length 4\nend\n"
                                   "arrange\n 1 piano riff\nend\n");
    const std::string output = synth_test::scratchPath("bad.wav");
    std::remove(output.c_str());
    const Result result = run({"render", bad.path, "-o", output});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find(bad.path + ":5:4: unknown instrument 'piano'"), std::string::npos)
        << result.err;
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(output + ".part"));
}

TEST(CommandLine, WrongOptionsAreUsageErrors) {
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({"play", "x.song"}).status, 2);
    EXPECT_EQ(run({"render", "x.song"}).status, 2) << "no output";
    EXPECT_EQ(run({"render", "x.song", "-o", "out.aiff"}).status, 2) << "unknown extension";
    EXPECT_EQ(run({"render", "x.song", "-o", "out", "--format", "mp4"}).status, 2);
    EXPECT_EQ(run({"render", "x.song", "-o", "a.wav", "--threads", "0"}).status, 2);
    const Result unknown = run({"render", "x.song", "--loud", "yes"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown option '--loud'"), std::string::npos);
    EXPECT_NE(unknown.err.find("usage:"), std::string::npos);
    EXPECT_EQ(run({"--help"}).status, 0);
}

TEST(CommandLine, MissingFilesAreNamed) {
    const Result song =
        run({"render", "/nonexistent/a.song", "-o", synth_test::scratchPath("a.wav")});
    EXPECT_EQ(song.status, 1);
    EXPECT_NE(song.err.find("/nonexistent/a.song: cannot open"), std::string::npos);
    const Result audio = run({"analyze", "/nonexistent/a.mp3"});
    EXPECT_EQ(audio.status, 1);
    EXPECT_NE(audio.err.find("'/nonexistent/a.mp3'"), std::string::npos);
    const Result output =
        run({"render", SongFile("ok.song", kShortSong).path, "-o", "/nonexistent/a.wav"});
    EXPECT_EQ(output.status, 1);
    EXPECT_NE(output.err.find("'/nonexistent/a.wav'"), std::string::npos);
}

TEST(CommandLine, WritesEveryFormatAtTheSongsExactLength) {
    const SongFile ok("ok.song", kShortSong);
    const std::string& song = ok.path;
    for (const char* extension : {"wav", "flac", "ogg", "mp3"}) {
        const std::string output = synth_test::scratchPath(std::string("ok.") + extension);
        const Result result = run({"render", song, "-o", output});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("render time"), std::string::npos);
        const AudioBuffer audio = readAudio(output);
        EXPECT_EQ(audio.sampleRate, 44100);
        EXPECT_EQ(audio.frames(), 154350) << extension;
        std::remove(output.c_str());
    }
}

TEST(CommandLine, AnalyzePrintsTheReport) {
    const SongFile ok("ok.song", kShortSong);
    const std::string& song = ok.path;
    const std::string audio = synth_test::scratchPath("analyze.wav");
    ASSERT_EQ(run({"render", song, "-o", audio}).status, 0);
    const std::string picture = synth_test::scratchPath("analyze.png");
    const Result result = run({"analyze", audio, "--song", song, "--spectrogram", picture});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* line : {"length     3.500 s", "tempo", "RMS dBFS", "LUFS integrated", "dBTP",
                             "tone         0 of   1 bars", "spectrogram"})
        EXPECT_NE(result.out.find(line), std::string::npos) << line << "\n" << result.out;
    EXPECT_TRUE(exists(picture));
    std::remove(audio.c_str());
    std::remove(picture.c_str());
}
