// The production's song against the creative brief: its timeline and key, how its melody
// develops, and what the rendered piece measures.
#include "Loudness.h"
#include "Oscillator.h"
#include "Parser.h"
#include "Renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

using namespace synth;

namespace {

const Instrument& instrumentNamed(const Song& song, const std::string& name) {
    for (const Instrument& instrument : song.instruments)
        if (instrument.name == name)
            return instrument;
    throw std::runtime_error("the song has no " + name);
}

} // namespace

TEST(ProductionSong, FitsTheProductionsTimeline) {
    const Song song = loadSong(BRINOVA_SONG_FILE);
    EXPECT_EQ(song.tempo, 120.0);
    EXPECT_EQ(song.beatsPerBar, 4);
    EXPECT_EQ(song.sampleRate, 44100);
    EXPECT_EQ(song.lengthFrames(), 6652485) << "150.850 s";
    const std::pair<int, double> starts[] = {{1, 0.0},   {9, 16.0},  {25, 48.0},
                                             {33, 64.0}, {49, 96.0}, {65, 128.0}};
    ASSERT_EQ(song.sections.size(), 6u);
    for (size_t i = 0; i < song.sections.size(); ++i) {
        EXPECT_EQ(song.sections[i].firstBar, starts[i].first);
        EXPECT_DOUBLE_EQ(song.barToSeconds(song.sections[i].firstBar), starts[i].second);
    }
}

TEST(ProductionSong, InKeyWithALeadThatDevelops) {
    // D natural minor with C# (the harmonic minor's leading tone); F# only in the final
    // D major, after the last F.
    const int minor[] = {2, 4, 5, 7, 9, 10, 0, 1};
    const Song song = loadSong(BRINOVA_SONG_FILE);
    double lastF = 0.0, firstFSharp = HUGE_VAL;
    for (const Instrument& instrument : song.instruments) {
        if (instrument.kind == InstrumentKind::Kick) {
            const double key = 69.0 + 12.0 * std::log2(instrument.params.get("tune") / 440.0);
            const int pitchClass = static_cast<int>(std::lround(key)) % 12;
            EXPECT_TRUE(pitchClass == 2 || pitchClass == 9) << instrument.name << " is on D or A";
            EXPECT_NEAR(key, std::round(key), 0.05) << instrument.name << " is in tune";
        }
        if (instrument.kind != InstrumentKind::Synth && instrument.kind != InstrumentKind::Pluck)
            continue;
        for (const Note& note : instrument.notes) {
            const int pitchClass = note.key % 12;
            if (pitchClass == 5)
                lastF = std::max(lastF, note.beat);
            if (pitchClass == 6)
                firstFSharp = std::min(firstFSharp, note.beat);
            EXPECT_TRUE(pitchClass == 6 || std::find(std::begin(minor), std::end(minor),
                                                     pitchClass) != std::end(minor))
                << instrument.name << " key " << note.key << " at beat " << note.beat;
            // Held notes may run past the end, under the final fade; none may start there.
            EXPECT_LT(note.beat, song.lengthSeconds / song.secondsPerBeat());
        }
    }
    EXPECT_GT(firstFSharp, lastF) << "F# belongs to the closing chord only";
    EXPECT_LT(repeatedBars(song, instrumentNamed(song, "lead")).share(), 0.25);
}

// One render of the whole piece, measured as a listener's meter would.
TEST(ProductionSong, RendersAtItsLoudnessWithASectionShape) {
    const Song song = loadSong(BRINOVA_SONG_FILE);
    const AudioBuffer audio = renderSong(song);
    ASSERT_EQ(audio.frames(), song.lengthFrames());
    const LoudnessMeter meter(audio);
    EXPECT_NEAR(meter.integrated(0, audio.frames()), -14.0, 1.0);
    EXPECT_LE(meter.truePeak(0, audio.frames()), -1.0);
    std::map<std::string, double> lufs;
    for (size_t i = 0; i < song.sections.size(); ++i) {
        const long begin = std::lround(song.barToSeconds(song.sections[i].firstBar) * 44100);
        const long end = i + 1 < song.sections.size()
                             ? std::lround(song.barToSeconds(song.sections[i + 1].firstBar) * 44100)
                             : audio.frames();
        lufs[song.sections[i].name] = meter.integrated(begin, end);
    }
    EXPECT_LT(lufs["intro"], lufs["beat"]);
    EXPECT_LT(lufs["beat"], lufs["fluid"]);
    EXPECT_GE(lufs["climax"], lufs["fluid"] + 2.0);
    EXPECT_LE(lufs["break"], lufs["beat"] - 6.0);
}
