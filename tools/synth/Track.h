#pragma once

#include "Effects.h"
#include "Song.h"
#include "Voices.h"

#include <climits>
#include <memory>
#include <vector>

namespace synth {

struct StereoChunk {
    std::vector<float> left, right;
    void clear(int frames);
};

// One instrument on the mixer: plays its notes on its voices, then applies its chorus,
// fader, pan and side-chain ducking, and feeds the reverb and delay sends. Renders in
// consecutive chunks and keeps its state between them.
class Track {
public:
    // `kickFrames`: the start of every kick in the song, for ducking.
    Track(const Song& song, int index, const std::vector<long>& kickFrames);
    void render(long startFrame, int frames);

    // True when the last chunk was all silence: then its buffers hold nothing worth mixing.
    bool isSilent() const { return silent; }
    const StereoChunk& dry() const { return output; }
    const StereoChunk& reverbSend() const { return reverb; }
    const StereoChunk& delaySend() const { return delay; }
    // Whether the sends carry anything at all; silent ones are neither filled nor mixed.
    bool feedsReverb() const { return reverbLevel.used(); }
    bool feedsDelay() const { return delayLevel.used(); }

private:
    struct ScheduledNote {
        long start, end;
        int key;
        double velocity;
        uint32_t seed;
    };
    // A mixer parameter: its automation when it has one, else its set value.
    struct Setting {
        const Automation* curve = nullptr;
        double fixed = 0.0;
        double at(double beat) const { return curve ? curve->valueAt(beat) : fixed; }
        bool used() const { return curve || fixed != 0.0; }
    };
    struct MixGains {
        double left, right, reverb, delay;
    };
    struct Slot {
        std::unique_ptr<Voice> voice;
        long startFrame = 0;
        long releaseFrame = LONG_MAX;
        bool stolen = false;
    };

    // No voice sounds and no note starts before `frame`.
    bool idleUntil(long frame) const;
    // Whether any voice sounded.
    bool playVoices(long startFrame, int frames, float* left, float* right);
    long nextEvent(long from, long limit) const;
    void handleEvents(long frame);
    void startNote(const ScheduledNote& note);
    Slot& freeSlot();
    void makeRoom();
    void mix(long startFrame, int frames);
    MixGains mixGains(long frame) const;
    Setting setting(const char* param) const;
    double beatOf(long frame) const { return frame / framesPerBeat; }
    double duckGain(long frame) const;

    const Song& song;
    const Instrument& instrument;
    int index;
    double sampleRate, framesPerBeat;
    bool mono;
    int polyphony;
    double duck;
    const std::vector<long>& kicks;
    std::vector<ScheduledNote> notes;
    size_t nextNote = 0;
    std::vector<Slot> slots;
    std::unique_ptr<Chorus> chorus;
    StereoChunk output, reverb, delay;
    bool silent = true, playedBefore = false;
    VoiceControl control{};
    Setting volume, pan, reverbLevel, delayLevel, cutoff;
};

} // namespace synth
