#pragma once

namespace synth {

// Attack-decay-sustain-release envelope with times in seconds. Each segment takes exactly its
// time to reach its target: the attack rises almost linearly, decay and release fall along an
// exponential curve (which sounds even to the ear) that still lands on its target. A new
// note-on starts the attack from the present level, so retriggering never jumps.
class Envelope {
public:
    enum class Stage { Idle, Attack, Decay, Sustain, Release };

    void setSampleRate(double rate) { sampleRate = rate; }
    void set(double attackSeconds, double decaySeconds, double sustainLevel, double releaseSeconds);
    void noteOn();
    void noteOff();
    double next();
    double level() const { return value; }
    Stage stage() const { return current; }
    bool active() const { return current != Stage::Idle; }
    // Idle, or sustaining at zero: nothing more will be heard until the next note-on.
    bool silent() const {
        return current == Stage::Idle || (current == Stage::Sustain && value == 0.0);
    }

private:
    void enter(Stage stage, double seconds, double curvature);

    double sampleRate = 44100.0;
    double attack = 0.005, decay = 0.1, sustain = 1.0, release = 0.05;
    Stage current = Stage::Idle;
    double value = 0.0;
    // The running segment: value = to + (from - to) * shape, shape falling from 1 to 0
    // as (shape + bias) *= ratio each sample.
    double from = 0.0, to = 0.0;
    double shape = 0.0, bias = 0.0, ratio = 1.0;
    long remaining = 0;
};

} // namespace synth
