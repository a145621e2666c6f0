#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

class TrackSystem;

// The readable form of a production's sync tracks, compiled to the engine's track pack.
//
//   # comments run to the end of a line
//   tempo 120                  beats per minute for bar.beat times (4 beats a bar)
//   end 02:30:850              optional: no time may lie past it
//   effect postprocess_effect  an effect instance; its lines follow
//   priority 9                 draw order, lower first
//   start 00:00:000 staging0   an interval starts, drawing into a render target
//   stop 9.1                   ... and stops (both rows included)
//   track brightness           a parameter track; keyframe lines follow
//   0:00:000 0.0 ease-in       time, value, interpolation (default linear)
//   every 1 beat 49.1 65.1     repeat the lines below every 1 beat (or N bars) from 49.1 up
//   +0 1.4 ease-out            to 65.1: each "+beats value [interpolation]" line is a
//   +0.5 1.0                   keyframe that many beats after a repetition starts
//
// Times are mm:ss:ms, a plain row number, or bar.beat (1.1 is the very start); all are
// stored as rows at 20 rows per second. Interpolations: linear, ease-out, ease-in, step, ramp,
// smooth.
namespace synctext {

struct Keyframe {
    unsigned int row;
    int interpolation;
    float value;
};

struct Interval {
    unsigned int start;
    unsigned int stop;
    std::string target;
};

struct Track {
    std::string name;
    std::vector<Keyframe> keyframes;
};

struct Effect {
    std::string name;
    int priority = 0;
    std::vector<Interval> intervals;
    std::vector<Track> tracks;
};

struct Document {
    std::vector<Effect> effects;
};

// Effect instances and the track names each declares, to check a document against.
using Schema = std::map<std::string, std::set<std::string>>;

// Parses text; on failure returns false with "file:line: reason" in error.
bool parse(const std::string& text, const std::string& fileName, const Schema* schema,
           Document& out, std::string& error);
// Parses "instance: track track ..." lines.
bool parseSchema(const std::string& text, const std::string& fileName, Schema& out,
                 std::string& error);

// A new track system holding the document's groups and tracks (caller owns it).
TrackSystem* buildTrackSystem(const Document& document);
// Writes the document as a pack into folder; false with a reason when a file can't be written.
bool writePack(const Document& document, const std::string& folder, std::string& error);
// Reads the pack in folder back into a document, keeping record order and raw priorities.
bool readPack(const std::string& folder, Document& out, std::string& error);
// The text form of a document. Values are written in the fewest digits that read back to the
// same float. Without a tempo times are mm:ss:ms; with one (beats per minute) the text opens
// with "tempo" and an "end" at the latest time used, and times on a beat are bar.beat.
std::string format(const Document& document, float tempo = 0.0f);
// The groups and tracks of a running system, in draw order, with their intervals and keys.
Document readTrackSystem(const TrackSystem& system);
// text with the keyframes of every track that keys names replaced by those keys, written
// right under the track's line; comments, intervals, priorities and the order of blocks stay.
// Tracks and effects the text lacks are added at the end of their effect and of the text.
// "every" blocks of a replaced track come back as single keyframes.
std::string mergeKeys(const std::string& text, const Document& keys);
// A value in the fewest digits that read back to the same float.
std::string formatValue(float value);
// Beats per minute as a "tempo" line takes them; false when the text is not one.
bool readTempo(const std::string& text, float& tempo);

const char* interpolationName(int code);

} // namespace synctext
