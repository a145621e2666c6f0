#include "Parser.h"

#include "Oscillator.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace synth {
namespace {

struct Token {
    std::string text;
    int line;
    int column;
};

struct Line {
    std::vector<Token> tokens;
    int number;
    int endColumn; // just past the last token: where a missing word would have gone
};

struct Block {
    Line header;
    std::vector<Line> body;
};

struct PatternNote {
    double beat;
    double length;
    std::vector<int> keys;
    double velocity;
};

struct Pattern {
    double bars = 0.0;
    std::vector<PatternNote> notes;
};

const char* const kBlockKeywords[] = {"song",     "instrument", "pattern", "arrange", "automate",
                                      "sections", "reverb",     "delay",   "master"};

// The pitch a drum hit ("x") plays; drums ignore it, pitched instruments play middle C.
constexpr int kHitKey = 60;

const std::vector<ParamSpec>& songParams() {
    static const std::vector<ParamSpec> table = {
        {"tempo", 120.0, 20.0, 300.0, {}},
        {"beats", 4.0, 1.0, 16.0, {}},
        {"length", 0.0, 0.0, 3600.0, {}},
        {"samplerate", 44100.0, 8000.0, 192000.0, {}},
    };
    return table;
}

std::vector<Line> tokenize(const std::string& text) {
    std::vector<Line> lines;
    std::istringstream stream(text);
    std::string raw;
    int number = 0;
    while (std::getline(stream, raw)) {
        ++number;
        Line line{{}, number, 1};
        size_t i = 0;
        // '#' starts a comment only at the start of a word: inside one it is a sharp (F#4).
        while (i < raw.size()) {
            if (std::isspace(static_cast<unsigned char>(raw[i]))) {
                ++i;
                continue;
            }
            if (raw[i] == '#')
                break;
            const size_t start = i;
            while (i < raw.size() && !std::isspace(static_cast<unsigned char>(raw[i])))
                ++i;
            line.tokens.push_back(
                {raw.substr(start, i - start), number, static_cast<int>(start) + 1});
            line.endColumn = static_cast<int>(i) + 2;
        }
        if (!line.tokens.empty())
            lines.push_back(line);
    }
    return lines;
}

bool isName(const std::string& text) {
    if (text.empty() || !(std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_'))
        return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
}

std::string joinWords(const std::vector<std::string>& words) {
    std::string out;
    for (size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            out += i + 1 == words.size() ? " or " : ", ";
        out += words[i];
    }
    return out;
}

std::string formatNumber(double value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

class Parser {
public:
    Parser(const std::string& text, std::string fileName)
        : file(std::move(fileName)), lines(tokenize(text)) {}

    Song parse() {
        const std::vector<Block> blocks = collectBlocks();
        readSongBlock(blocks);
        for (const Block& block : blocks) {
            const std::string& keyword = block.header.tokens[0].text;
            if (keyword == "instrument")
                readInstrument(block);
            else if (keyword == "pattern")
                readPattern(block);
            else if (keyword == "reverb")
                readEffect(block, song.reverb);
            else if (keyword == "delay")
                readEffect(block, song.delay);
            else if (keyword == "master")
                readEffect(block, song.master);
        }
        for (const Block& block : blocks) {
            const std::string& keyword = block.header.tokens[0].text;
            if (keyword == "sections")
                readSections(block);
            else if (keyword == "arrange")
                readArrangement(block);
            else if (keyword == "automate")
                readAutomation(block);
        }
        for (Instrument& instrument : song.instruments)
            std::stable_sort(instrument.notes.begin(), instrument.notes.end(),
                             [](const Note& a, const Note& b) { return a.beat < b.beat; });
        return song;
    }

private:
    [[noreturn]] void fail(const Token& at, const std::string& reason, int offset = 0) const {
        throw SongError(file, at.line, at.column + offset, reason);
    }

    [[noreturn]] void failAtEnd(const Line& line, const std::string& reason) const {
        throw SongError(file, line.number, line.endColumn, reason);
    }

    // ---- Structure ----------------------------------------------------------------------

    std::vector<Block> collectBlocks() const {
        std::vector<Block> blocks;
        size_t i = 0;
        while (i < lines.size()) {
            const Line& header = lines[i++];
            const Token& keyword = header.tokens[0];
            const bool known = std::any_of(std::begin(kBlockKeywords), std::end(kBlockKeywords),
                                           [&](const char* k) { return keyword.text == k; });
            if (!known)
                fail(keyword, "unknown statement '" + keyword.text +
                                  "' (expected song, instrument, pattern, arrange, automate, "
                                  "sections, reverb, delay or master)");
            Block block{header, {}};
            while (i < lines.size() && lines[i].tokens[0].text != "end")
                block.body.push_back(lines[i++]);
            if (i == lines.size())
                fail(keyword, "'" + keyword.text + "' block has no 'end'");
            if (lines[i].tokens.size() > 1)
                fail(lines[i].tokens[1],
                     "unexpected '" + lines[i].tokens[1].text + "' after 'end'");
            ++i;
            blocks.push_back(block);
        }
        return blocks;
    }

    // Checks a block header's words: the keyword and `count` more.
    void expectHeader(const Block& block, size_t count, const std::string& usage) const {
        const Line& header = block.header;
        if (header.tokens.size() < count + 1)
            failAtEnd(header, "'" + header.tokens[0].text + "' needs " + usage);
        if (header.tokens.size() > count + 1)
            fail(header.tokens[count + 1], "unexpected '" + header.tokens[count + 1].text + "'");
    }

    std::string newName(const Token& token, const std::string& what) const {
        if (!isName(token.text))
            fail(token, "'" + token.text + "' is not a valid " + what +
                            " name (letters, digits and '_', starting with a letter)");
        return token.text;
    }

    // ---- Parameter blocks ------------------------------------------------------------------

    // Lines of "name value" pairs, several per line if wanted.
    void readParams(const Block& block, ParamSet& params, const std::string& owner) const {
        std::vector<std::string> seen;
        for (const Line& line : block.body) {
            for (size_t i = 0; i < line.tokens.size(); i += 2) {
                const Token& name = line.tokens[i];
                const ParamSpec* param = params.find(name.text);
                if (!param)
                    fail(name, owner + " has no parameter '" + name.text + "'");
                if (std::find(seen.begin(), seen.end(), name.text) != seen.end())
                    fail(name, "'" + name.text + "' is set twice");
                seen.push_back(name.text);
                if (i + 1 == line.tokens.size())
                    failAtEnd(line, "'" + name.text + "' has no value");
                params.set(name.text, paramValue(line.tokens[i + 1], *param));
            }
        }
    }

    double paramValue(const Token& token, const ParamSpec& param) const {
        if (!param.words.empty()) {
            for (size_t w = 0; w < param.words.size(); ++w)
                if (token.text == param.words[w])
                    return static_cast<double>(w);
            fail(token, "unknown value '" + token.text + "' for '" + param.name + "' (expected " +
                            joinWords(param.words) + ")");
        }
        if (param.pitch && parseNoteName(token.text) >= 0) {
            const double hz = midiToHz(parseNoteName(token.text));
            if (hz < param.minimum || hz > param.maximum)
                fail(token, token.text + " is out of range for '" + param.name + "' (" +
                                formatNumber(param.minimum) + " to " + formatNumber(param.maximum) +
                                " Hz)");
            return hz;
        }
        return numberIn(token, param.minimum, param.maximum, "'" + param.name + "'");
    }

    void readSongBlock(const std::vector<Block>& blocks) {
        const Block* found = nullptr;
        for (const Block& block : blocks)
            if (block.header.tokens[0].text == "song") {
                if (found)
                    fail(block.header.tokens[0], "a second 'song' block (the first is on line " +
                                                     std::to_string(found->header.number) + ")");
                found = &block;
            }
        if (!found)
            throw SongError(file, 0, 0, "no 'song' block giving the tempo and length");
        expectHeader(*found, 0, "nothing after it");
        ParamSet settings(songParams());
        readParams(*found, settings, "'song'");
        if (settings.get("length") <= 0.0)
            fail(found->header.tokens[0], "the song needs a 'length' in seconds");
        song.tempo = settings.get("tempo");
        song.beatsPerBar = settings.getInt("beats");
        song.lengthSeconds = settings.get("length");
        song.sampleRate = settings.getInt("samplerate");
        song.reverb = ParamSet(reverbParams());
        song.delay = ParamSet(delayParams());
        song.master = ParamSet(masterParams());
        const double barSeconds = song.beatsPerBar * song.secondsPerBeat();
        totalBars = static_cast<int>(std::ceil(song.lengthSeconds / barSeconds - 1e-9));
    }

    void readEffect(const Block& block, ParamSet& params) const {
        expectHeader(block, 0, "nothing after it");
        readParams(block, params, "'" + block.header.tokens[0].text + "'");
    }

    void readInstrument(const Block& block) {
        expectHeader(block, 2, "a name and a kind, as in 'instrument lead pluck'");
        const Token& nameToken = block.header.tokens[1];
        const Token& kindToken = block.header.tokens[2];
        const std::string name = newName(nameToken, "instrument");
        if (name == "master")
            fail(nameToken, "'master' is the master bus; choose another instrument name");
        if (findInstrument(name) >= 0)
            fail(nameToken, "instrument '" + name + "' is defined twice");
        InstrumentKind kind;
        if (!kindFromName(kindToken.text, kind))
            fail(kindToken, "unknown instrument kind '" + kindToken.text +
                                "' (expected synth, pluck, kick, snare, clap, hat, sweep or "
                                "impact)");
        Instrument instrument{name, kind, ParamSet(instrumentParams(kind)), {}};
        readParams(block, instrument.params, "instrument '" + name + "' (" + kindToken.text + ")");
        song.instruments.push_back(std::move(instrument));
    }

    // ---- Patterns -----------------------------------------------------------------------

    // A step as a fraction of a whole note: "1/16", "1/8", "1", "2".
    double stepLength(const Token& token) const {
        const size_t slash = token.text.find('/');
        const std::string top = token.text.substr(0, slash);
        const std::string bottom = slash == std::string::npos ? "1" : token.text.substr(slash + 1);
        const auto positive = [](const std::string& s) {
            return !s.empty() && s.size() < 4 &&
                   std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
                   std::stoi(s) > 0;
        };
        if (!positive(top) || !positive(bottom))
            fail(token, "'" + token.text +
                            "' is not a step length (use a fraction of a whole "
                            "note such as 1/16, 1/8 or 1)");
        return static_cast<double>(std::stoi(top)) / std::stoi(bottom);
    }

    void readPattern(const Block& block) {
        const std::vector<Token>& header = block.header.tokens;
        const bool swung = header.size() > 3 && header[3].text == "swing";
        expectHeader(block, swung ? 4 : 2,
                     swung ? "a swing in percent, as in 'pattern hats 1/16 swing 58'"
                           : "a name and a step length, as in 'pattern bass 1/8'");
        const double swingPercent =
            swung ? numberIn(header[4], 50.0, 75.0, "a swing in percent") : 50.0;
        const Token& nameToken = block.header.tokens[1];
        const std::string name = newName(nameToken, "pattern");
        if (patterns.count(name))
            fail(nameToken, "pattern '" + name + "' is defined twice");
        // Beats are quarter notes.
        const double step = stepLength(block.header.tokens[2]) * 4.0;
        const double stepsPerBar = song.beatsPerBar / step;
        const bool wholeStepsPerBar = std::fabs(stepsPerBar - std::round(stepsPerBar)) < 1e-9;

        Pattern pattern;
        bool holding = false; // the last note may still be extended with '-'
        int steps = 0, stepsInBar = 0;
        bool barLines = false;
        const Token* last = &nameToken;
        for (const Line& line : block.body)
            for (const Token& token : line.tokens) {
                last = &token;
                if (token.text == "|") {
                    if (!wholeStepsPerBar)
                        fail(token, "bar lines need a step that divides the bar");
                    checkBar(token, stepsInBar, stepsPerBar, block.header.tokens[2].text);
                    stepsInBar = 0;
                    barLines = true;
                    continue;
                }
                if (token.text == "-") {
                    if (!holding)
                        fail(token, "'-' holds the note before it, but there is none");
                    pattern.notes.back().length += step;
                } else if (token.text == ".") {
                    holding = false;
                } else {
                    pattern.notes.push_back(noteEvent(token, steps * step, step));
                    holding = true;
                }
                ++steps;
                ++stepsInBar;
            }
        if (barLines && stepsInBar > 0)
            checkBar(*last, stepsInBar, stepsPerBar, block.header.tokens[2].text);
        pattern.bars = steps * step / song.beatsPerBar;
        if (steps == 0 || std::fabs(pattern.bars - std::round(pattern.bars)) > 1e-9)
            fail(nameToken, "pattern '" + name + "' lasts " + formatNumber(pattern.bars) +
                                " bars; a pattern must fill whole bars");
        pattern.bars = std::round(pattern.bars);
        if (swung)
            swing(pattern, step, swingPercent);
        patterns[name] = pattern;
    }

    // Moves every second step later, so it falls at `percent` of its pair of steps instead of
    // half way: starts and ends on those steps move, the rest stays.
    static void swing(Pattern& pattern, double step, double percent) {
        const double shift = (percent / 50.0 - 1.0) * step;
        const auto swung = [&](double beat) {
            const long index = std::lround(beat / step);
            return beat + (index % 2 == 1 ? shift : 0.0);
        };
        for (PatternNote& note : pattern.notes) {
            const double end = swung(note.beat + note.length);
            note.beat = swung(note.beat);
            note.length = end - note.beat;
        }
    }

    void checkBar(const Token& at, int steps, double stepsPerBar, const std::string& step) const {
        if (steps != static_cast<int>(std::lround(stepsPerBar)))
            fail(at, "this bar holds " + std::to_string(steps) + " steps of " + step +
                         "; a bar holds " + std::to_string(std::lround(stepsPerBar)));
    }

    // "D4", "x", "D3+F3+A3", each optionally with "@velocity".
    PatternNote noteEvent(const Token& token, double beat, double length) const {
        PatternNote note{beat, length, {}, 1.0};
        const size_t at = token.text.find('@');
        const std::string keys = token.text.substr(0, at);
        if (at != std::string::npos) {
            const Token velocity{token.text.substr(at + 1), token.line,
                                 token.column + static_cast<int>(at) + 1};
            note.velocity = numberIn(velocity, 0.0, 1.0, "a velocity");
        }
        size_t begin = 0;
        while (true) {
            const size_t plus = keys.find('+', begin);
            const std::string part = keys.substr(begin, plus - begin);
            const int key = part == "x" ? kHitKey : parseNoteName(part);
            if (key < 0)
                fail(token,
                     "unknown note '" + part +
                         "' (notes are written like C4, F#3, Bb2; x is a hit)",
                     static_cast<int>(begin));
            note.keys.push_back(key);
            if (plus == std::string::npos)
                break;
            begin = plus + 1;
        }
        return note;
    }

    // ---- Arrangement, sections, automation ------------------------------------------------

    int findInstrument(const std::string& name) const {
        for (size_t i = 0; i < song.instruments.size(); ++i)
            if (song.instruments[i].name == name)
                return static_cast<int>(i);
        return -1;
    }

    int instrumentIndex(const Token& token) const {
        const int index = findInstrument(token.text);
        if (index < 0)
            fail(token, "unknown instrument '" + token.text + "'");
        return index;
    }

    int bar(const Token& token, const std::string& text, int offset) const {
        const bool digits =
            !text.empty() && text.size() < 6 &&
            std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (!digits)
            fail(token, "'" + text + "' is not a bar number", offset);
        const int value = std::stoi(text);
        if (value < 1 || value > totalBars)
            fail(token,
                 "bar " + text + " is outside the song (bars 1 to " + std::to_string(totalBars) +
                     ")",
                 offset);
        return value;
    }

    // "BAR" or "BAR:BEAT" (beats counted from 1, fractions allowed) as a beat from the start.
    double position(const Token& token) const {
        const size_t colon = token.text.find(':');
        const int barNumber = bar(token, token.text.substr(0, colon), 0);
        double beat = 1.0;
        if (colon != std::string::npos) {
            const Token beatToken{token.text.substr(colon + 1), token.line,
                                  token.column + static_cast<int>(colon) + 1};
            beat = numberIn(beatToken, 1.0, song.beatsPerBar + 0.999999, "a beat");
        }
        return song.barToBeat(barNumber) + beat - 1.0;
    }

    void readSections(const Block& block) {
        expectHeader(block, 0, "nothing after it");
        for (const Line& line : block.body) {
            if (line.tokens.size() != 2)
                fail(line.tokens[0], "a section line is a bar and a name, as in '9 groove'");
            const int first = bar(line.tokens[0], line.tokens[0].text, 0);
            if (!song.sections.empty() && first <= song.sections.back().firstBar)
                fail(line.tokens[0], "sections must start at increasing bars");
            song.sections.push_back({newName(line.tokens[1], "section"), first});
        }
    }

    // "FIRST-LAST instrument pattern [+/-semitones] [@velocity]": the pattern repeats to fill
    // the bars; a single bar number plays it once from there.
    void readArrangement(const Block& block) {
        expectHeader(block, 0, "nothing after it");
        for (const Line& line : block.body) {
            if (line.tokens.size() < 3)
                failAtEnd(line, "an arrangement line is bars, instrument and pattern, as in "
                                "'9-24 lead theme'");
            const Token& bars = line.tokens[0];
            const size_t dash = bars.text.find('-');
            const int first = bar(bars, bars.text.substr(0, dash), 0);
            const int instrument = instrumentIndex(line.tokens[1]);
            const auto found = patterns.find(line.tokens[2].text);
            if (found == patterns.end())
                fail(line.tokens[2], "unknown pattern '" + line.tokens[2].text + "'");
            const Pattern& pattern = found->second;
            const int patternBars = static_cast<int>(pattern.bars);
            int last = first + patternBars - 1;
            if (dash != std::string::npos)
                last = bar(bars, bars.text.substr(dash + 1), static_cast<int>(dash) + 1);
            if (last < first)
                fail(bars, "bars " + bars.text + " run backwards");
            const int span = last - first + 1;
            if (span % patternBars != 0)
                fail(bars, "bars " + bars.text + " span " + std::to_string(span) +
                               " bars, not a whole number of repeats of the " +
                               std::to_string(patternBars) + "-bar pattern '" +
                               line.tokens[2].text + "'");
            const Modifiers modifiers = readModifiers(line);
            const std::vector<int> fills = fillStarts(first, last, modifiers);
            place(pattern, instrument, first, span / patternBars, modifiers, fills);
            Modifiers plain = modifiers;
            plain.accent = plain.fill = nullptr;
            for (int fillBar : fills)
                place(*modifiers.fill, instrument, fillBar, 1, plain, {});
        }
    }

    struct Modifiers {
        int transpose = 0;
        double velocity = 1.0;
        const Token* transposeToken = nullptr;
        const Pattern* accent = nullptr; // velocities step by step, repeating over the bars
        const Pattern* fill = nullptr;   // played instead at the end of every phrase
        int phraseBars = 0;
    };

    // After the pattern: +N or -N semitones, @velocity, "accent PATTERN" and
    // "fill PATTERN every BARS".
    Modifiers readModifiers(const Line& line) const {
        Modifiers modifiers;
        for (size_t i = 3; i < line.tokens.size(); ++i) {
            const Token& token = line.tokens[i];
            if (token.text == "accent") {
                modifiers.accent = &patternAfter(line, i, "'accent' needs a pattern of velocities");
            } else if (token.text == "fill") {
                const std::string usage = "'fill' needs a pattern and its phrase, as in "
                                          "'fill snare_fill every 8'";
                modifiers.fill = &patternAfter(line, i, usage);
                if (i + 1 < line.tokens.size() && line.tokens[i + 1].text != "every")
                    fail(line.tokens[i + 1], usage);
                if (i + 2 >= line.tokens.size())
                    failAtEnd(line, usage);
                i += 2;
                const double phrase = numberIn(line.tokens[i], 1.0, totalBars, "a phrase");
                if (phrase != std::floor(phrase) || phrase < modifiers.fill->bars)
                    fail(line.tokens[i], "a phrase is a whole number of bars, at least as many "
                                         "as its fill lasts");
                modifiers.phraseBars = static_cast<int>(phrase);
            } else if (token.text[0] == '@') {
                const Token value{token.text.substr(1), token.line, token.column + 1};
                modifiers.velocity = numberIn(value, 0.0, 2.0, "a velocity scale");
            } else if (token.text[0] == '+' || token.text[0] == '-') {
                const double semitones = numberIn(token, -48.0, 48.0, "a transposition");
                if (semitones != std::floor(semitones))
                    fail(token, "a transposition is a whole number of semitones");
                modifiers.transpose = static_cast<int>(semitones);
                modifiers.transposeToken = &token;
            } else {
                fail(token, "unexpected '" + token.text +
                                "' (expected +N or -N semitones, @velocity, accent or fill)");
            }
        }
        return modifiers;
    }

    // The pattern named by the token after `i`, which moves on to it.
    const Pattern& patternAfter(const Line& line, size_t& i, const std::string& usage) const {
        if (++i == line.tokens.size())
            failAtEnd(line, usage);
        const auto found = patterns.find(line.tokens[i].text);
        if (found == patterns.end())
            fail(line.tokens[i], "unknown pattern '" + line.tokens[i].text + "'");
        return found->second;
    }

    // The first bar of each fill: the last bars of every whole phrase from `first` to `last`.
    static std::vector<int> fillStarts(int first, int last, const Modifiers& modifiers) {
        std::vector<int> starts;
        if (!modifiers.fill)
            return starts;
        const int fillBars = static_cast<int>(modifiers.fill->bars);
        for (int phrase = first; phrase + modifiers.phraseBars - 1 <= last;
             phrase += modifiers.phraseBars)
            starts.push_back(phrase + modifiers.phraseBars - fillBars);
        return starts;
    }

    // The accent's velocity at a beat counted from where it starts; 0 on its rests.
    double accentAt(const Pattern& accent, double beat) const {
        const double place = std::fmod(beat, accent.bars * song.beatsPerBar) + 1e-9;
        for (const PatternNote& step : accent.notes)
            if (step.beat <= place && place < step.beat + step.length)
                return step.velocity;
        return 0.0;
    }

    // Repeats of the pattern from `firstBar`, except in the bars that fills take.
    void place(const Pattern& pattern, int instrument, int firstBar, int repeats,
               const Modifiers& modifiers, const std::vector<int>& fills) {
        std::vector<Note>& notes = song.instruments[static_cast<size_t>(instrument)].notes;
        const double start = song.barToBeat(firstBar);
        for (int r = 0; r < repeats; ++r)
            for (const PatternNote& event : pattern.notes) {
                const double beat = r * pattern.bars * song.beatsPerBar + event.beat;
                const int bar = firstBar + static_cast<int>(std::floor(beat / song.beatsPerBar));
                const bool filled = std::any_of(fills.begin(), fills.end(), [&](int fill) {
                    return bar >= fill && bar < fill + modifiers.fill->bars;
                });
                const double accent = modifiers.accent ? accentAt(*modifiers.accent, beat) : 1.0;
                if (filled || accent <= 0.0)
                    continue;
                for (int key : event.keys) {
                    const int moved = key + modifiers.transpose;
                    if (moved < 0 || moved > 127)
                        fail(*modifiers.transposeToken,
                             "transposing takes a note outside MIDI keys 0-127");
                    notes.push_back({start + beat, event.length, moved,
                                     event.velocity * modifiers.velocity * accent});
                }
            }
    }

    void readAutomation(const Block& block) {
        expectHeader(block, 2,
                     "an instrument (or master) and a parameter, as in "
                     "'automate pad cutoff'");
        const Token& target = block.header.tokens[1];
        const Token& paramToken = block.header.tokens[2];
        Automation automation;
        automation.instrument =
            target.text == "master" ? Automation::kMaster : instrumentIndex(target);
        const ParamSet& params =
            automation.instrument == Automation::kMaster
                ? song.master
                : song.instruments[static_cast<size_t>(automation.instrument)].params;
        const ParamSpec* param = params.find(paramToken.text);
        if (!param)
            fail(paramToken, "'" + target.text + "' has no parameter '" + paramToken.text + "'");
        if (!param->automatable)
            fail(paramToken, "'" + paramToken.text + "' cannot be automated (only " +
                                 automatableNames(params) + ")");
        if (song.findAutomation(automation.instrument, paramToken.text))
            fail(paramToken, "'" + target.text + " " + paramToken.text + "' is automated twice");
        automation.param = param->name;
        automation.interpolation = param->interpolation;
        for (const Line& line : block.body) {
            if (line.tokens.size() != 2)
                fail(line.tokens[0], "an automation point is a position and a value, as in "
                                     "'9:3 1200'");
            const double beat = position(line.tokens[0]);
            if (!automation.points.empty() && beat < automation.points.back().beat)
                fail(line.tokens[0], "automation points must not go back in time");
            automation.points.push_back({beat, numberIn(line.tokens[1], param->minimum,
                                                        param->maximum, "'" + param->name + "'")});
        }
        if (automation.points.empty())
            fail(block.header.tokens[0], "automation without points");
        song.automations.push_back(automation);
    }

    static std::string automatableNames(const ParamSet& params) {
        std::vector<std::string> names;
        for (const ParamSpec& param : params.specs())
            if (param.automatable)
                names.push_back(param.name);
        return joinWords(names);
    }

    // ---- Numbers ----------------------------------------------------------------------------

    double number(const Token& token) const {
        const std::string& text = token.text;
        const bool plain = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
            return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' ||
                   c == 'E';
        });
        char* end = nullptr;
        const double value = plain ? std::strtod(text.c_str(), &end) : 0.0;
        if (!plain || end != text.c_str() + text.size() || !std::isfinite(value))
            fail(token, "'" + text + "' is not a number");
        return value;
    }

    double numberIn(const Token& token, double low, double high, const std::string& what) const {
        const double value = number(token);
        if (value < low || value > high)
            fail(token, token.text + " is out of range for " + what + " (" + formatNumber(low) +
                            " to " + formatNumber(high) + ")");
        return value;
    }

    std::string file;
    std::vector<Line> lines;
    Song song;
    std::map<std::string, Pattern> patterns;
    int totalBars = 0;
};

std::string describe(const std::string& file, int line, int column, const std::string& reason) {
    if (line <= 0)
        return file + ": " + reason;
    return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason;
}

} // namespace

SongError::SongError(const std::string& file, int line, int column, const std::string& reason)
    : std::runtime_error(describe(file, line, column, reason)), lineNumber(line),
      columnNumber(column), why(reason) {}

Song parseSong(const std::string& text, const std::string& fileName) {
    return Parser(text, fileName).parse();
}

Song loadSong(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw SongError(path, 0, 0, "cannot open the song file");
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad())
        throw SongError(path, 0, 0, "cannot read the song file");
    return parseSong(text.str(), path);
}

int parseNoteName(const std::string& name) {
    static const int kPitchClasses[7] = {9, 11, 0, 2, 4, 5, 7}; // A B C D E F G
    if (name.size() < 2 || name[0] < 'A' || name[0] > 'G')
        return -1;
    int key = kPitchClasses[name[0] - 'A'];
    size_t i = 1;
    if (name[i] == '#' || name[i] == 'b') {
        key += name[i] == '#' ? 1 : -1;
        ++i;
    }
    const std::string octave = name.substr(i);
    const bool negative = !octave.empty() && octave[0] == '-';
    const std::string digits = negative ? octave.substr(1) : octave;
    if (digits.size() != 1 || digits[0] < '0' || digits[0] > '9')
        return -1;
    const int octaveNumber = (digits[0] - '0') * (negative ? -1 : 1);
    key += (octaveNumber + 1) * 12;
    return key >= 0 && key <= 127 ? key : -1;
}

} // namespace synth
