#pragma once

#include "Envelope.h"
#include "Filter.h"
#include "Oscillator.h"
#include "Params.h"
#include "Song.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace synth {

// What a voice needs to know when it starts a note.
struct NoteStart {
    int key;
    double velocity;
    long lengthFrames; // time until its note-off
    uint32_t seed;     // for its noise, so every render is identical
};

// Values that change while a voice plays, handed to it for each block it renders.
struct VoiceControl {
    double cutoff; // Hz, the instrument's (possibly automated) filter cutoff
};

// One sounding note of an instrument. Voices add into the buffers they are given, so several
// share one output.
class Voice {
public:
    virtual ~Voice() = default;
    virtual void start(const NoteStart& note) = 0;
    // A new note on a monophonic voice that is still sounding: glide there without a restart.
    virtual void legato(const NoteStart& note) { start(note); }
    virtual void release() = 0;
    // Fades out within a few milliseconds: the voice is needed for another note.
    virtual void quickRelease() { release(); }
    virtual void render(float* left, float* right, int frames, const VoiceControl& control) = 0;
    virtual bool finished() const = 0;
};

// Makes the voices of one instrument, each reading its parameters once here.
std::unique_ptr<Voice> makeVoice(InstrumentKind kind, const ParamSet& params, double sampleRate);

} // namespace synth
