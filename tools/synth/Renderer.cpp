#include "Renderer.h"

#include "Dynamics.h"
#include "Effects.h"
#include "Filter.h"
#include "Track.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

namespace synth {
namespace {

constexpr int kChunkFrames = 4096;
constexpr double kLookaheadSeconds = 0.005;
constexpr double kLimiterRelease = 0.08;
// The very last samples fade out, so the file never ends on a step.
constexpr double kEndFadeSeconds = 0.01;

std::vector<long> kickFrames(const Song& song) {
    const double framesPerBeat = song.secondsPerBeat() * song.sampleRate;
    std::vector<long> frames;
    for (const Instrument& instrument : song.instruments)
        if (instrument.kind == InstrumentKind::Kick)
            for (const Note& note : instrument.notes)
                frames.push_back(std::lround(note.beat * framesPerBeat));
    std::sort(frames.begin(), frames.end());
    return frames;
}

// Sums track outputs in a fixed order, so the result does not depend on which thread
// rendered which track.
void accumulate(StereoChunk& sum, const StereoChunk& part, int frames) {
    for (int n = 0; n < frames; ++n) {
        sum.left[static_cast<size_t>(n)] += part.left[static_cast<size_t>(n)];
        sum.right[static_cast<size_t>(n)] += part.right[static_cast<size_t>(n)];
    }
}

// Each thread takes the next track nobody has started; a track's output depends only on
// its own state, so who renders it does not matter.
void renderTracks(std::vector<std::unique_ptr<Track>>& tracks, long start, int frames,
                  int threads) {
    std::atomic<size_t> next{0};
    auto work = [&]() {
        for (size_t i = next++; i < tracks.size(); i = next++)
            tracks[i]->render(start, frames);
    };
    std::vector<std::thread> helpers;
    for (int t = 1; t < threads; ++t)
        helpers.emplace_back(work);
    work();
    for (std::thread& helper : helpers)
        helper.join();
}

class MasterBus {
public:
    explicit MasterBus(const Song& s)
        : framesPerBeat(s.secondsPerBeat() * s.sampleRate),
          volume(s.findAutomation(Automation::kMaster, "volume")),
          fixedVolume(s.master.get("volume")),
          compressor(s.master.get("threshold"), s.master.get("ratio"), s.master.get("attack"),
                     s.master.get("release"), s.master.get("makeup"), s.sampleRate),
          limiter(s.master.get("ceiling"), kLookaheadSeconds, kLimiterRelease, s.sampleRate) {
        dcLeft.setup(15.0, s.sampleRate);
        dcRight.setup(15.0, s.sampleRate);
    }

    int latency() const { return limiter.latency(); }

    void process(float* left, float* right, long startFrame, int frames) {
        const double from = gainAt(startFrame);
        const double to = gainAt(startFrame + frames);
        for (int n = 0; n < frames; ++n) {
            const double gain = from + (to - from) * n / frames;
            left[n] = static_cast<float>(dcLeft.process(left[n] * gain));
            right[n] = static_cast<float>(dcRight.process(right[n] * gain));
        }
        compressor.process(left, right, frames);
        limiter.process(left, right, frames);
    }

private:
    double gainAt(long frame) const {
        return decibelsToGain(volume ? volume->valueAt(frame / framesPerBeat) : fixedVolume);
    }

    double framesPerBeat;
    const Automation* volume;
    double fixedVolume;
    OnePoleHighPass dcLeft, dcRight;
    Compressor compressor;
    Limiter limiter;
};

void fadeEnd(AudioBuffer& audio) {
    const long fade = std::min(audio.frames(), std::lround(kEndFadeSeconds * audio.sampleRate));
    for (long i = 0; i < fade; ++i) {
        const size_t at = static_cast<size_t>(audio.frames() - 1 - i);
        const float gain = static_cast<float>(i) / static_cast<float>(fade);
        audio.left[at] *= gain;
        audio.right[at] *= gain;
    }
}

} // namespace

AudioBuffer renderSong(const Song& song, int threads) {
    threads = std::max(1, threads);
    const std::vector<long> kicks = kickFrames(song);
    std::vector<std::unique_ptr<Track>> tracks;
    for (size_t i = 0; i < song.instruments.size(); ++i)
        tracks.push_back(std::make_unique<Track>(song, static_cast<int>(i), kicks));

    StereoDelay delay(song.delay, song.secondsPerBeat(), song.sampleRate);
    Reverb reverb(song.reverb, song.sampleRate);
    MasterBus master(song);
    const float delayToReverb = static_cast<float>(song.delay.get("reverb"));

    AudioBuffer audio;
    audio.sampleRate = song.sampleRate;
    const long length = song.lengthFrames();
    audio.left.reserve(static_cast<size_t>(length));
    audio.right.reserve(static_cast<size_t>(length));
    // The limiter delays everything by its look-ahead: render that much longer and drop the
    // start, so the notes stay on their beats.
    const long total = length + master.latency();
    StereoChunk mixed, toReverb, toDelay, echoes;
    for (long start = 0; start < total; start += kChunkFrames) {
        const int frames = static_cast<int>(std::min<long>(kChunkFrames, total - start));
        renderTracks(tracks, start, frames, threads);
        mixed.clear(frames);
        toReverb.clear(frames);
        toDelay.clear(frames);
        for (const auto& track : tracks) {
            if (track->isSilent())
                continue;
            accumulate(mixed, track->dry(), frames);
            if (track->feedsReverb())
                accumulate(toReverb, track->reverbSend(), frames);
            if (track->feedsDelay())
                accumulate(toDelay, track->delaySend(), frames);
        }
        echoes.clear(frames);
        delay.process(toDelay.left.data(), toDelay.right.data(), echoes.left.data(),
                      echoes.right.data(), frames);
        accumulate(mixed, echoes, frames);
        for (int n = 0; n < frames; ++n) {
            toReverb.left[static_cast<size_t>(n)] +=
                echoes.left[static_cast<size_t>(n)] * delayToReverb;
            toReverb.right[static_cast<size_t>(n)] +=
                echoes.right[static_cast<size_t>(n)] * delayToReverb;
        }
        reverb.process(toReverb.left.data(), toReverb.right.data(), mixed.left.data(),
                       mixed.right.data(), frames);
        master.process(mixed.left.data(), mixed.right.data(), start, frames);
        const long skip = std::max(0L, master.latency() - start);
        for (long n = skip; n < frames; ++n) {
            audio.left.push_back(mixed.left[static_cast<size_t>(n)]);
            audio.right.push_back(mixed.right[static_cast<size_t>(n)]);
        }
    }
    fadeEnd(audio);
    return audio;
}

} // namespace synth
