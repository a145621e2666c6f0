#include "Analysis.h"
#include "Oscillator.h"
#include "Parser.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>
#include <stb/stb_image.h>

#include <cstdio>

using namespace synth;
using namespace synth_test;

namespace {

// Decaying noise bursts on every beat, accented on the downbeat, with softer off-beats.
AudioBuffer clickTrack(double bpm, double seconds) {
    AudioBuffer audio;
    const size_t frames = static_cast<size_t>(seconds * kRate);
    audio.left.assign(frames, 0.0f);
    Noise noise(7);
    const double beat = 60.0 / bpm * kRate;
    for (int b = 0; b * beat < frames; ++b)
        for (int half = 0; half < 2; ++half) {
            const size_t start = static_cast<size_t>(b * beat + half * beat / 2);
            const double level = half ? 0.15 : (b % 4 == 0 ? 0.8 : 0.5);
            for (size_t i = 0; i < 3000 && start + i < frames; ++i)
                audio.left[start + i] += static_cast<float>(
                    level * noise.next() * std::exp(-static_cast<double>(i) / 400.0));
        }
    audio.right = audio.left;
    return audio;
}

} // namespace

TEST(Analysis, FindsTheTempoOfABeat) {
    for (double bpm : {120.0, 100.0, 135.0})
        EXPECT_NEAR(estimateTempo(clickTrack(bpm, 20.0)), bpm, 1.0) << bpm;
}

TEST(Analysis, MeasuresPeakAndRms) {
    AudioBuffer audio;
    for (int i = 0; i < 44100; ++i) {
        audio.left.push_back(static_cast<float>(0.5 * std::sin(2.0 * kPi * 100.0 * i / kRate)));
        audio.right.push_back(0.0f);
    }
    const Levels levels = measureLevels(audio, 0, audio.frames());
    EXPECT_NEAR(levels.peak, 0.5, 1e-3);
    EXPECT_NEAR(levels.rms, 0.5 / std::sqrt(2.0) / std::sqrt(2.0), 1e-3) << "one silent side";
    EXPECT_EQ(measureLevels(audio, 50000, 60000).peak, 0.0) << "past the end counts nothing";
}

TEST(Analysis, ReportsSectionsFromTheSong) {
    const Song song = parseSong("song\n tempo 120 length 8\nend\n"
                                "sections\n 1 quiet\n 3 loud\nend\n",
                                "test.song");
    AudioBuffer audio = clickTrack(120.0, 8.0);
    for (size_t i = 0; i < audio.left.size() / 2; ++i)
        audio.left[i] = audio.right[i] = audio.left[i] * 0.1f;
    const AnalysisReport report = analyse(audio, &song);
    ASSERT_EQ(report.sections.size(), 2u);
    EXPECT_EQ(report.sections[1].name, "loud");
    EXPECT_EQ(report.sections[1].firstBar, 3);
    EXPECT_EQ(report.sections[1].lastBar, 4);
    EXPECT_DOUBLE_EQ(report.sections[1].startSeconds, 4.0);
    EXPECT_NEAR(toDb(report.sections[1].levels.rms / report.sections[0].levels.rms), 20.0, 0.5);
    EXPECT_EQ(report.clippedSamples, 0);
}

TEST(Analysis, DrawsASpectrogramTenColumnsASecond) {
    const Song song =
        parseSong("song\n tempo 120 length 8\nend\nsections\n 1 a\n 3 b\nend\n", "test.song");
    const std::string path = scratchPath("spectrogram.png");
    writeSpectrogram(clickTrack(120.0, 8.0), &song, path);
    int width = 0, height = 0, channels = 0;
    ASSERT_TRUE(stbi_info(path.c_str(), &width, &height, &channels));
    EXPECT_EQ(width, 80);
    EXPECT_EQ(height, 480);
    std::remove(path.c_str());
    EXPECT_THROW(writeSpectrogram(clickTrack(120.0, 1.0), nullptr, "/nonexistent/x.png"),
                 std::runtime_error);
}
