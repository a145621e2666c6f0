#include "Analysis.h"
#include "Fft.h"
#include "Oscillator.h"
#include "Parser.h"
#include "Renderer.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace synth;
using namespace synth_test;

namespace {

// Two bars of every instrument kind through both effect buses.
const char* const kEverything = R"(
song
    tempo 120  length 4
end
instrument pad synth
    unison 5  spread 20  width 0.8  chorus 0.5  attack 0.3  release 0.5  reverb 0.4
end
instrument lead pluck
    delay 0.5
end
instrument kick kick
end
instrument snare snare
end
instrument clap clap
end
instrument hat hat
end
instrument up sweep
end
instrument boom impact
end
pattern chords 1
    D3+A3+F4
end
pattern tune 1/8
    A4 D5 - F5 . E5 C#5 -
end
pattern hits 1/4
    x x x x
end
arrange
    1-2 pad chords
    1-2 lead tune
    1-2 kick hits
    1-2 snare hits
    1-2 clap hits
    1-2 hat hits
    1 up hits
    1 boom hits
end
)";

Song songWith(const std::string& instruments, const std::string& arrangement,
              double seconds = 2.0) {
    return parseSong("song\n tempo 120 length " + std::to_string(seconds) + "\nend\n" +
                         instruments + "arrange\n" + arrangement + "end\n",
                     "test.song");
}

// Samples of one side between two times.
std::vector<float> slice(const AudioBuffer& audio, double from, double to) {
    return std::vector<float>(audio.left.begin() + static_cast<long>(from * kRate),
                              audio.left.begin() + static_cast<long>(to * kRate));
}

// The strongest partial within a semitone of `expected`, located between bins by a parabola
// through the peak and its neighbours.
double partialNear(const std::vector<float>& samples, double expected) {
    const int size = 32768;
    const std::vector<double> spectrum = magnitudeSpectrum(samples.data(), size);
    const double binHz = kRate / size;
    const auto first = spectrum.begin() + static_cast<long>(expected / 1.06 / binHz);
    const auto last = spectrum.begin() + static_cast<long>(expected * 1.06 / binHz);
    const size_t peak = static_cast<size_t>(std::max_element(first, last) - spectrum.begin());
    const double a = std::log(spectrum[peak - 1]), b = std::log(spectrum[peak]),
                 c = std::log(spectrum[peak + 1]);
    return (static_cast<double>(peak) + 0.5 * (a - c) / (a - 2.0 * b + c)) * binHz;
}

// The mean frequency between the first and the last rising zero crossing, each placed
// between samples by a straight line.
double frequencyByCrossings(const std::vector<float>& samples) {
    double first = -1.0, last = -1.0;
    int periods = -1;
    for (size_t i = 1; i < samples.size(); ++i)
        if (samples[i - 1] < 0.0f && samples[i] >= 0.0f) {
            last = i - 1 + samples[i - 1] / (samples[i - 1] - samples[i]);
            first = first < 0.0 ? last : first;
            ++periods;
        }
    return periods * kRate / (last - first);
}

} // namespace

TEST(Render, SameSongGivesTheSameSamplesOnAnyNumberOfThreads) {
    const Song song = parseSong(kEverything, "everything.song");
    const AudioBuffer one = renderSong(song, 1);
    const AudioBuffer three = renderSong(song, 3);
    ASSERT_EQ(one.frames(), song.lengthFrames());
    EXPECT_TRUE(one.left == three.left);
    EXPECT_TRUE(one.right == three.right);
    EXPECT_GT(measureLevels(one, 0, one.frames()).rms, 0.01) << "and it is not silence";
}

TEST(Render, NothingReachesFullScaleEvenWhenEverythingIsTooLoud) {
    // Every instrument turned up to the top of its fader.
    std::string loud = kEverything;
    for (size_t at = loud.find("instrument "); at != std::string::npos;
         at = loud.find("instrument ", at + 1))
        loud.insert(loud.find('\n', at) + 1, "    volume 12\n");
    const Song song = parseSong(loud, "loud.song");
    const AudioBuffer audio = renderSong(song);
    const Levels levels = measureLevels(audio, 0, audio.frames());
    EXPECT_LE(levels.peak, std::pow(10.0, -1.0 / 20.0)) << "the master ceiling is -1 dB";
    EXPECT_GT(levels.peak, 0.8);
}

TEST(Render, NotesSoundOnTheirBeat) {
    // A kick on beat 3 of bar 1: one second in, whatever the limiter's look-ahead.
    const AudioBuffer audio = renderSong(
        songWith("instrument kick kick\nend\npattern p 1/4\n . . x .\nend\n", " 1 kick p\n"));
    long onset = -1;
    for (long i = 0; i < audio.frames() && onset < 0; ++i)
        if (std::fabs(audio.left[static_cast<size_t>(i)]) > 0.01f)
            onset = i;
    EXPECT_NEAR(static_cast<double>(onset), 44100.0, 30.0);
}

TEST(Render, SynthAndPluckNotesAreInTune) {
    const AudioBuffer synth = renderSong(
        songWith("instrument tone synth\n wave sine\nend\npattern p 1\n A4\nend\n", " 1 tone p\n"));
    EXPECT_NEAR(risingZeroCrossings(slice(synth, 0.5, 1.5)), 440, 1);
    for (const char* note : {"A2", "A4", "A6"}) {
        const AudioBuffer pluck =
            renderSong(songWith("instrument string pluck\n decay 4\nend\npattern p 1\n " +
                                    std::string(note) + "\nend\n",
                                " 1 string p\n"));
        const double expected = midiToHz(parseNoteName(note));
        const double cents =
            1200.0 * std::log2(partialNear(slice(pluck, 0.2, 1.0), expected) / expected);
        EXPECT_NEAR(cents, 0.0, 3.0) << note;
    }
}

TEST(Render, NotesStartAndEndWithoutSteps) {
    // A loud square whose note starts and ends mid-song: the largest jump between two samples
    // must stay near what the waveform itself does, not a click.
    const AudioBuffer audio = renderSong(
        songWith("instrument tone synth\n wave square cutoff 20000 attack 0 release 0\nend\n"
                 "pattern p 1/4\n . C5 . .\nend\n",
                 " 1 tone p\n"));
    float jump = 0.0f;
    for (size_t i = 1; i < audio.left.size(); ++i)
        jump = std::max(jump, std::fabs(audio.left[i] - audio.left[i - 1]));
    const Levels levels = measureLevels(audio, 0, audio.frames());
    EXPECT_GT(levels.peak, 0.3);
    EXPECT_LT(jump, 1.2 * levels.peak) << "a band-limited square steps by twice its peak";
    EXPECT_LT(measureLevels(audio, 44100 + 441, 88200).peak, 1e-3) << "silent after its release";
}

TEST(Render, LegatoNotesChangeVelocityWithoutAStep) {
    const AudioBuffer audio =
        renderSong(songWith("instrument bass synth\n wave sine mono on sustain 1\nend\n"
                            "pattern p 1/2\n C3 C3@0.3\nend\n",
                            " 1 bass p\n"));
    const double peak = measureLevels(audio, 0, audio.frames()).peak;
    float jump = 0.0f;
    for (size_t i = 44100 - 400; i < 44100 + 400; ++i)
        jump = std::max(jump, std::fabs(audio.left[i] - audio.left[i - 1]));
    // A 131 Hz sine moves at most 2 pi 131 / 44100 of its peak from one sample to the next.
    EXPECT_LT(jump, 0.025 * peak);
}

TEST(Render, AutomationAndMasterFadeShapeTheLevel) {
    const AudioBuffer audio = renderSong(songWith(
        "instrument tone synth\n wave sine\nend\npattern p 1\n A3\nend\n"
        "automate tone volume\n 1 -40\n 1:3 0\nend\nautomate master volume\n 2 0\n 2:3 -80\nend\n",
        " 1-2 tone p\n", 4.0));
    const double rising = measureLevels(audio, 4410, 8820).rms;
    const double full = measureLevels(audio, 48510, 66150).rms;
    const double faded = measureLevels(audio, 136710, 172000).peak;
    EXPECT_LT(rising, full / 10.0);
    EXPECT_GT(full, 0.1);
    EXPECT_LT(faded, 1e-6) << "-80 dB on the master is silence";
}

TEST(Render, DuckingDipsUnderEachKick) {
    const std::string instruments = "instrument tone synth\n wave sine duck 0.8\nend\n"
                                    "instrument kick kick\n volume -80\nend\n"
                                    "pattern chord 1\n A3\nend\npattern hits 1/4\n x x x x\nend\n";
    const AudioBuffer audio = renderSong(songWith(instruments, " 1 tone chord\n 1 kick hits\n"));
    // Just after the second kick, against just before the third.
    const double dipped = measureLevels(audio, 22050 + 441, 22050 + 1323).peak;
    const double recovered = measureLevels(audio, 44100 - 1323, 44100 - 441).peak;
    EXPECT_LT(dipped, 0.5 * recovered);
}

TEST(Render, KickTailRingsOnItsTunedNote) {
    for (const std::string note : {"A1", "D2"}) {
        const AudioBuffer audio = renderSong(songWith(
            "instrument kick kick\n tune " + note +
                " punch 200 pitchdecay 0.04 decay 0.5 click 0\nend\npattern p 1\n x\nend\n",
            " 1 kick p\n"));
        // From the landing of the pitch drop on, the waves are exactly one period apart.
        const double expected = midiToHz(parseNoteName(note));
        const double cents =
            1200.0 * std::log2(frequencyByCrossings(slice(audio, 0.17, 0.4)) / expected);
        EXPECT_NEAR(cents, 0.0, 2.0) << note;
    }
}

TEST(Render, CrashRingsLongBrightAndWide) {
    const AudioBuffer audio = renderSong(songWith(
        "instrument crash crash\n decay 1.2\nend\npattern p 1\n x\nend\n", " 1 crash p\n", 4.0));
    const double smash = measureLevels(audio, 0, 4410).rms;
    const double second = measureLevels(audio, 44100, 48510).rms;
    EXPECT_GT(second, smash / 30.0) << "still ringing a second later";
    EXPECT_LT(measureLevels(audio, 3 * 44100, 3 * 44100 + 4410).rms, second / 3.0);
    const std::vector<double> spectrum = magnitudeSpectrum(slice(audio, 0.1, 1.0).data(), 32768);
    double total = 0.0, treble = 0.0;
    for (size_t k = 0; k < spectrum.size(); ++k) {
        total += spectrum[k] * spectrum[k];
        treble += k * kRate / 32768 > 2000.0 ? spectrum[k] * spectrum[k] : 0.0;
    }
    EXPECT_GT(treble / total, 0.95) << "a cymbal, no thud";
    double both = 0.0, power = 0.0;
    for (size_t i = 4410; i < 88200; ++i) {
        both += audio.left[i] * audio.right[i];
        power += audio.left[i] * audio.left[i];
    }
    EXPECT_LT(both / power, 0.8) << "each side has its own noise";
}
