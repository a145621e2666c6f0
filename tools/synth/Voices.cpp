#include "Voices.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

constexpr double kTwoPi = 6.283185307179586;
// A drum hit has died away once its envelope is this far down (-80 dB).
constexpr double kInaudible = 1e-4;
constexpr double kQuickReleaseSeconds = 0.005;

// Per-sample factor of an exponential decay with time constant `seconds`.
double decayFactor(double seconds, double sampleRate) {
    return std::exp(-1.0 / (seconds * sampleRate));
}

Waveform waveformFrom(int index) {
    switch (index) {
    case 0:
        return Waveform::Sine;
    case 2:
        return Waveform::Square;
    case 3:
        return Waveform::Triangle;
    default:
        return Waveform::Saw;
    }
}

// ---- Subtractive voice ----------------------------------------------------------------------

struct SynthPatch {
    explicit SynthPatch(const ParamSet& p)
        : wave(waveformFrom(p.getInt("wave"))), wave2(waveformFrom(p.getInt("wave2"))),
          pulseWidth(p.get("pw")), mix2(p.get("mix2")),
          ratio2(std::pow(2.0, (p.get("semi2") + p.get("detune2") / 100.0) / 12.0)),
          sub(p.get("sub")), noise(p.get("noise")), unison(p.getInt("unison")),
          spreadCents(p.get("spread")), width(p.get("width")), attack(p.get("attack")),
          decay(p.get("decay")), sustain(p.get("sustain")), release(p.get("release")),
          q(p.get("q")), envAmount(p.get("envamount")), filterAttack(p.get("fattack")),
          filterDecay(p.get("fdecay")), filterSustain(p.get("fsustain")),
          filterRelease(p.get("frelease")), keyTrack(p.get("keytrack")),
          velocityCutoff(p.get("velcutoff")), vibratoCents(p.get("vibrato")),
          vibratoRate(p.get("vibratorate")), glide(p.get("glide")) {}

    Waveform wave, wave2;
    double pulseWidth, mix2, ratio2, sub, noise;
    int unison;
    double spreadCents, width;
    double attack, decay, sustain, release;
    double q, envAmount, filterAttack, filterDecay, filterSustain, filterRelease;
    double keyTrack, velocityCutoff, vibratoCents, vibratoRate, glide;
};

class SynthVoice : public Voice {
public:
    SynthVoice(const ParamSet& params, double rate)
        : patch(params), sampleRate(rate), velocityGlide(1.0 - decayFactor(0.004, rate)) {
        amp.setSampleRate(rate);
        filterEnvelope.setSampleRate(rate);
        subOscillator.setWaveform(Waveform::Sine);
        const int count = patch.unison;
        for (int i = 0; i < count; ++i) {
            primary[i].setWaveform(patch.wave);
            primary[i].setPulseWidth(patch.pulseWidth);
            secondary[i].setWaveform(patch.wave2);
            secondary[i].setPulseWidth(patch.pulseWidth);
            // Spread the copies evenly over the detune range and across the stereo field.
            const double position = count > 1 ? 2.0 * i / (count - 1) - 1.0 : 0.0;
            detune[i] = std::pow(2.0, position * patch.spreadCents / 2400.0);
            const double angle = (position * patch.width + 1.0) * kTwoPi / 8.0;
            gainLeft[i] = std::cos(angle) * std::sqrt(2.0);
            gainRight[i] = std::sin(angle) * std::sqrt(2.0);
        }
        stereo = count > 1 && patch.width > 0.0;
        unisonGain = 1.0 / std::sqrt(static_cast<double>(count));
    }

    void start(const NoteStart& note) override {
        noise.reseed(note.seed);
        for (int i = 0; i < patch.unison; ++i) {
            // Free-running phases, as in an analogue synth: copies never start in lockstep.
            primary[i].setPhase(patch.unison > 1 ? noise.unit() : 0.0);
            secondary[i].setPhase(patch.unison > 1 ? noise.unit() : 0.0);
        }
        subOscillator.setPhase(0.0);
        filterLeft.reset();
        filterRight.reset();
        key = note.key;
        velocity = note.velocity;
        age = 0;
        vibratoPhase = 0.0;
        trigger(note);
    }

    void legato(const NoteStart& note) override { trigger(note); }

    void release() override {
        amp.noteOff();
        filterEnvelope.noteOff();
    }

    void quickRelease() override {
        amp.set(patch.attack, patch.decay, patch.sustain, kQuickReleaseSeconds);
        amp.noteOff();
    }

    bool finished() const override { return amp.silent(); }

    void render(float* left, float* right, int frames, const VoiceControl& control) override {
        updatePitch(frames);
        updateFilter(control.cutoff);
        for (int done = 0; done < frames; done += kBlock) {
            const int count = std::min(kBlock, frames - done);
            mixOscillators(count);
            filterAndShape(left + done, right + done, count);
        }
        age += frames;
    }

private:
    void trigger(const NoteStart& note) {
        targetKey = note.key;
        targetVelocity = note.velocity;
        amp.set(patch.attack, patch.decay, patch.sustain, patch.release);
        filterEnvelope.set(patch.filterAttack, patch.filterDecay, patch.filterSustain,
                           patch.filterRelease);
        amp.noteOn();
        filterEnvelope.noteOn();
    }

    void updatePitch(int frames) {
        if (patch.glide > 0.0)
            key += (targetKey - key) * (1.0 - std::exp(-frames / (patch.glide * sampleRate)));
        else
            key = targetKey;
        double cents = 0.0;
        if (patch.vibratoCents > 0.0) {
            // Vibrato grows in over the first 0.4 s, so short notes stay steady.
            const double depth = std::min(1.0, age / (0.4 * sampleRate));
            cents = patch.vibratoCents * depth * std::sin(kTwoPi * vibratoPhase);
            vibratoPhase += patch.vibratoRate * frames / sampleRate;
            vibratoPhase -= std::floor(vibratoPhase);
        }
        const double hz = midiToHz(key + cents / 100.0);
        for (int i = 0; i < patch.unison; ++i) {
            primary[i].setFrequency(hz * detune[i], sampleRate);
            secondary[i].setFrequency(hz * detune[i] * patch.ratio2, sampleRate);
        }
        subOscillator.setFrequency(hz * 0.5, sampleRate);
    }

    void updateFilter(double baseCutoff) {
        const double octaves = patch.envAmount * filterEnvelope.level() +
                               patch.keyTrack * (key - 60.0) / 12.0 +
                               patch.velocityCutoff * (velocity - 1.0);
        const double hz = baseCutoff * std::pow(2.0, octaves);
        filterLeft.setup(hz, patch.q, sampleRate);
        filterRight.setup(hz, patch.q, sampleRate);
    }

    double centre() {
        double value = 0.0;
        if (patch.sub > 0.0)
            value += patch.sub * subOscillator.next();
        if (patch.noise > 0.0)
            value += patch.noise * noise.next();
        return value;
    }

    // Sums the oscillators into mixLeft (and mixRight when the copies are spread in stereo).
    void mixOscillators(int frames) {
        std::fill(mixLeft, mixLeft + frames, 0.0);
        std::fill(mixRight, mixRight + frames, 0.0);
        const bool second = patch.mix2 > 0.0;
        for (int i = 0; i < patch.unison; ++i) {
            if (!stereo) {
                primary[i].addTo(mixLeft, frames, unisonGain);
                if (second)
                    secondary[i].addTo(mixLeft, frames, unisonGain * patch.mix2);
                continue;
            }
            std::fill(single, single + frames, 0.0);
            primary[i].addTo(single, frames, unisonGain);
            if (second)
                secondary[i].addTo(single, frames, unisonGain * patch.mix2);
            for (int n = 0; n < frames; ++n) {
                mixLeft[n] += single[n] * gainLeft[i];
                mixRight[n] += single[n] * gainRight[i];
            }
        }
    }

    void filterAndShape(float* left, float* right, int frames) {
        for (int n = 0; n < frames; ++n) {
            const double middle = centre();
            // A legato note may change the velocity: glide there instead of stepping.
            velocity += (targetVelocity - velocity) * velocityGlide;
            const double gain = amp.next() * velocity;
            filterEnvelope.next();
            const double outLeft = filterLeft.lowPass(mixLeft[n] + middle) * gain;
            const double outRight =
                stereo ? filterRight.lowPass(mixRight[n] + middle) * gain : outLeft;
            left[n] += static_cast<float>(outLeft);
            right[n] += static_cast<float>(outRight);
        }
    }

    static constexpr int kBlock = 64;
    static constexpr int kMaxUnison = 9;
    SynthPatch patch;
    double sampleRate;
    Oscillator primary[kMaxUnison], secondary[kMaxUnison], subOscillator;
    double detune[kMaxUnison] = {}, gainLeft[kMaxUnison] = {}, gainRight[kMaxUnison] = {};
    double mixLeft[kBlock], mixRight[kBlock], single[kBlock];
    bool stereo = false;
    double unisonGain = 1.0;
    Noise noise;
    Envelope amp, filterEnvelope;
    StateVariableFilter filterLeft, filterRight;
    double key = 60.0, targetKey = 60.0, velocity = 1.0, targetVelocity = 1.0;
    double velocityGlide = 1.0, vibratoPhase = 0.0;
    long age = 0;
};

// ---- Plucked string (Karplus-Strong) --------------------------------------------------------

class PluckVoice : public Voice {
public:
    PluckVoice(const ParamSet& params, double rate)
        : sampleRate(rate), decaySeconds(params.get("decay")), brightness(params.get("brightness")),
          releaseSeconds(params.get("release")) {
        gate.setSampleRate(rate);
    }

    void start(const NoteStart& note) override {
        const double period = sampleRate / midiToHz(note.key);
        // The loop delays by the line, half a sample in the averaging filter and the
        // fractional rest in an all-pass, which keeps high notes in tune.
        length = std::max(2, static_cast<int>(std::floor(period - 0.6)));
        const double fraction = period - 0.5 - length;
        allpassCoefficient = (1.0 - fraction) / (1.0 + fraction);
        loopGain = std::pow(10.0, -3.0 * period / (sampleRate * decaySeconds));
        excite(note);
        position = 0;
        previous = allpassIn = allpassOut = 0.0;
        tone.reset();
        age = 0;
        lifetime = std::lround(decaySeconds * 1.4 * sampleRate);
        gate.set(0.002, 0.0, 1.0, releaseSeconds);
        gate.noteOn();
    }

    void release() override { gate.noteOff(); }

    void quickRelease() override {
        gate.set(0.002, 0.0, 1.0, kQuickReleaseSeconds);
        gate.noteOff();
    }

    bool finished() const override { return gate.silent(); }

    void render(float* left, float* right, int frames, const VoiceControl& control) override {
        tone.setup(control.cutoff, 0.7071, sampleRate);
        for (int n = 0; n < frames; ++n) {
            const double out = line[position];
            const double averaged = 0.5 * (out + previous);
            previous = out;
            const double delayed =
                allpassCoefficient * averaged + allpassIn - allpassCoefficient * allpassOut;
            allpassIn = averaged;
            allpassOut = delayed;
            line[position] = static_cast<float>(delayed * loopGain);
            if (++position == length)
                position = 0;
            const float value = static_cast<float>(tone.lowPass(out) * gate.next());
            left[n] += value;
            right[n] += value;
        }
        age += frames;
        // Long after the string has died away (-84 dB), let the voice go.
        if (age > lifetime)
            quickRelease();
    }

private:
    // Fills the string with a burst of low-passed noise: brighter for harder notes.
    void excite(const NoteStart& note) {
        Noise noise(note.seed);
        OnePoleLowPass colour;
        colour.setup(150.0 * std::pow(2.0, brightness * 6.0 + note.velocity * 1.5), sampleRate);
        line.assign(static_cast<size_t>(length), 0.0f);
        double mean = 0.0;
        for (float& sample : line) {
            sample = static_cast<float>(colour.process(noise.next()));
            mean += sample;
        }
        mean /= length;
        double peak = 1e-9;
        for (float& sample : line) {
            sample -= static_cast<float>(mean); // no DC left ringing in the loop
            peak = std::max(peak, static_cast<double>(std::fabs(sample)));
        }
        const double scale = note.velocity / peak;
        for (float& sample : line)
            sample = static_cast<float>(sample * scale);
    }

    double sampleRate, decaySeconds, brightness, releaseSeconds;
    std::vector<float> line;
    int length = 2, position = 0;
    double allpassCoefficient = 0.0, loopGain = 0.0;
    double previous = 0.0, allpassIn = 0.0, allpassOut = 0.0;
    StateVariableFilter tone;
    Envelope gate;
    long age = 0, lifetime = 0;
};

// ---- Drums: one-shot hits that ring out by themselves -----------------------------------------

class HitVoice : public Voice {
public:
    explicit HitVoice(double rate) : sampleRate(rate) {}

    void start(const NoteStart& note) override {
        velocity = note.velocity;
        age = 0;
        fade = 1.0;
        fadeStep = 0.0;
        noise.reseed(note.seed);
        begin();
    }

    void release() override {}
    void quickRelease() override { fadeStep = 1.0 / (kQuickReleaseSeconds * sampleRate); }
    bool finished() const override { return fade <= 0.0 || decayed(); }

    void render(float* left, float* right, int frames, const VoiceControl&) override {
        // A short fade-in keeps the very first sample from stepping.
        const double attackFrames = 0.0005 * sampleRate;
        for (int n = 0; n < frames; ++n) {
            const double attack = std::min(1.0, (age + 1) / attackFrames);
            const double gain = velocity * attack * fade;
            const double mid = next();
            const double difference = side();
            fade = std::max(0.0, fade - fadeStep);
            left[n] += static_cast<float>((mid + difference) * gain);
            right[n] += static_cast<float>((mid - difference) * gain);
            ++age;
        }
    }

protected:
    virtual void begin() = 0;
    // The next sample of the middle; then side(), added on the left and taken off the right.
    virtual double next() = 0;
    virtual double side() const { return 0.0; }
    virtual bool decayed() const = 0;

    double sampleRate;
    double velocity = 1.0;
    long age = 0;
    Noise noise;

private:
    double fade = 1.0, fadeStep = 0.0;
};

// A sine whose pitch falls quickly from `punch` to `tune`: the body of kicks and impacts. The
// fall is exponential with the given time constant, bent so that it lands exactly on `tune`
// after four of them, and the ringing tail is in tune instead of a little sharp.
class PitchDrop {
public:
    void setup(double fromHz, double toHz, double dropSeconds, double rate) {
        start = fromHz;
        end = toHz;
        factor = decayFactor(dropSeconds, rate);
        sampleRate = rate;
        envelope = 1.0;
        phase = 0.0;
    }
    double next() {
        const double value = sineOfPhase(phase);
        const double excursion = std::max(0.0, (envelope - kLanding) / (1.0 - kLanding));
        phase += (end + (start - end) * excursion) / sampleRate;
        phase -= std::floor(phase);
        envelope *= factor;
        return value;
    }

private:
    // exp(-4): where the plain exponential stands when the pitch lands.
    static constexpr double kLanding = 0.01831563888873418;
    double start = 0.0, end = 0.0, factor = 0.0, sampleRate = 44100.0;
    double envelope = 1.0, phase = 0.0;
};

class KickVoice : public HitVoice {
public:
    KickVoice(const ParamSet& p, double rate)
        : HitVoice(rate), tune(p.get("tune")), punch(p.get("punch")),
          pitchDecay(p.get("pitchdecay")), decay(p.get("decay")), click(p.get("click")),
          drive(1.0 + 4.0 * p.get("drive")) {
        clickFilter.setup(3000.0, rate);
    }

private:
    void begin() override {
        body.setup(punch, tune, pitchDecay, sampleRate);
        ampFactor = decayFactor(decay, sampleRate);
        clickFactor = decayFactor(0.004, sampleRate);
        amp = 1.0;
        clickLevel = click;
    }
    double next() override {
        double value = body.next() + clickFilter.process(noise.next()) * clickLevel;
        value = softClip(value * drive) / softClip(drive);
        const double out = value * amp;
        amp *= ampFactor;
        clickLevel *= clickFactor;
        return out;
    }
    bool decayed() const override { return amp < kInaudible; }

    double tune, punch, pitchDecay, decay, click, drive;
    PitchDrop body;
    OnePoleLowPass clickFilter;
    double amp = 0.0, ampFactor = 0.0, clickLevel = 0.0, clickFactor = 0.0;
};

class SnareVoice : public HitVoice {
public:
    SnareVoice(const ParamSet& p, double rate)
        : HitVoice(rate), tune(p.get("tune")), decay(p.get("decay")),
          noiseDecay(p.get("noisedecay")), snappy(p.get("snappy")) {
        band.setup(p.get("tone"), 0.8, rate);
    }

private:
    void begin() override {
        body.setup(tune * 1.5, tune, 0.01, sampleRate);
        bodyFactor = decayFactor(decay, sampleRate);
        noiseFactor = decayFactor(noiseDecay, sampleRate);
        bodyAmp = 1.0 - 0.5 * snappy;
        noiseAmp = snappy;
        band.reset();
    }
    double next() override {
        const auto filtered = band.process(noise.next());
        const double out = body.next() * bodyAmp + (filtered.band + 0.5 * filtered.high) * noiseAmp;
        bodyAmp *= bodyFactor;
        noiseAmp *= noiseFactor;
        return out;
    }
    bool decayed() const override { return bodyAmp < kInaudible && noiseAmp < kInaudible; }

    double tune, decay, noiseDecay, snappy;
    PitchDrop body;
    StateVariableFilter band;
    double bodyAmp = 0.0, noiseAmp = 0.0, bodyFactor = 0.0, noiseFactor = 0.0;
};

// Several hands a few milliseconds apart, then the room's tail.
class ClapVoice : public HitVoice {
public:
    ClapVoice(const ParamSet& p, double rate)
        : HitVoice(rate), decay(p.get("decay")), spacing(p.get("spread")),
          bursts(p.getInt("bursts")) {
        band.setup(p.get("tone"), p.get("q"), rate);
    }

private:
    void begin() override {
        band.reset();
        level = 1.0;
    }
    double next() override {
        const double t = age / sampleRate;
        const double tailStart = (bursts - 1) * spacing;
        if (t < tailStart) {
            const double sinceBurst = std::fmod(t, spacing);
            level = std::min(1.0, sinceBurst / 0.0005) * std::exp(-sinceBurst / (spacing * 0.3));
        } else {
            const double sinceTail = t - tailStart;
            level = std::min(1.0, sinceTail / 0.0005) * std::exp(-sinceTail / decay);
        }
        return band.process(noise.next()).band * level * 2.0;
    }
    bool decayed() const override {
        return age > (bursts - 1) * spacing * sampleRate && level < kInaudible;
    }

    double decay, spacing;
    int bursts;
    StateVariableFilter band;
    double level = 1.0;
};

// Six square waves at clashing pitches: the metallic ring of a cymbal, about as loud as noise.
class MetalRing {
public:
    MetalRing(double scale, double rate) {
        const double pitches[kPartials] = {205.3, 304.4, 369.6, 522.7, 540.0, 800.0};
        for (int i = 0; i < kPartials; ++i) {
            partials[i].setWaveform(Waveform::Square);
            partials[i].setFrequency(pitches[i] * scale, rate);
        }
    }
    double next() {
        double ring = 0.0;
        for (Oscillator& partial : partials)
            ring += partial.next();
        return ring / 3.0;
    }

private:
    static constexpr int kPartials = 6;
    Oscillator partials[kPartials];
};

class HatVoice : public HitVoice {
public:
    HatVoice(const ParamSet& p, double rate)
        : HitVoice(rate), decay(p.get("decay")), metal(p.get("metal")), ring(1.0, rate) {
        highPass.setup(p.get("tone"), 0.9, rate);
    }

private:
    void begin() override {
        amp = 1.0;
        ampFactor = decayFactor(decay, sampleRate);
        highPass.reset();
    }
    double next() override {
        // A pure noise hat (a shaker) skips the ring's oscillators.
        const double metallic = metal > 0.0 ? metal * ring.next() : 0.0;
        const double out = highPass.process((1.0 - metal) * noise.next() + metallic).high * amp;
        amp *= ampFactor;
        return out;
    }
    bool decayed() const override { return amp < kInaudible; }

    double decay, metal;
    MetalRing ring;
    StateVariableFilter highPass;
    double amp = 0.0, ampFactor = 0.0;
};

// A crash cymbal: a bright smash that settles into a long shimmering wash, wide in stereo
// (its own noise on each side) and darkening as it fades.
class CrashVoice : public HitVoice {
public:
    CrashVoice(const ParamSet& p, double rate)
        : HitVoice(rate), decay(p.get("decay")), tone(p.get("tone")), metal(p.get("metal")),
          width(p.get("width")), ring(1.7, rate) {
        midHighPass.setup(tone, 0.7071, rate);
        sideHighPass.setup(tone, 0.7071, rate);
    }

private:
    void begin() override {
        sideNoise.reseed(mixSeed(static_cast<uint32_t>(noise.unit() * 4294967296.0), 7));
        midHighPass.reset();
        sideHighPass.reset();
        smash = 1.0;
        wash = kWashLevel;
        smashFactor = decayFactor(kSmashSeconds, sampleRate);
        washFactor = decayFactor(decay, sampleRate);
        darkening = decayFactor(decay * 0.5, sampleRate);
        brightness = 1.0;
    }
    double next() override {
        if (age % kRetuneFrames == 0) {
            // The top closes in from far above the tone towards it as the cymbal calms down.
            const double top = tone * (1.5 + 4.0 * brightness);
            midLowPass.setup(top, sampleRate);
            sideLowPass.setup(top, sampleRate);
        }
        const double amp = smash + wash;
        const double mid = (1.0 - metal) * noise.next() + metal * ring.next();
        const double difference = width * (1.0 - metal) * sideNoise.next();
        sideValue = sideLowPass.process(sideHighPass.process(difference).high) * amp;
        smash *= smashFactor;
        wash *= washFactor;
        brightness *= darkening;
        return midLowPass.process(midHighPass.process(mid).high) * amp;
    }
    double side() const override { return sideValue; }
    bool decayed() const override { return smash + wash < kInaudible; }

    static constexpr double kSmashSeconds = 0.06;
    static constexpr double kWashLevel = 0.45;
    static constexpr long kRetuneFrames = 64;
    double decay, tone, metal, width;
    MetalRing ring;
    Noise sideNoise;
    StateVariableFilter midHighPass, sideHighPass;
    OnePoleLowPass midLowPass, sideLowPass;
    double smash = 0.0, wash = 0.0, smashFactor = 0.0, washFactor = 0.0;
    double brightness = 1.0, darkening = 1.0, sideValue = 0.0;
};

// A low boom with a burst of noise: marks the downbeat of a new section.
class ImpactVoice : public HitVoice {
public:
    ImpactVoice(const ParamSet& p, double rate)
        : HitVoice(rate), tune(p.get("tune")), punch(p.get("punch")),
          pitchDecay(p.get("pitchdecay")), decay(p.get("decay")), noiseLevel(p.get("noise")),
          noiseDecay(p.get("noisedecay")) {
        noiseFilter.setup(p.get("cutoff"), 0.7071, rate);
    }

private:
    void begin() override {
        body.setup(punch, tune, pitchDecay, sampleRate);
        bodyAmp = 1.0;
        noiseAmp = noiseLevel;
        bodyFactor = decayFactor(decay, sampleRate);
        noiseFactor = decayFactor(noiseDecay, sampleRate);
        noiseFilter.reset();
    }
    double next() override {
        const double out = body.next() * bodyAmp + noiseFilter.lowPass(noise.next()) * noiseAmp;
        bodyAmp *= bodyFactor;
        noiseAmp *= noiseFactor;
        return out;
    }
    bool decayed() const override { return bodyAmp < kInaudible && noiseAmp < kInaudible; }

    double tune, punch, pitchDecay, decay, noiseLevel, noiseDecay;
    PitchDrop body;
    StateVariableFilter noiseFilter;
    double bodyAmp = 0.0, noiseAmp = 0.0, bodyFactor = 0.0, noiseFactor = 0.0;
};

// ---- Noise sweep: a riser or a fall that lasts as long as its note --------------------------

class SweepVoice : public Voice {
public:
    SweepVoice(const ParamSet& p, double rate)
        : sampleRate(rate), from(p.get("from")), to(p.get("to")), q(p.get("q")),
          fade(p.getInt("fade")), width(p.get("width")) {
        gate.setSampleRate(rate);
    }

    void start(const NoteStart& note) override {
        noiseLeft.reseed(note.seed);
        noiseRight.reseed(mixSeed(note.seed, 1));
        filterLeft.reset();
        filterRight.reset();
        duration = std::max(1L, note.lengthFrames);
        age = 0;
        velocity = note.velocity;
        gate.set(0.01, 0.0, 1.0, 0.01);
        gate.noteOn();
    }

    void release() override { gate.noteOff(); }
    bool finished() const override { return gate.silent(); }

    void render(float* left, float* right, int frames, const VoiceControl&) override {
        const double progress = std::min(1.0, static_cast<double>(age) / duration);
        const double hz = from * std::pow(to / from, progress);
        filterLeft.setup(hz, q, sampleRate);
        filterRight.setup(hz, q, sampleRate);
        const double startLevel = shape(progress);
        const double endLevel = shape(std::min(1.0, static_cast<double>(age + frames) / duration));
        for (int n = 0; n < frames; ++n) {
            const double level =
                (startLevel + (endLevel - startLevel) * n / frames) * gate.next() * velocity;
            const double a = noiseLeft.next(), b = noiseRight.next();
            const double mid = 0.5 * (a + b);
            left[n] += static_cast<float>(filterLeft.lowPass(mid + width * (a - mid)) * level);
            right[n] += static_cast<float>(filterRight.lowPass(mid + width * (b - mid)) * level);
        }
        age += frames;
    }

private:
    // Loudness over the sweep: swelling in, dying out, or steady.
    double shape(double progress) const {
        switch (fade) {
        case 1:
            return progress * progress;
        case 2:
            return (1.0 - progress) * (1.0 - progress);
        default:
            return 1.0;
        }
    }

    double sampleRate, from, to, q;
    int fade;
    double width;
    Noise noiseLeft, noiseRight;
    StateVariableFilter filterLeft, filterRight;
    Envelope gate;
    long duration = 1, age = 0;
    double velocity = 1.0;
};

} // namespace

std::unique_ptr<Voice> makeVoice(InstrumentKind kind, const ParamSet& params, double sampleRate) {
    switch (kind) {
    case InstrumentKind::Synth:
        return std::make_unique<SynthVoice>(params, sampleRate);
    case InstrumentKind::Pluck:
        return std::make_unique<PluckVoice>(params, sampleRate);
    case InstrumentKind::Kick:
        return std::make_unique<KickVoice>(params, sampleRate);
    case InstrumentKind::Snare:
        return std::make_unique<SnareVoice>(params, sampleRate);
    case InstrumentKind::Clap:
        return std::make_unique<ClapVoice>(params, sampleRate);
    case InstrumentKind::Hat:
        return std::make_unique<HatVoice>(params, sampleRate);
    case InstrumentKind::Crash:
        return std::make_unique<CrashVoice>(params, sampleRate);
    case InstrumentKind::Sweep:
        return std::make_unique<SweepVoice>(params, sampleRate);
    case InstrumentKind::Impact:
        return std::make_unique<ImpactVoice>(params, sampleRate);
    }
    return nullptr;
}

} // namespace synth
