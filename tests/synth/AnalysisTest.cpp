#include "Analysis.h"
#include "Loudness.h"
#include "Oscillator.h"
#include "Parser.h"
#include "SignalHelpers.h"
#include "SoundPicture.h"

#include <gtest/gtest.h>
#include <stb/stb_image.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

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

namespace {

struct Rgb {
    int r, g, b;
};

struct LoadedPicture {
    int width = 0, height = 0;
    std::vector<Rgb> pixels;
    Rgb at(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
    // Whether any pixel of the box (x0 <= x < x1, y0 <= y < y1) passes the test.
    template <typename Test> bool anyIn(int x0, int x1, int y0, int y1, Test test) const {
        for (int y = std::max(0, y0); y < std::min(height, y1); ++y)
            for (int x = std::max(0, x0); x < std::min(width, x1); ++x)
                if (test(at(x, y)))
                    return true;
        return false;
    }
};

LoadedPicture loadPicture(const std::string& path) {
    LoadedPicture picture;
    int channels = 0;
    unsigned char* data = stbi_load(path.c_str(), &picture.width, &picture.height, &channels, 3);
    for (int i = 0; data && i < picture.width * picture.height; ++i)
        picture.pixels.push_back({data[3 * i], data[3 * i + 1], data[3 * i + 2]});
    stbi_image_free(data);
    return picture;
}

bool isGreyInk(Rgb c) {
    return c.r > 120 && std::abs(c.r - c.b) < 40;
}

bool isSectionInk(Rgb c) {
    return c.r > 150 && c.b < c.r - 60;
}

} // namespace

// A 1 kHz sine under a song of two sections: the spectrogram's brightest row meets the "1k"
// tick of the frequency axis, and sections, bars and times are written in the margins.
TEST(Analysis, DrawsASpectrogramWithLabelledAxesAndSections) {
    const Song song = parseSong(
        "song\n tempo 120 length 21\nend\nsections\n 2 quiet\n 4 loud\nend\n", "test.song");
    AudioBuffer audio;
    for (int i = 0; i < 21 * 44100; ++i)
        audio.left.push_back(static_cast<float>(0.5 * std::sin(2.0 * kPi * 1000.0 * i / kRate)));
    audio.right = audio.left;
    const std::string path = scratchPath("spectrogram.png");
    writeSpectrogram(audio, &song, path);
    const LoadedPicture picture = loadPicture(path);
    std::remove(path.c_str());
    ASSERT_GT(picture.width, 0);

    // The sine's rows are those with the most bright pixels: one a column, ten columns a
    // second (less the section lines at 2 and 6 s); the plot starts at the first.
    const auto bright = [](Rgb c) { return c.r > 200 && c.b < 200; };
    int firstSineRow = 0, lastSineRow = 0, plotLeft = 0, most = 0;
    for (int y = 0; y < picture.height; ++y) {
        int count = 0, first = -1;
        for (int x = 0; x < picture.width; ++x)
            if (bright(picture.at(x, y))) {
                first = first < 0 ? x : first;
                ++count;
            }
        if (count > most) {
            most = count;
            firstSineRow = y;
            plotLeft = first;
        }
        lastSineRow = count == most ? y : lastSineRow;
    }
    const int sineRow = (firstSineRow + lastSineRow) / 2;
    EXPECT_NEAR(most, 208, 2);
    EXPECT_TRUE(picture.anyIn(plotLeft - 6, plotLeft, sineRow - 1, sineRow + 2, isGreyInk))
        << "a tick of the frequency axis at 1 kHz";
    EXPECT_TRUE(picture.anyIn(plotLeft - 40, plotLeft - 6, sineRow - 5, sineRow + 6, isGreyInk))
        << "its label";
    EXPECT_FALSE(picture.anyIn(0, plotLeft + 20, 0, 30, isSectionInk)) << "nothing before bar 2";
    EXPECT_TRUE(picture.anyIn(plotLeft + 22, plotLeft + 56, 0, 30, isSectionInk)) << "'quiet'";
    EXPECT_TRUE(picture.anyIn(plotLeft + 62, plotLeft + 100, 0, 30, isSectionInk)) << "'loud'";
    EXPECT_TRUE(isGreyInk(picture.at(plotLeft + 60, sineRow + 40))) << "the line of bar 4";
    EXPECT_FALSE(isGreyInk(picture.at(plotLeft + 61, sineRow + 40)));
    for (int seconds : {0, 10, 20})
        EXPECT_TRUE(picture.anyIn(plotLeft + seconds * 10 - 15, plotLeft + seconds * 10 + 15,
                                  picture.height - 20, picture.height, isGreyInk))
            << "the time label of " << seconds << " s";
    EXPECT_THROW(writeSpectrogram(clickTrack(120.0, 1.0), nullptr, "/nonexistent/x.png"),
                 std::runtime_error);
}

namespace {

AudioBuffer sine(double hz, double amplitude, double seconds, double phase = 0.0) {
    AudioBuffer audio;
    for (long i = 0; i < std::lround(seconds * kRate); ++i)
        audio.left.push_back(
            static_cast<float>(amplitude * std::sin(2.0 * kPi * hz * i / kRate + phase)));
    audio.right = audio.left;
    return audio;
}

void append(AudioBuffer& audio, const AudioBuffer& more) {
    audio.left.insert(audio.left.end(), more.left.begin(), more.left.end());
    audio.right.insert(audio.right.end(), more.right.begin(), more.right.end());
}

} // namespace

TEST(Loudness, KWeightedAndGatedAsTheStandardSays) {
    // A 1 kHz sine at 0.1 on both sides is -20 LUFS.
    AudioBuffer audio = sine(1000.0, 0.1, 10.0);
    EXPECT_NEAR(LoudnessMeter(audio).integrated(0, audio.frames()), -20.0, 0.01);
    // Silence falls under the absolute gate, a part 30 dB down under the relative one (only
    // the blocks across the sine's end still count a little).
    append(audio, sine(1000.0, 0.0, 10.0));
    append(audio, sine(1000.0, 0.1 * std::pow(10.0, -1.5), 10.0));
    const LoudnessMeter meter(audio);
    EXPECT_NEAR(meter.integrated(0, audio.frames()), -20.0, 0.1);
    EXPECT_NEAR(meter.integrated(20 * 44100, audio.frames()), -50.0, 0.02) << "alone it counts";
    EXPECT_EQ(meter.integrated(11 * 44100, 20 * 44100), -HUGE_VAL) << "silence";
    // The head's shelf lifts 10 kHz 3.3 dB over 1 kHz; the high-pass cuts 25 Hz by 11 dB.
    const AudioBuffer treble = sine(10000.0, 0.1, 5.0), deep = sine(25.0, 0.1, 5.0);
    EXPECT_NEAR(LoudnessMeter(treble).integrated(0, treble.frames()), -16.65, 0.05);
    EXPECT_NEAR(LoudnessMeter(deep).integrated(0, deep.frames()), -31.1, 0.1);
}

TEST(Loudness, TruePeakFindsTheCrestBetweenSamples) {
    // A quarter of the sample rate, 45 degrees off: every sample sits at 0.707 of the crest.
    const AudioBuffer audio = sine(kRate / 4.0, 0.5, 1.0, kPi / 4.0);
    const double samplePeak = toDb(measureLevels(audio, 0, audio.frames()).peak);
    EXPECT_NEAR(samplePeak, -9.03, 0.01);
    // Away from the abrupt start and end, which ring.
    EXPECT_NEAR(LoudnessMeter(audio).truePeak(100, audio.frames() - 100), -6.02, 0.01);
}

TEST(Analysis, CountsLeadBarsThatRepeatAnEarlierBar) {
    // Bar 3 is bar 1 played softer: still a repeat. Two passes: bars 5-8 repeat 1-4.
    const Song song = parseSong("song\n tempo 120 length 16\nend\ninstrument lead pluck\nend\n"
                                "pattern tune 1/4\n"
                                " A4 C5 D5 - | E5 . . . | A4@0.5 C5 D5 - | E5 . . C5 |\nend\n"
                                "arrange\n 1-8 lead tune\nend\n",
                                "test.song");
    const BarRepeats repeats = repeatedBars(song, song.instruments[0]);
    EXPECT_EQ(repeats.bars, 8);
    EXPECT_EQ(repeats.repeats, 5);
}
