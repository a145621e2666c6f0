#include "Parser.h"

#include <gtest/gtest.h>

using namespace synth;

namespace {

const std::string kHeader = "song\n"
                            "    tempo 120  length 16\n"
                            "end\n"
                            "instrument bass synth\n"
                            "    wave square  cutoff 900\n"
                            "end\n";

// Parses kHeader + `rest`, expecting an error at line/column with `fragment` in its reason.
void expectError(const std::string& rest, int line, int column, const std::string& fragment) {
    try {
        parseSong(kHeader + rest, "test.song");
        ADD_FAILURE() << "no error for:\n" << rest;
    } catch (const SongError& error) {
        EXPECT_EQ(error.line(), line) << error.what();
        EXPECT_EQ(error.column(), column) << error.what();
        EXPECT_NE(error.reason().find(fragment), std::string::npos) << error.what();
        EXPECT_EQ(std::string(error.what()).rfind("test.song:" + std::to_string(line) + ":", 0), 0u)
            << error.what();
    }
}

} // namespace

TEST(NoteNames, SpellingsMapToMidiKeys) {
    EXPECT_EQ(parseNoteName("A4"), 69);
    EXPECT_EQ(parseNoteName("C4"), 60);
    EXPECT_EQ(parseNoteName("F#2"), 42);
    EXPECT_EQ(parseNoteName("Bb1"), 34);
    EXPECT_EQ(parseNoteName("C-1"), 0);
    EXPECT_EQ(parseNoteName("G9"), 127);
    EXPECT_EQ(parseNoteName("Cb4"), 59);
    for (const char* bad : {"H4", "a4", "C", "C#", "C10", "G#9", "Cb-1", "C4x", "", "x"})
        EXPECT_EQ(parseNoteName(bad), -1) << bad;
}

TEST(SongParser, ReadsSettingsInstrumentsAndNotes) {
    const Song song = parseSong(kHeader + "pattern line 1/8\n"
                                          "    D3 - - F3@0.5 . . A3+C4 - | x . . . . . . . |\n"
                                          "end\n"
                                          "sections\n"
                                          "    1 start\n"
                                          "    3 later\n"
                                          "end\n"
                                          "arrange\n"
                                          "    2-5  bass  line  +12 @0.5\n"
                                          "end\n",
                                "test.song");
    EXPECT_EQ(song.tempo, 120.0);
    EXPECT_EQ(song.lengthFrames(), 16 * 44100);
    ASSERT_EQ(song.instruments.size(), 1u);
    const Instrument& bass = song.instruments[0];
    EXPECT_EQ(bass.kind, InstrumentKind::Synth);
    EXPECT_EQ(bass.params.getInt("wave"), 2);
    EXPECT_EQ(bass.params.get("cutoff"), 900.0);
    EXPECT_EQ(bass.params.get("q"), 0.7071) << "unset parameters keep their defaults";
    ASSERT_EQ(song.sections.size(), 2u);
    EXPECT_EQ(song.sections[1].firstBar, 3);

    // Two-bar pattern, four bars: two repeats from beat 4; ties lengthen, chords split.
    ASSERT_EQ(bass.notes.size(), 10u);
    const Note& first = bass.notes[0];
    EXPECT_DOUBLE_EQ(first.beat, 4.0);
    EXPECT_DOUBLE_EQ(first.length, 1.5);
    EXPECT_EQ(first.key, 50 + 12);
    EXPECT_DOUBLE_EQ(first.velocity, 0.5);
    EXPECT_DOUBLE_EQ(bass.notes[1].velocity, 0.25);
    EXPECT_DOUBLE_EQ(bass.notes[2].beat, 7.0);
    EXPECT_DOUBLE_EQ(bass.notes[2].length, 1.0);
    EXPECT_EQ(bass.notes[3].key, 60 + 12);
    EXPECT_EQ(bass.notes[4].key, 60 + 12) << "x plays middle C";
    EXPECT_DOUBLE_EQ(bass.notes[4].beat, 8.0);
    EXPECT_DOUBLE_EQ(bass.notes[5].beat, 12.0) << "the second repeat starts two bars later";
}

TEST(SongParser, GroovesSwingAccentAndFillAtPhraseEnds) {
    const Song song = parseSong(kHeader + "instrument kick kick\n tune A1\nend\n"
                                          "pattern hats 1/8 swing 60\n C4 C4 C4 - - C4 . .\nend\n"
                                          "pattern loud 1/4\n x@0.5 x . x@0.25\nend\n"
                                          "pattern roll 1/4\n D4 D4 D4 D4\nend\n"
                                          "arrange\n 1-8 bass hats accent loud fill roll every 4"
                                          "\nend\n",
                                "test.song");
    EXPECT_NEAR(song.instruments[1].params.get("tune"), 55.0, 1e-9) << "a drum tuned by note";
    const std::vector<Note>& notes = song.instruments[0].notes;
    // Off-beat eighths move to 60 % of their beat, and so do ends there; the accent mutes
    // what starts on its rest (beat 3).
    ASSERT_GE(notes.size(), 3u);
    EXPECT_DOUBLE_EQ(notes[1].beat, 0.6);
    EXPECT_DOUBLE_EQ(notes[1].length, 0.4);
    EXPECT_DOUBLE_EQ(notes[2].beat, 1.0);
    EXPECT_DOUBLE_EQ(notes[2].length, 1.6) << "held up to a swung off-beat, it ends there";
    EXPECT_DOUBLE_EQ(notes[0].velocity, 0.5);
    EXPECT_DOUBLE_EQ(notes[2].velocity, 1.0);
    // Per bar three hats; bars 4 and 8 play the fill's four notes instead.
    int hats = 0, fills = 0;
    for (const Note& note : notes) {
        const bool fill = note.key == parseNoteName("D4");
        fills += fill;
        hats += !fill;
        EXPECT_EQ(fill, note.beat >= 12.0 && (note.beat < 16.0 || note.beat >= 28.0)) << note.beat;
    }
    EXPECT_EQ(hats, 3 * 6);
    EXPECT_EQ(fills, 2 * 4);
}

TEST(SongParser, AutomationPointsUseBarsAndBeats) {
    const Song song = parseSong(kHeader + "automate bass cutoff\n"
                                          "    1     200\n"
                                          "    2:3   800\n"
                                          "end\n"
                                          "automate master volume\n"
                                          "    8:4.5  -80\n"
                                          "end\n",
                                "test.song");
    const Automation* cutoff = song.findAutomation(0, "cutoff");
    ASSERT_NE(cutoff, nullptr);
    EXPECT_DOUBLE_EQ(cutoff->points[1].beat, 6.0);
    EXPECT_DOUBLE_EQ(cutoff->valueAt(-1.0), 200.0);
    EXPECT_DOUBLE_EQ(cutoff->valueAt(3.0), 400.0) << "cutoffs move evenly in octaves";
    EXPECT_DOUBLE_EQ(cutoff->valueAt(100.0), 800.0);
    const Automation* volume = song.findAutomation(Automation::kMaster, "volume");
    ASSERT_NE(volume, nullptr);
    EXPECT_DOUBLE_EQ(volume->points[0].beat, 31.5);
}

TEST(SongParser, StructureErrorsNameLineAndColumn) {
    expectError("pattern p 1/4\n  x x x x\n", 7, 1, "has no 'end'");
    expectError("melody p 1/4\nend\n", 7, 1, "unknown statement 'melody'");
    expectError("instrument lead\nend\n", 7, 17, "needs a name and a kind");
    expectError("instrument lead plucky\nend\n", 7, 17, "unknown instrument kind 'plucky'");
    expectError("instrument bass pluck\nend\n", 7, 12, "defined twice");
    expectError("instrument master pluck\nend\n", 7, 12, "'master' is the master bus");
    expectError("reverb extra\nend\n", 7, 8, "unexpected 'extra'");
    EXPECT_THROW(parseSong("instrument a synth\nend\n", "x.song"), SongError) << "no song block";
}

TEST(SongParser, ParameterErrorsNameLineAndColumn) {
    expectError("instrument lead synth\n  cutof 300\nend\n", 8, 3, "has no parameter 'cutof'");
    expectError("instrument lead synth\n  cutoff 30000\nend\n", 8, 10, "out of range");
    expectError("instrument lead synth\n  cutoff 1k\nend\n", 8, 10, "'1k' is not a number");
    expectError("instrument lead synth\n  wave sawtooth\nend\n", 8, 8, "expected sine, saw");
    expectError("instrument lead synth\n  attack 0.1 attack 0.2\nend\n", 8, 14, "set twice");
    expectError("instrument lead synth\n  attack 0.1 decay\nend\n", 8, 20, "'decay' has no value");
    expectError("reverb\n  decay 1e999\nend\n", 8, 9, "not a number");
}

TEST(SongParser, PatternErrorsPointAtTheToken) {
    expectError("pattern p 1/4\n  C4 H4 . .\nend\n", 8, 6, "unknown note 'H4'");
    expectError("pattern p 1/4\n  C4 D4+Q3 . .\nend\n", 8, 9, "unknown note 'Q3'");
    expectError("pattern p 1/4\n  C4@1.5 . . .\nend\n", 8, 6, "out of range for a velocity");
    expectError("pattern p 1/4\n  . - . .\nend\n", 8, 5, "'-' holds the note before it");
    expectError("pattern p 1/4\n  C4 . . | . . . . |\nend\n", 8, 10, "this bar holds 3 steps");
    expectError("pattern p 1/4\n  C4 . . . | . .\nend\n", 8, 16, "this bar holds 2 steps");
    expectError("pattern p 1/4\n  C4 . .\nend\n", 7, 9, "lasts 0.75 bars");
    expectError("pattern p 1/x\n  C4\nend\n", 7, 11, "not a step length");
    expectError("pattern p 1/8 swing 80\n  C4\nend\n", 7, 21, "out of range for a swing");
    expectError("pattern p 1/4\n  x x x x\nend\npattern p 1/4\n  x x x x\nend\n", 10, 9,
                "defined twice");
}

TEST(SongParser, ArrangementErrorsPointAtTheToken) {
    const std::string pattern = "pattern two 1/4\n  C4 . . . | D4 . . . |\nend\n";
    expectError(pattern + "arrange\n  1-4 lead two\nend\n", 11, 7, "unknown instrument 'lead'");
    expectError(pattern + "arrange\n  1-4 bass one\nend\n", 11, 12, "unknown pattern 'one'");
    expectError(pattern + "arrange\n  1-3 bass two\nend\n", 11, 3, "not a whole number of repeats");
    expectError(pattern + "arrange\n  4-2 bass two\nend\n", 11, 3, "run backwards");
    expectError(pattern + "arrange\n  7-10 bass two\nend\n", 11, 5, "bar 10 is outside the song");
    expectError(pattern + "arrange\n  1 bass two up\nend\n", 11, 14, "unexpected 'up'");
    expectError(pattern + "arrange\n  1 bass two +1.5\nend\n", 11, 14, "whole number of semitones");
    expectError(pattern + "arrange\n  1 bass two -70\nend\n", 11, 14, "out of range");
    expectError(pattern + "arrange\n  1 bass\nend\n", 11, 10, "bars, instrument and pattern");
    expectError(pattern + "arrange\n  1-4 bass two fill\nend\n", 11, 21, "needs a pattern");
    expectError(pattern + "arrange\n  1-4 bass two fill two 8\nend\n", 11, 25, "its phrase");
    expectError(pattern + "arrange\n  1-4 bass two fill two every 1\nend\n", 11, 31,
                "at least as many");
    expectError(pattern + "arrange\n  1-4 bass two accent one\nend\n", 11, 23, "unknown pattern");
}

TEST(SongParser, AutomationAndSectionErrorsPointAtTheToken) {
    expectError("automate bass attack\n  1 0.1\nend\n", 7, 15, "cannot be automated");
    expectError("automate bass cutof\n  1 100\nend\n", 7, 15, "has no parameter 'cutof'");
    expectError("automate drums volume\n  1 0\nend\n", 7, 10, "unknown instrument 'drums'");
    expectError("automate bass volume\n  3 0\n  2:4 -6\nend\n", 9, 3, "must not go back");
    expectError("automate bass volume\n  2:5 0\nend\n", 8, 5, "out of range for a beat");
    expectError("automate bass volume\nend\n", 7, 1, "without points");
    expectError("automate bass volume\n  1 0\nend\nautomate bass volume\n  2 0\nend\n", 10, 15,
                "automated twice");
    expectError("sections\n  5 verse\n  3 intro\nend\n", 9, 3, "increasing bars");
}

TEST(SongParser, CommentsAndSharpsAreTold) {
    const Song song = parseSong(kHeader + "# a comment line\n"
                                          "pattern p 1/4   # trailing comment\n"
                                          "  F#4 . . . #rest of line\n"
                                          "end\n"
                                          "arrange\n  1 bass p\nend\n",
                                "test.song");
    ASSERT_EQ(song.instruments[0].notes.size(), 1u);
    EXPECT_EQ(song.instruments[0].notes[0].key, 66);
}

TEST(SongParser, MissingFileIsNamed) {
    try {
        loadSong("/nonexistent/dir/song.txt");
        FAIL() << "no error";
    } catch (const SongError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "/nonexistent/dir/song.txt: cannot open the song file");
    }
}
