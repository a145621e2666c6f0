// The music clock on SDL's silent audio driver, with real sound files written by the tests:
// tones whose frequencies sit on known spectrum bins.
#include "MusicTimer.h"
#include "ArchiveFiles.h"
#include "KVTIO.h"
#include "PictureFiles.h"
#include "SoundFiles.h"
#include "archive/arc.h"

#include <SDL_audio.h>
#include <SDL_timer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

namespace {

const int RATE = 44100;
const int COUNT = 1024;
const unsigned int ROW_RATE = 20;
const int LEFT_BIN = 64;
const int RIGHT_BIN = 200;
const double LEFT_AMPLITUDE = 0.5;
const double RIGHT_AMPLITUDE = 0.25;
// The spectrum is read here: far enough in for a whole block of 2 x COUNT samples.
const unsigned int READ_AT_MS = 1000;

unsigned int fakeTicks = 0;
unsigned int readFakeTicks() {
    return fakeTicks;
}

int peakBin(const std::vector<float>& spectrum) {
    return static_cast<int>(std::max_element(spectrum.begin(), spectrum.end()) - spectrum.begin());
}

std::vector<float> spectrumOf(MusicTimer& timer, Timer::SoundChannel which, int count = COUNT) {
    std::vector<float> out(static_cast<std::size_t>(count), -1.0f);
    timer.GetDirectSoundData(which, count, out.data());
    return out;
}

int linesStartingWith(const std::string& text, const std::string& start) {
    std::istringstream lines(text);
    int found = 0;
    for (std::string line; std::getline(lines, line);) {
        found += line.rfind(start, 0) == 0 ? 1 : 0;
    }
    return found;
}

testsounds::Tone onBin(int bin, double amplitude) {
    return {testsounds::binFrequency(bin, COUNT, RATE), amplitude};
}

class MusicTimerTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        folder = testpictures::freshFolder();
        KVTIO::ResourceType = KVTIO::KVT_RESOURCES_FLAT;
    }

    void TearDown() override {
        Timer::setTickSource(nullptr);
        KVTIO::ResourceType = KVTIO::KVT_RESOURCES_FLAT;
        arc_close();
        std::filesystem::remove_all(folder);
    }

    // Two seconds: left on LEFT_BIN, right on RIGHT_BIN.
    std::string stereoTone(const std::string& name, int format, int rate = RATE) {
        const std::string path = folder + name;
        EXPECT_TRUE(testsounds::writeTones(
            path, format, rate, 2.0,
            {onBin(LEFT_BIN, LEFT_AMPLITUDE), onBin(RIGHT_BIN, RIGHT_AMPLITUDE)}));
        return path;
    }

    std::string folder;
};

// Initialised, paused, and moved to READ_AT_MS.
void startPaused(MusicTimer& timer) {
    ASSERT_TRUE(timer.init()) << timer.getMessage();
    timer.setTime(READ_AT_MS);
}

void expectStereoPeaks(MusicTimer& timer, float tolerance) {
    const std::vector<float> left = spectrumOf(timer, Timer::LEFT);
    const std::vector<float> right = spectrumOf(timer, Timer::RIGHT);
    EXPECT_EQ(peakBin(left), LEFT_BIN);
    EXPECT_NEAR(left[LEFT_BIN], LEFT_AMPLITUDE, tolerance);
    EXPECT_EQ(peakBin(right), RIGHT_BIN);
    EXPECT_NEAR(right[RIGHT_BIN], RIGHT_AMPLITUDE, tolerance);
}

// --- spectrum ---

TEST_F(MusicTimerTest, EachChannelShowsItsToneAtItsBinWithItsAmplitude) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    startPaused(timer);
    expectStereoPeaks(timer, 0.01f);
    const std::vector<float> left = spectrumOf(timer, Timer::LEFT);
    EXPECT_LT(left[RIGHT_BIN], 0.01f);
    EXPECT_LT(left[LEFT_BIN + 10], 0.01f);
}

// Selections 2 and 3 read channel offsets 0 and 2, and offset 2 is the left channel again.
TEST_F(MusicTimerTest, SumAndAverageSelectionsReadTheLeftChannelTwice) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    startPaused(timer);
    const std::vector<float> left = spectrumOf(timer, Timer::LEFT);
    const std::vector<float> sum = spectrumOf(timer, Timer::CHANNEL_2);
    const std::vector<float> average = spectrumOf(timer, Timer::CHANNEL_3);
    for (int bin : {LEFT_BIN, RIGHT_BIN, 10}) {
        EXPECT_FLOAT_EQ(sum[bin], 2.0f * left[bin]) << bin;
        EXPECT_FLOAT_EQ(average[bin], left[bin]) << bin;
    }
}

TEST_F(MusicTimerTest, MonoFileGivesTheSameSpectrumForEverySelection) {
    const std::string path = folder + "mono.wav";
    ASSERT_TRUE(testsounds::writeTones(path, testsounds::WAV, RATE, 2.0, {onBin(LEFT_BIN, 0.5)}));
    MusicTimer timer(path, ROW_RATE);
    startPaused(timer);
    const std::vector<float> left = spectrumOf(timer, Timer::LEFT);
    EXPECT_EQ(peakBin(left), LEFT_BIN);
    EXPECT_EQ(spectrumOf(timer, Timer::RIGHT), left);
    EXPECT_EQ(spectrumOf(timer, Timer::CHANNEL_3), left);
}

TEST_F(MusicTimerTest, BadSelectionsAndCountsWriteNothing) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    startPaused(timer);
    for (int count : {0, -1, MusicTimer::MAX_SPECTRUM + 1}) {
        float sentinel = -1.0f;
        timer.GetDirectSoundData(Timer::LEFT, count, &sentinel);
        EXPECT_EQ(sentinel, -1.0f) << count;
    }
    const std::vector<float> other = spectrumOf(timer, static_cast<Timer::SoundChannel>(4));
    EXPECT_EQ(*std::max_element(other.begin(), other.end()), -1.0f);
    // The largest count works and keeps the tone at the matching bin.
    const std::vector<float> widest = spectrumOf(timer, Timer::LEFT, MusicTimer::MAX_SPECTRUM);
    EXPECT_EQ(peakBin(widest), LEFT_BIN * MusicTimer::MAX_SPECTRUM / COUNT);
}

// --- formats and rates ---

TEST_F(MusicTimerTest, CompressedFormatsDecodeToTheSameTones) {
    for (const auto& [name, format] : {std::pair<const char*, int>{"tone.mp3", testsounds::MP3},
                                       {"tone.ogg", testsounds::OGG},
                                       {"tone.flac", testsounds::FLAC}}) {
        SCOPED_TRACE(name);
        MusicTimer timer(stereoTone(name, format), ROW_RATE);
        startPaused(timer);
        // Lossy coding takes up to a tenth off a pure tone.
        expectStereoPeaks(timer, 0.1f);
        // Encoders may pad the end by a frame or two.
        EXPECT_NEAR(timer.getEndTime(), 2000, 100);
    }
}

TEST_F(MusicTimerTest, OtherSampleRatesAreConvertedToTheDevicesRate) {
    MusicTimer timer(stereoTone("tone22k.wav", testsounds::WAV, 22050), ROW_RATE);
    startPaused(timer);
    expectStereoPeaks(timer, 0.02f);
    EXPECT_EQ(timer.getSoundTime(), READ_AT_MS);
    EXPECT_EQ(timer.getEndTime(), 2000u);
    EXPECT_EQ(timer.getEndRow(), 2000u / (1000 / ROW_RATE));
}

// --- the clock ---

TEST_F(MusicTimerTest, SetTimeWhilePausedMovesTheClockAndTheSound) {
    fakeTicks = 1000;
    Timer::setTickSource(readFakeTicks);
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    ASSERT_TRUE(timer.init());
    EXPECT_TRUE(timer.isPaused());
    timer.setTime(1500);
    EXPECT_EQ(timer.getTime(), 1500u);
    EXPECT_EQ(timer.getSoundTime(), 1500u);
    EXPECT_EQ(timer.getRow(), 1500u * ROW_RATE / 1000);
    fakeTicks += 300;
    EXPECT_EQ(timer.getTime(), 1500u);
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 0u);
}

// The clock takes the sound's position once, at play(), then counts ticks only.
TEST_F(MusicTimerTest, PlayLocksTheClockToTheSoundThenCountsTicks) {
    fakeTicks = 1000;
    Timer::setTickSource(readFakeTicks);
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    ASSERT_TRUE(timer.init());
    timer.setTime(500);
    timer.play();
    const unsigned int lockedAt = timer.getTime();
    EXPECT_FALSE(timer.isPaused());
    EXPECT_GE(lockedAt, 500u);
    // The device may have taken a buffer or two between play() and the reading.
    EXPECT_LE(lockedAt, 600u);
    fakeTicks += 1000;
    EXPECT_EQ(timer.getTime(), lockedAt + 1000);
    EXPECT_EQ(timer.updateFrameTime(timer.getTime()), 1000u);
    timer.pause();
    fakeTicks += 500;
    EXPECT_EQ(timer.getTime(), lockedAt + 1000);
}

TEST_F(MusicTimerTest, TheSoundAdvancesOnlyWhilePlaying) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    ASSERT_TRUE(timer.init());
    timer.setTime(200);
    SDL_Delay(150);
    EXPECT_EQ(timer.getSoundTime(), 200u);
    const Uint32 started = SDL_GetTicks();
    timer.play();
    SDL_Delay(300);
    timer.pause();
    const unsigned int played = SDL_GetTicks() - started;
    const unsigned int stopped = timer.getSoundTime();
    // At least one device buffer (23 ms), at most real time plus a buffer or two.
    EXPECT_GE(stopped, 200u + 23u);
    EXPECT_LE(stopped, 200u + played + 50u);
    SDL_Delay(150);
    EXPECT_EQ(timer.getSoundTime(), stopped);
}

TEST_F(MusicTimerTest, SeekingPastTheEndStopsAtTheEnd) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    ASSERT_TRUE(timer.init());
    timer.setTime(60000);
    EXPECT_EQ(timer.getTime(), 60000u);
    EXPECT_EQ(timer.getSoundTime(), timer.getEndTime());
    timer.play();
    SDL_Delay(100);
    EXPECT_EQ(timer.getSoundTime(), timer.getEndTime());
}

// --- failures and shutdown ---

TEST_F(MusicTimerTest, MissingOrUndecodableFilesFailWithTheFileNamed) {
    const std::string garbage = folder + "garbage.mp3";
    testpictures::writeFile(garbage, std::string(4096, 'x'));
    for (const std::string& path : {folder + "absent.mp3", garbage}) {
        MusicTimer timer(path, ROW_RATE);
        testing::internal::CaptureStdout();
        EXPECT_FALSE(timer.init());
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(timer.getMessage().rfind("Sound Init : Failed to load soundfile!\n"
                                           "The decoder cannot read it: '" +
                                               path + "'",
                                           0),
                  0u)
            << timer.getMessage();
        EXPECT_NE(printed.find("Failed to create sound sysmte sound! Error code: 0"),
                  std::string::npos);
        EXPECT_NE(printed.find(path), std::string::npos) << printed;
        float sentinel = -1.0f;
        timer.GetDirectSoundData(Timer::LEFT, 1, &sentinel);
        EXPECT_EQ(sentinel, 0.0f);
    }
}

TEST_F(MusicTimerTest, WithoutAnAudioDeviceOneWarningThenASilentDevice) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    testing::internal::CaptureStdout();
    const bool started = timer.init();
    const std::string printed = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(started) << printed;
    EXPECT_EQ(linesStartingWith(printed, "Warning"), 1) << printed;
    timer.setTime(READ_AT_MS);
    expectStereoPeaks(timer, 0.01f);
    timer.play();
    SDL_Delay(200);
    EXPECT_GT(timer.getSoundTime(), READ_AT_MS);
}

TEST_F(MusicTimerTest, DisposeReportsFalseAfterACleanShutdown) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    ASSERT_TRUE(timer.init());
    timer.play();
    EXPECT_FALSE(timer.dispose());
    EXPECT_TRUE(timer.dispose());
    EXPECT_EQ(timer.getMessage(), "Failed to shut down sound!");

    MusicTimer never(folder + "unused.wav", ROW_RATE);
    EXPECT_TRUE(never.dispose());
}

// The channel is the SDL audio device that plays the music, open from init() to dispose().
TEST_F(MusicTimerTest, TheSoundChannelIsTheMusicsAudioDevice) {
    MusicTimer timer(stereoTone("tone.wav", testsounds::WAV), ROW_RATE);
    EXPECT_EQ(timer.getSoundChannel(), 0u);
    ASSERT_TRUE(timer.init());
    const SDL_AudioDeviceID channel = timer.getSoundChannel();
    ASSERT_NE(channel, 0u);
    EXPECT_EQ(SDL_GetAudioDeviceStatus(channel), SDL_AUDIO_PLAYING);
    timer.dispose();
    EXPECT_EQ(timer.getSoundChannel(), 0u);
    EXPECT_EQ(SDL_GetAudioDeviceStatus(channel), SDL_AUDIO_STOPPED);
}

// --- archive mode ---

class MusicTimerArchiveTest : public MusicTimerTest {
protected:
    void SetUp() override {
        MusicTimerTest::SetUp();
        if (!testarchives::have7zz()) {
            GTEST_SKIP() << "7zz is not installed";
        }
        std::filesystem::create_directories(folder + "resources/sound");
        stereoTone("resources/sound/tone.ogg", testsounds::OGG);
        ASSERT_TRUE(testarchives::sevenZip(folder, "a " + testarchives::PACKING_OPTIONS +
                                                       " resources.7z resources/sound/tone.ogg"));
        ASSERT_TRUE(arc_load(folder + "resources.7z"));
        KVTIO::ResourceType = KVTIO::KVT_RESOURCES_7Z;
    }
};

TEST_F(MusicTimerArchiveTest, MusicIsDecodedFromTheArchiveEntry) {
    std::filesystem::remove(folder + "resources/sound/tone.ogg");
    MusicTimer timer("resources/sound/tone.ogg", ROW_RATE);
    startPaused(timer);
    expectStereoPeaks(timer, 0.1f);
}

TEST_F(MusicTimerArchiveTest, MusicMissingFromTheArchiveFails) {
    MusicTimer timer("resources/sound/absent.ogg", ROW_RATE);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(timer.init());
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(timer.getMessage(), "Sound Init : Failed to load soundfile from archive!");
    EXPECT_EQ(linesStartingWith(printed, "Error code: 0"), 1) << printed;
}

} // namespace
