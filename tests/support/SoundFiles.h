// Sound files for tests: sine tones of known frequency, written with libsndfile.
#pragma once

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace testsounds {

const int WAV = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
const int FLAC = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
const int OGG = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
const int MP3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

// The frequency at the centre of a spectrum bin, for count values at the given rate
// (2 x count samples per transform).
inline double binFrequency(int bin, int count, int rate) {
    return static_cast<double>(bin) * rate / (2.0 * count);
}

struct Tone {
    double frequency; // Hz
    double amplitude; // 0 to 1
};

// One sine per channel. Written in chunks: libvorbis fails on very large single writes.
// A compression level from 0 (best) to 1 turns lossy formats to a constant bit rate.
inline bool writeTones(const std::string& path, int format, int rate, double seconds,
                       const std::vector<Tone>& tones, double compression = -1.0) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = static_cast<int>(tones.size());
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr) {
        return false;
    }
    if (compression >= 0.0) {
        int mode = SF_BITRATE_MODE_CONSTANT;
        sf_command(file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
        sf_command(file, SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
    }
    const long frames = static_cast<long>(seconds * rate);
    const long chunk = 4096;
    std::vector<float> samples(static_cast<std::size_t>(chunk) * tones.size());
    bool written = true;
    for (long start = 0; written && start < frames; start += chunk) {
        const long count = std::min(chunk, frames - start);
        for (long i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < tones.size(); ++c) {
                const double phase = 2.0 * M_PI * tones[c].frequency * (start + i) / rate;
                samples[i * tones.size() + c] =
                    static_cast<float>(tones[c].amplitude * std::sin(phase));
            }
        }
        written = sf_writef_float(file, samples.data(), count) == count;
    }
    return sf_close(file) == 0 && written;
}

} // namespace testsounds
