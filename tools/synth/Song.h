#pragma once

#include "Params.h"

#include <string>
#include <vector>

namespace synth {

enum class InstrumentKind { Synth, Pluck, Kick, Snare, Clap, Hat, Crash, Sweep, Impact };

// A note placed in time, in beats from the start of the song.
struct Note {
    double beat;
    double length;
    int key; // MIDI key number, 69 = A4 = 440 Hz
    double velocity;
};

struct Instrument {
    std::string name;
    InstrumentKind kind;
    ParamSet params;
    std::vector<Note> notes; // sorted by start
};

struct AutomationPoint {
    double beat;
    double value;
};

// A parameter following breakpoints: before the first it holds the first value, after the
// last the last one, in between it moves as the parameter's interpolation says.
struct Automation {
    int instrument; // index into Song::instruments, or kMaster
    std::string param;
    Interpolation interpolation = Interpolation::Linear;
    std::vector<AutomationPoint> points;

    static constexpr int kMaster = -1;
    double valueAt(double beat) const;
};

struct Section {
    std::string name;
    int firstBar; // 1-based
};

struct Song {
    double tempo = 120.0;
    int beatsPerBar = 4;
    int sampleRate = 44100;
    double lengthSeconds = 0.0;
    ParamSet reverb;
    ParamSet delay;
    ParamSet master;
    std::vector<Instrument> instruments;
    std::vector<Section> sections;
    std::vector<Automation> automations;

    double secondsPerBeat() const { return 60.0 / tempo; }
    double barToBeat(double bar) const { return (bar - 1.0) * beatsPerBar; }
    double barToSeconds(double bar) const { return barToBeat(bar) * secondsPerBeat(); }
    long lengthFrames() const;
    // The automation of that parameter, or null when it stays at its set value.
    const Automation* findAutomation(int instrument, const std::string& param) const;
};

// The kind with that name; false when there is none.
bool kindFromName(const std::string& name, InstrumentKind& kind);
// Parameter tables. Every instrument kind also understands the mixer's parameters.
const std::vector<ParamSpec>& instrumentParams(InstrumentKind kind);
const std::vector<ParamSpec>& reverbParams();
const std::vector<ParamSpec>& delayParams();
const std::vector<ParamSpec>& masterParams();

} // namespace synth
