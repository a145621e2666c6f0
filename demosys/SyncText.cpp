#include "SyncText.h"

#include "File.h"
#include "KVTTime.h"
#include "StringTokenizer.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"
#include "TrackSystemIO.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>

namespace synctext {

namespace {

const unsigned int RowsPerSecond = 20;
const long BeatsPerBar = 4;
const long MostBars = 100000;
const float MostBeatsPerMinute = 1000.0f;
const unsigned int MillisecondsPerRow = 1000 / RowsPerSecond;
const char* const InterpolationNames[] = {"linear", "ease-out", "ease-in",
                                          "step",   "ramp",     "smooth"};
const int InterpolationCount = 6;

std::vector<std::string> splitWords(const std::string& line) {
    std::string text = line.substr(0, line.find('#'));
    StringTokenizer words(text, " \t\r");
    std::vector<std::string> out;
    while (words.hasMoreTokens()) {
        out.push_back(words.getNext());
    }
    return out;
}

bool parseInteger(const std::string& text, long& out) {
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    out = std::strtol(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0';
}

bool parseFloat(const std::string& text, float& out) {
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    out = std::strtof(text.c_str(), &end);
    return errno == 0 && *end == '\0' && std::isfinite(out);
}

bool validName(const std::string& name) {
    return !name.empty() && name.find('.') == std::string::npos;
}

double rowsPerBeat(float tempo) {
    return 60.0 / tempo * RowsPerSecond;
}

// The row of a beat counted from 0 (bar 1 beat 1), as bar.beat times are compiled.
long beatRow(long beat, float tempo) {
    return std::lround(beat * rowsPerBeat(tempo));
}

// Reads a document line by line, keeping the state of the effect and track being filled.
class Parser {
public:
    Parser(const std::string& file, const Schema* checkedAgainst)
        : fileName(file), schema(checkedAgainst) {}

    bool run(const std::string& text, Document& out) {
        std::istringstream lines(text);
        std::string line;
        while (std::getline(lines, line)) {
            ++lineNumber;
            std::vector<std::string> words = splitWords(line);
            if (!words.empty() && !parseLine(words)) {
                return false;
            }
        }
        if (!flushPattern() || !closeEffect()) {
            return false;
        }
        out = std::move(document);
        return true;
    }

    std::string error;

private:
    bool fail(const std::string& reason) {
        error = fileName + ":" + std::to_string(lineNumber) + ": " + reason;
        return false;
    }

    bool expectArguments(const std::vector<std::string>& words, size_t least, size_t most) {
        size_t given = words.size() - 1;
        if (given < least || given > most) {
            return fail("'" + words[0] + "' takes " + std::to_string(least) +
                        (least == most ? "" : " to " + std::to_string(most)) + " argument" +
                        (most == 1 ? "" : "s") + ", found " + std::to_string(given));
        }
        return true;
    }

    bool parseLine(const std::vector<std::string>& words) {
        const std::string& keyword = words[0];
        if (keyword[0] == '+') {
            return expectArguments(words, 1, 2) &&
                   addPatternKeyframe(keyword, words[1], words.size() > 2 ? words[2] : "linear");
        }
        if (!flushPattern()) {
            return false;
        }
        if (keyword == "every") {
            return expectArguments(words, 4, 4) && openPattern(words);
        }
        if (keyword == "tempo") {
            return expectArguments(words, 1, 1) && parseTempo(words[1]);
        }
        if (keyword == "end") {
            return expectArguments(words, 1, 1) && parseEnd(words[1]);
        }
        if (keyword == "effect") {
            return expectArguments(words, 1, 1) && openEffect(words[1]);
        }
        if (keyword == "priority") {
            return expectArguments(words, 1, 1) && parsePriority(words[1]);
        }
        if (keyword == "start") {
            return expectArguments(words, 1, 2) &&
                   startInterval(words[1], words.size() > 2 ? words[2] : "screen");
        }
        if (keyword == "stop") {
            return expectArguments(words, 1, 1) && stopInterval(words[1]);
        }
        if (keyword == "track") {
            return expectArguments(words, 1, 1) && openTrack(words[1]);
        }
        if (std::isdigit(static_cast<unsigned char>(keyword[0]))) {
            return expectArguments(words, 1, 2) &&
                   addKeyframe(keyword, words[1], words.size() > 2 ? words[2] : "linear");
        }
        return fail("unknown keyword '" + keyword + "'");
    }

    bool parseTempo(const std::string& text) {
        float bpm;
        if (!readTempo(text, bpm)) {
            return fail("tempo '" + text + "' is not a number of beats per minute");
        }
        tempo = bpm;
        return true;
    }

    bool parseEnd(const std::string& text) {
        unsigned int row;
        if (!parseTime(text, row)) {
            return false;
        }
        endRow = row;
        endText = text;
        return true;
    }

    bool parsePriority(const std::string& text) {
        long priority;
        if (!requireEffect("priority")) {
            return false;
        }
        if (!parseInteger(text, priority) || priority < -1000000 || priority > 1000000) {
            return fail("priority '" + text + "' is not a whole number");
        }
        effect().priority = static_cast<int>(priority);
        return true;
    }

    // mm:ss:ms, a row number, or bar.beat at the current tempo.
    bool parseTime(const std::string& text, unsigned int& row) {
        long whole;
        if (text.find(':') != std::string::npos) {
            KVTTime time(text);
            if (!time.isValid()) {
                return fail("time '" + text + "' is not mm:ss:ms");
            }
            row = static_cast<unsigned int>(time.getTicks() / 1000.0 * RowsPerSecond);
        } else if (text.find('.') != std::string::npos) {
            std::string barText = text.substr(0, text.find('.'));
            std::string beatText = text.substr(text.find('.') + 1);
            long bar, beat;
            if (!parseInteger(barText, bar) || !parseInteger(beatText, beat) || bar < 1 ||
                beat < 1 || beat > BeatsPerBar || bar > MostBars) {
                return fail("time '" + text + "' is not bar.beat (bars from 1, beats 1 to 4)");
            }
            row = static_cast<unsigned int>(beatRow((bar - 1) * BeatsPerBar + beat - 1, tempo));
        } else if (parseInteger(text, whole) && whole >= 0 && whole <= 0x7FFFFFFF) {
            row = static_cast<unsigned int>(whole);
        } else {
            return fail("time '" + text + "' is not mm:ss:ms, a row or bar.beat");
        }
        if (endRow >= 0 && row > static_cast<unsigned int>(endRow)) {
            return fail("time '" + text + "' lies past the end " + endText);
        }
        return true;
    }

    bool requireEffect(const std::string& what) {
        if (current < 0) {
            return fail("'" + what + "' outside an effect");
        }
        return true;
    }

    Effect& effect() { return document.effects[static_cast<size_t>(current)]; }

    bool openEffect(const std::string& name) {
        if (!closeEffect()) {
            return false;
        }
        if (!validName(name)) {
            return fail("effect name '" + name + "' must be non-empty and hold no '.'");
        }
        for (const Effect& existing : document.effects) {
            if (existing.name == name) {
                return fail("effect '" + name + "' is declared twice");
            }
        }
        if (schema != nullptr && schema->count(name) == 0) {
            return fail("unknown effect instance '" + name + "'");
        }
        document.effects.push_back(Effect{name, 0, {}, {}});
        current = static_cast<int>(document.effects.size()) - 1;
        return true;
    }

    bool closeEffect() {
        if (openStartLine > 0) {
            int opened = openStartLine;
            openStartLine = 0;
            return fail("the interval started at line " + std::to_string(opened) +
                        " is never stopped");
        }
        return true;
    }

    bool startInterval(const std::string& timeText, const std::string& target) {
        unsigned int row;
        if (!requireEffect("start") || !parseTime(timeText, row)) {
            return false;
        }
        if (openStartLine > 0) {
            return fail("the interval started at line " + std::to_string(openStartLine) +
                        " is not stopped before this start");
        }
        if (!effect().intervals.empty() && row <= effect().intervals.back().stop) {
            return fail("interval overlaps the previous one, which stops at row " +
                        std::to_string(effect().intervals.back().stop));
        }
        effect().intervals.push_back(Interval{row, row, target});
        openStartLine = lineNumber;
        return true;
    }

    bool stopInterval(const std::string& timeText) {
        unsigned int row;
        if (!requireEffect("stop") || !parseTime(timeText, row)) {
            return false;
        }
        if (openStartLine == 0) {
            return fail("'stop' without a started interval");
        }
        if (row <= effect().intervals.back().start) {
            return fail("interval stops at row " + std::to_string(row) +
                        ", not after its start at row " +
                        std::to_string(effect().intervals.back().start));
        }
        effect().intervals.back().stop = row;
        openStartLine = 0;
        return true;
    }

    bool openTrack(const std::string& name) {
        if (!requireEffect("track")) {
            return false;
        }
        if (!validName(name)) {
            return fail("track name '" + name + "' must be non-empty and hold no '.'");
        }
        for (const Track& existing : effect().tracks) {
            if (existing.name == name) {
                return fail("track '" + name + "' is declared twice in '" + effect().name + "'");
            }
        }
        if (schema != nullptr && schema->at(effect().name).count(name) == 0) {
            return fail("effect '" + effect().name + "' has no track '" + name + "'");
        }
        effect().tracks.push_back(Track{name, {}});
        return true;
    }

    bool addKeyframe(const std::string& timeText, const std::string& valueText,
                     const std::string& how) {
        unsigned int row;
        Keyframe key{};
        return requireTrack() && parseTime(timeText, row) && parseValue(valueText, how, key) &&
               pushKeyframe(Keyframe{row, key.interpolation, key.value});
    }

    bool requireTrack() {
        if (current < 0 || effect().tracks.empty()) {
            return fail("keyframe outside a track");
        }
        return true;
    }

    // The value and interpolation of a keyframe line; the row is the caller's.
    bool parseValue(const std::string& valueText, const std::string& how, Keyframe& key) {
        if (!parseFloat(valueText, key.value)) {
            return fail("value '" + valueText + "' is not a number");
        }
        key.interpolation = -1;
        for (int i = 0; i < InterpolationCount; ++i) {
            if (how == InterpolationNames[i]) {
                key.interpolation = i;
            }
        }
        if (key.interpolation < 0) {
            return fail("unknown interpolation '" + how +
                        "' (use linear, ease-out, ease-in, step, ramp or smooth)");
        }
        return true;
    }

    bool pushKeyframe(const Keyframe& key) {
        std::vector<Keyframe>& keys = effect().tracks.back().keyframes;
        if (!keys.empty() && key.row <= keys.back().row) {
            return fail("keyframe at row " + std::to_string(key.row) +
                        " is not after the previous one at row " + std::to_string(keys.back().row));
        }
        keys.push_back(key);
        return true;
    }

    // "every N beat|bar FROM TO": the "+beats value" lines that follow repeat every N beats or
    // bars from FROM up to (not including) TO, each offset in beats after a repetition starts.
    bool openPattern(const std::vector<std::string>& words) {
        float count;
        const std::string& unit = words[2];
        if (!requireTrack()) {
            return false;
        }
        if (!parseFloat(words[1], count) || count <= 0.0f) {
            return fail("'every' needs a positive count, found '" + words[1] + "'");
        }
        if (unit != "beat" && unit != "beats" && unit != "bar" && unit != "bars") {
            return fail("'every' counts in beats or bars, found '" + unit + "'");
        }
        unsigned int from;
        unsigned int to;
        if (!parseTime(words[3], from) || !parseTime(words[4], to)) {
            return false;
        }
        if (to <= from) {
            return fail("'every' must end after it starts");
        }
        pattern = Pattern{
            from, to, count * (unit[1] == 'e' ? 1.0 : BeatsPerBar) * rowsPerBeat(tempo), {}};
        patternLine = lineNumber;
        return true;
    }

    bool addPatternKeyframe(const std::string& offsetText, const std::string& valueText,
                            const std::string& how) {
        float beats;
        Keyframe key{};
        if (patternLine == 0) {
            return fail("'" + offsetText + "' outside an 'every'");
        }
        if (!parseFloat(offsetText.substr(1), beats) || beats < 0.0f) {
            return fail("offset '" + offsetText + "' is not +beats");
        }
        if (!parseValue(valueText, how, key)) {
            return false;
        }
        key.row = static_cast<unsigned int>(std::lround(beats * rowsPerBeat(tempo)));
        if (key.row >= pattern.period) {
            return fail("offset '" + offsetText + "' does not fit in one repetition");
        }
        if (!pattern.keys.empty() && key.row <= pattern.keys.back().row) {
            return fail("offset '" + offsetText + "' is not after the previous one");
        }
        pattern.keys.push_back(key);
        return true;
    }

    // Writes the repetitions of the pattern just closed into the track.
    bool flushPattern() {
        if (patternLine == 0) {
            return true;
        }
        patternLine = 0;
        for (double start = pattern.from; start < pattern.to; start += pattern.period) {
            for (const Keyframe& key : pattern.keys) {
                const auto row = static_cast<unsigned int>(std::lround(start)) + key.row;
                if (row < pattern.to &&
                    !pushKeyframe(Keyframe{row, key.interpolation, key.value})) {
                    return false;
                }
            }
        }
        return true;
    }

    struct Pattern {
        unsigned int from;
        unsigned int to;
        double period;
        std::vector<Keyframe> keys;
    };

    std::string fileName;
    const Schema* schema;
    Document document;
    Pattern pattern{};
    int patternLine = 0;
    int lineNumber = 0;
    int current = -1;
    int openStartLine = 0;
    float tempo = 120.0f;
    long endRow = -1;
    std::string endText;
};

// Silences the engine's loading lines while a tool reads a pack.
class QuietOutput {
public:
    QuietOutput() : saved(std::cout.rdbuf(sink.rdbuf())) {}
    ~QuietOutput() { std::cout.rdbuf(saved); }

private:
    std::ostringstream sink;
    std::streambuf* saved;
};

bool splitKey(const std::string& key, std::string& group, std::string& track) {
    const std::string suffix = ".track";
    if (key.size() <= suffix.size() ||
        key.compare(key.size() - suffix.size(), suffix.size(), suffix) != 0) {
        return false;
    }
    std::string base = key.substr(0, key.size() - suffix.size());
    size_t dot = base.find('.');
    group = base.substr(0, dot);
    track = dot == std::string::npos ? "" : base.substr(dot + 1);
    return !group.empty();
}

void readIntervals(const TrackStartStop& startStop, Effect& effect) {
    effect.priority = startStop.priority;
    for (const auto& entry : startStop.getKeyframes()) {
        const auto* keyframe = static_cast<const TrackStartStopKeyFrame*>(entry.second);
        if (keyframe->type == TrackKeyFrame::START) {
            effect.intervals.push_back(Interval{keyframe->row, keyframe->row, keyframe->target});
        } else if (!effect.intervals.empty()) {
            effect.intervals.back().stop = keyframe->row;
        }
    }
}

void readKeyframes(const TrackInterpolate& source, Track& track) {
    for (const auto& entry : source.getKeyframes()) {
        const auto* keyframe = static_cast<const TrackKeyFrameInterpolate*>(entry.second);
        track.keyframes.push_back(
            Keyframe{keyframe->row, keyframe->interpolation, keyframe->value});
    }
}

} // namespace

bool readTempo(const std::string& text, float& tempo) {
    return parseFloat(text, tempo) && tempo > 0.0f && tempo <= MostBeatsPerMinute;
}

const char* interpolationName(int code) {
    return code >= 0 && code < InterpolationCount ? InterpolationNames[code] : "linear";
}

bool parse(const std::string& text, const std::string& fileName, const Schema* schema,
           Document& out, std::string& error) {
    Parser parser(fileName, schema);
    if (!parser.run(text, out)) {
        error = parser.error;
        return false;
    }
    return true;
}

bool parseSchema(const std::string& text, const std::string& fileName, Schema& out,
                 std::string& error) {
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::vector<std::string> words = splitWords(line);
        if (words.empty()) {
            continue;
        }
        if (words[0].size() < 2 || words[0].back() != ':') {
            error = fileName + ":" + std::to_string(number) +
                    ": expected 'instance: track ...', found '" + words[0] + "'";
            return false;
        }
        std::set<std::string>& tracks = out[words[0].substr(0, words[0].size() - 1)];
        tracks.insert(words.begin() + 1, words.end());
    }
    return true;
}

TrackSystem* buildTrackSystem(const Document& document) {
    auto* system = new TrackSystem;
    for (const Effect& effect : document.effects) {
        auto* group = new TrackGroup(effect.name);
        auto* startStop = new TrackStartStop(effect.priority);
        for (const Interval& interval : effect.intervals) {
            auto* start = new TrackStartStopKeyFrame(interval.start, TrackKeyFrame::START);
            start->target = interval.target;
            startStop->insertInterval(
                start, new TrackStartStopKeyFrame(interval.stop, TrackKeyFrame::STOP));
        }
        group->setStartStopTrack(startStop);
        for (const Track& track : effect.tracks) {
            auto* parameter = new TrackInterpolate(track.name);
            for (const Keyframe& key : track.keyframes) {
                parameter->addKeyframe(
                    new TrackKeyFrameInterpolate(key.row, key.interpolation, key.value));
            }
            group->addInterpolateTrack(parameter);
        }
        system->addTrackGroup(group);
    }
    return system;
}

bool writePack(const Document& document, const std::string& folder, std::string& error) {
    std::unique_ptr<TrackSystem> system(buildTrackSystem(document));
    TrackSystemIO io(folder);
    io.setKeepTargetNames(true);
    if (!io.savePack(system.get())) {
        error = "cannot write the track pack into '" + folder + "'";
        return false;
    }
    return true;
}

bool readPack(const std::string& folder, Document& out, std::string& error) {
    QuietOutput quiet;
    File index(folder + "/index.list", File::READ);
    File data(folder + "/track.data", File::READ);
    if (!index.exists() || !data.exists()) {
        error = "no track pack (index.list and track.data) in '" + folder + "'";
        return false;
    }
    TrackSystemIO io(folder);
    io.setKeepTargetNames(true);
    for (const auto& entry : io.readIndex(&index)) {
        std::string group, trackName;
        if (!splitKey(entry.first, group, trackName)) {
            error = index.getFilename() + ": entry '" + entry.first + "' is not a track name";
            return false;
        }
        if (entry.second < 0 || static_cast<unsigned int>(entry.second) > data.getFileSize()) {
            error = data.getFilename() + ": record '" + entry.first + "' starts past the end";
            return false;
        }
        data.setReadOffset(static_cast<unsigned int>(entry.second));
        if (trackName.empty()) {
            out.effects.push_back(Effect{group, 0, {}, {}});
            std::unique_ptr<TrackStartStop> startStop(io.loadStartStopTrack(&data, group));
            readIntervals(*startStop, out.effects.back());
        } else {
            if (out.effects.empty() || out.effects.back().name != group) {
                error = index.getFilename() + ": track '" + entry.first +
                        "' does not follow its effect's entry";
                return false;
            }
            TrackInterpolate parameter(trackName);
            io.loadInterpolateTrack(&data, group, &parameter);
            out.effects.back().tracks.push_back(Track{trackName, {}});
            readKeyframes(parameter, out.effects.back().tracks.back());
        }
    }
    if (!io.getErrors().empty()) {
        error = io.getErrors().front();
        return false;
    }
    return true;
}

namespace {

// The fewest significant digits that read back to the same float. Whole numbers of up to 9
// digits keep all of them, so that 90 reads "90" rather than "9e+01".
std::string shortestFloat(float value) {
    const double magnitude = std::fabs(static_cast<double>(value));
    const int wholeDigits = magnitude >= 1.0 ? static_cast<int>(std::log10(magnitude)) + 1 : 1;
    char text[32];
    for (int digits = wholeDigits <= 9 ? wholeDigits : 1;; ++digits) {
        std::snprintf(text, sizeof text, "%.*g", digits, static_cast<double>(value));
        const float back = std::strtof(text, nullptr);
        // Compared bit for bit, so that -0 keeps its sign; 9 digits always read back.
        if (std::memcmp(&back, &value, sizeof value) == 0 || digits == 9) {
            return text;
        }
    }
}

std::string formatTime(unsigned int row, float tempo) {
    if (tempo > 0.0f) {
        const long beat = std::lround(row / rowsPerBeat(tempo));
        if (beatRow(beat, tempo) == static_cast<long>(row) && beat / BeatsPerBar < MostBars) {
            return std::to_string(beat / BeatsPerBar + 1) + "." +
                   std::to_string(beat % BeatsPerBar + 1);
        }
    }
    if (row > std::numeric_limits<unsigned int>::max() / MillisecondsPerRow) {
        return std::to_string(row);
    }
    const KVTTime time(row * MillisecondsPerRow);
    return KVTTime::forceStringLength(std::to_string(time.getMinutes()), 2) + ":" +
           KVTTime::forceStringLength(std::to_string(time.getSeconds()), 2) + ":" +
           KVTTime::forceStringLength(std::to_string(time.getMilliseconds()), 3);
}

// Writes a track's keyframe lines with times from time(row).
template <typename TimeText> void formatKeys(std::ostream& out, const Track& track, TimeText time) {
    for (const Keyframe& key : track.keyframes) {
        out << time(key.row) << " " << formatValue(key.value) << " "
            << interpolationName(key.interpolation) << "\n";
    }
}

template <typename TimeText>
void formatEffect(std::ostream& out, const Effect& effect, TimeText time) {
    out << "\neffect " << effect.name << "\npriority " << effect.priority << "\n";
    for (const Interval& interval : effect.intervals) {
        out << "start " << time(interval.start) << " " << interval.target << "\nstop "
            << time(interval.stop) << "\n";
    }
    for (const Track& track : effect.tracks) {
        out << "track " << track.name << "\n";
        formatKeys(out, track, time);
    }
}

const Effect* findEffect(const Document& document, const std::string& name) {
    for (const Effect& effect : document.effects) {
        if (effect.name == name) {
            return &effect;
        }
    }
    return nullptr;
}

const Track* findTrack(const Effect* effect, const std::string& name) {
    if (effect != nullptr) {
        for (const Track& track : effect->tracks) {
            if (track.name == name) {
                return &track;
            }
        }
    }
    return nullptr;
}

bool isKeyframeLine(const std::string& keyword) {
    return keyword == "every" || keyword[0] == '+' ||
           std::isdigit(static_cast<unsigned char>(keyword[0]));
}

// Copies a sync text line by line, putting new keys under the lines of the tracks they
// replace. Comment and blank lines are held back until the next statement, so that tracks an
// effect lacks go in before the comments that open the next effect.
class KeyMerger {
public:
    explicit KeyMerger(const Document& replacing) : keys(replacing) {}

    std::string run(const std::string& text) {
        std::istringstream lines(text);
        std::string line;
        while (std::getline(lines, line)) {
            copyLine(line);
        }
        closeEffect();
        flushHeld();
        for (const Effect& effect : keys.effects) {
            if (seenEffects.count(effect.name) == 0 && !empty(effect)) {
                formatEffect(out, effect, timeText());
            }
        }
        return out.str();
    }

private:
    void copyLine(const std::string& line) {
        const std::vector<std::string> words = splitWords(line);
        if (words.empty()) {
            held.push_back(line);
            return;
        }
        if (isKeyframeLine(words[0])) {
            if (!replacingTrack) {
                flushHeld();
                out << line << "\n";
            }
            return;
        }
        replacingTrack = false;
        if (words[0] == "effect") {
            closeEffect();
            effect = words.size() > 1 ? findEffect(keys, words[1]) : nullptr;
            if (effect != nullptr) {
                seenEffects.insert(effect->name);
            }
        } else if (words[0] == "tempo" && words.size() > 1) {
            readTempo(words[1], tempo);
        }
        flushHeld();
        out << line << "\n";
        if (words[0] == "track" && words.size() > 1) {
            replaceTrack(words[1]);
        }
    }

    void replaceTrack(const std::string& name) {
        const Track* track = findTrack(effect, name);
        if (track != nullptr) {
            formatKeys(out, *track, timeText());
            seenTracks.insert(name);
            replacingTrack = true;
        }
    }

    // Adds the tracks of the effect just ended that its text did not hold.
    void closeEffect() {
        if (effect != nullptr) {
            for (const Track& track : effect->tracks) {
                if (seenTracks.count(track.name) == 0 && !track.keyframes.empty()) {
                    out << "track " << track.name << "\n";
                    formatKeys(out, track, timeText());
                }
            }
        }
        effect = nullptr;
        seenTracks.clear();
    }

    void flushHeld() {
        for (const std::string& line : held) {
            out << line << "\n";
        }
        held.clear();
    }

    std::function<std::string(unsigned int)> timeText() const {
        const float beatsPerMinute = tempo;
        return [beatsPerMinute](unsigned int row) { return formatTime(row, beatsPerMinute); };
    }

    static bool empty(const Effect& effect) {
        return effect.intervals.empty() &&
               std::all_of(effect.tracks.begin(), effect.tracks.end(),
                           [](const Track& track) { return track.keyframes.empty(); });
    }

    const Document& keys;
    std::ostringstream out;
    std::vector<std::string> held;
    std::set<std::string> seenEffects;
    std::set<std::string> seenTracks;
    const Effect* effect = nullptr;
    bool replacingTrack = false;
    float tempo = 0.0f;
};

} // namespace

std::string formatValue(float value) {
    return shortestFloat(value);
}

std::string mergeKeys(const std::string& text, const Document& keys) {
    return KeyMerger(keys).run(text);
}

Document readTrackSystem(const TrackSystem& system) {
    Document document;
    for (int i = 0; i < system.getSortedTrackGroupCount(); ++i) {
        const TrackGroup* group = system.getSortedTrackGroup(i);
        document.effects.push_back(Effect{group->getName(), 0, {}, {}});
        Effect& effect = document.effects.back();
        readIntervals(*group->getStartStopTrack(), effect);
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            const TrackInterpolate* track = group->getInterpolateTrack(j);
            effect.tracks.push_back(Track{track->getName(), {}});
            readKeyframes(*track, effect.tracks.back());
        }
    }
    return document;
}

std::string format(const Document& document, float tempo) {
    std::ostringstream out;
    unsigned int lastRow = 0;
    const auto time = [&](unsigned int row) {
        lastRow = std::max(lastRow, row);
        return formatTime(row, tempo);
    };
    for (const Effect& effect : document.effects) {
        formatEffect(out, effect, time);
    }
    if (tempo <= 0.0f) {
        return "# Sync tracks, times as mm:ss:ms\n" + out.str();
    }
    return "# Sync tracks, times as bar.beat where they fall on a beat, else mm:ss:ms\ntempo " +
           shortestFloat(tempo) + "\nend " + formatTime(lastRow, tempo) + "\n" + out.str();
}

} // namespace synctext
