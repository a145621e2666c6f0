#include "Track.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

// Mixer values are recomputed this often and ramped in between, so they never step audibly.
constexpr int kControlFrames = 32;
// Ducking: the gain dips fully within 5 ms of a kick and recovers with this time constant.
constexpr double kDuckAttack = 0.005;
constexpr double kDuckRecovery = 0.09;

} // namespace

void StereoChunk::clear(int frames) {
    left.assign(static_cast<size_t>(frames), 0.0f);
    right.assign(static_cast<size_t>(frames), 0.0f);
}

Track::Track(const Song& s, int i, const std::vector<long>& kickFrames)
    : song(s), instrument(s.instruments[static_cast<size_t>(i)]), index(i),
      sampleRate(s.sampleRate), framesPerBeat(s.secondsPerBeat() * s.sampleRate),
      mono(instrument.params.find("mono") && instrument.params.getFlag("mono")),
      polyphony(instrument.params.getInt("polyphony")), duck(instrument.params.get("duck")),
      kicks(kickFrames) {
    uint32_t count = 0;
    for (const Note& note : instrument.notes) {
        const long start = std::lround(note.beat * framesPerBeat);
        const long end = std::lround((note.beat + note.length) * framesPerBeat);
        notes.push_back({start, end, note.key, note.velocity,
                         mixSeed(static_cast<uint32_t>(index) + 1, count++)});
    }
    if (instrument.params.get("chorus") > 0.0)
        chorus = std::make_unique<Chorus>(instrument.params.get("chorus"), sampleRate);
    volume = setting("volume");
    pan = setting("pan");
    reverbLevel = setting("reverb");
    delayLevel = setting("delay");
    if (instrument.params.find("cutoff"))
        cutoff = setting("cutoff");
}

Track::Setting Track::setting(const char* param) const {
    return {song.findAutomation(index, param), instrument.params.get(param)};
}

void Track::render(long startFrame, int frames) {
    // Between notes, with every voice and the chorus run out, there is nothing to do.
    if (!playedBefore && idleUntil(startFrame + frames)) {
        silent = true;
        return;
    }
    output.clear(frames);
    bool played = false;
    for (int offset = 0; offset < frames; offset += kControlFrames) {
        const int length = std::min(kControlFrames, frames - offset);
        control.cutoff = cutoff.at(beatOf(startFrame + offset));
        played |= playVoices(startFrame + offset, length, output.left.data() + offset,
                             output.right.data() + offset);
    }
    // One chunk more after the last voice stops lets the chorus's short delay run empty.
    silent = !played && !playedBefore;
    playedBefore = played;
    if (silent)
        return;
    if (chorus)
        chorus->process(output.left.data(), output.right.data(), frames);
    mix(startFrame, frames);
}

bool Track::playVoices(long startFrame, int frames, float* left, float* right) {
    bool played = false;
    long frame = startFrame;
    const long end = startFrame + frames;
    while (frame < end) {
        handleEvents(frame);
        const long until = nextEvent(frame, end);
        const int length = static_cast<int>(until - frame);
        const long offset = frame - startFrame;
        for (Slot& slot : slots)
            if (!slot.voice->finished()) {
                slot.voice->render(left + offset, right + offset, length, control);
                played = true;
            }
        frame = until;
    }
    return played;
}

bool Track::idleUntil(long frame) const {
    const bool noteComing = nextNote < notes.size() && notes[nextNote].start < frame;
    return !noteComing && std::all_of(slots.begin(), slots.end(),
                                      [](const Slot& slot) { return slot.voice->finished(); });
}

long Track::nextEvent(long from, long limit) const {
    long next = limit;
    if (nextNote < notes.size())
        next = std::min(next, notes[nextNote].start);
    for (const Slot& slot : slots)
        if (slot.releaseFrame > from)
            next = std::min(next, slot.releaseFrame);
    return std::max(next, from + 1);
}

void Track::handleEvents(long frame) {
    // Note-offs first, so a monophonic line hands over to the next note smoothly.
    for (Slot& slot : slots)
        if (slot.releaseFrame <= frame) {
            slot.voice->release();
            slot.releaseFrame = LONG_MAX;
        }
    while (nextNote < notes.size() && notes[nextNote].start <= frame)
        startNote(notes[nextNote++]);
}

void Track::startNote(const ScheduledNote& note) {
    const NoteStart start{note.key, note.velocity, note.end - note.start, note.seed};
    if (mono && !slots.empty()) {
        Slot& slot = slots.front();
        if (slot.voice->finished())
            slot.voice->start(start);
        else
            slot.voice->legato(start);
        slot.startFrame = note.start;
        slot.releaseFrame = note.end;
        return;
    }
    makeRoom();
    Slot& slot = freeSlot();
    slot.voice->start(start);
    slot.startFrame = note.start;
    slot.releaseFrame = note.end;
    slot.stolen = false;
}

// At the polyphony limit, the oldest sounding note fades out quickly to make room.
void Track::makeRoom() {
    int sounding = 0;
    Slot* oldest = nullptr;
    for (Slot& slot : slots) {
        if (slot.voice->finished() || slot.stolen)
            continue;
        ++sounding;
        if (!oldest || slot.startFrame < oldest->startFrame)
            oldest = &slot;
    }
    if (oldest && sounding >= polyphony) {
        oldest->voice->quickRelease();
        oldest->stolen = true;
        oldest->releaseFrame = LONG_MAX;
    }
}

Track::Slot& Track::freeSlot() {
    for (Slot& slot : slots)
        if (slot.voice->finished())
            return slot;
    slots.push_back({makeVoice(instrument.kind, instrument.params, sampleRate)});
    return slots.back();
}

double Track::duckGain(long frame) const {
    if (duck <= 0.0)
        return 1.0;
    const auto after = std::upper_bound(kicks.begin(), kicks.end(), frame);
    if (after == kicks.begin())
        return 1.0;
    const double t = (frame - *(after - 1)) / sampleRate;
    const double depth =
        t < kDuckAttack ? t / kDuckAttack : std::exp(-(t - kDuckAttack) / kDuckRecovery);
    return 1.0 - duck * depth;
}

Track::MixGains Track::mixGains(long frame) const {
    const double beat = beatOf(frame);
    const double gain = decibelsToGain(volume.at(beat)) * duckGain(frame);
    // Equal-power pan law: unity on both sides at the centre.
    const double angle = (pan.at(beat) + 1.0) * 0.7853981633974483;
    return {gain * std::cos(angle) * std::sqrt(2.0), gain * std::sin(angle) * std::sqrt(2.0),
            reverbLevel.at(beat), delayLevel.at(beat)};
}

void Track::mix(long startFrame, int frames) {
    const bool sendReverb = feedsReverb(), sendDelay = feedsDelay();
    if (sendReverb)
        reverb.clear(frames);
    if (sendDelay)
        delay.clear(frames);
    for (int offset = 0; offset < frames; offset += kControlFrames) {
        const int length = std::min(kControlFrames, frames - offset);
        // Ramp every gain from this block's start to its end.
        const MixGains from = mixGains(startFrame + offset);
        const MixGains to = mixGains(startFrame + offset + length);
        for (int n = 0; n < length; ++n) {
            const double t = static_cast<double>(n) / length;
            const size_t i = static_cast<size_t>(offset + n);
            const float left =
                static_cast<float>(output.left[i] * (from.left + (to.left - from.left) * t));
            const float right =
                static_cast<float>(output.right[i] * (from.right + (to.right - from.right) * t));
            const float toReverb = static_cast<float>(from.reverb + (to.reverb - from.reverb) * t);
            const float toDelay = static_cast<float>(from.delay + (to.delay - from.delay) * t);
            output.left[i] = left;
            output.right[i] = right;
            if (sendReverb) {
                reverb.left[i] = left * toReverb;
                reverb.right[i] = right * toReverb;
            }
            if (sendDelay) {
                delay.left[i] = left * toDelay;
                delay.right[i] = right * toDelay;
            }
        }
    }
}

} // namespace synth
