#include "AudioFile.h"

#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace synth {
namespace {

// Ogg Vorbis must be fed in pieces: one huge write crashes inside libvorbis.
constexpr long kWriteFrames = 16384;
// libsndfile's MPEG quality scale: 0.2 gives a constant 256 kbit/s.
constexpr double kMp3CompressionLevel = 0.2;

int sndfileFormat(AudioFormat format) {
    switch (format) {
    case AudioFormat::Mp3:
        return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    case AudioFormat::Wav:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    case AudioFormat::Flac:
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    case AudioFormat::Ogg:
        return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    }
    return 0;
}

void configureEncoder(SNDFILE* file, AudioFormat format) {
    if (format != AudioFormat::Mp3)
        return;
    int mode = SF_BITRATE_MODE_CONSTANT;
    sf_command(file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
    double level = kMp3CompressionLevel;
    sf_command(file, SFC_SET_COMPRESSION_LEVEL, &level, sizeof level);
}

bool writeFrames(SNDFILE* file, const AudioBuffer& audio) {
    std::vector<float> interleaved;
    for (long start = 0; start < audio.frames(); start += kWriteFrames) {
        const long count = std::min(kWriteFrames, audio.frames() - start);
        interleaved.resize(static_cast<size_t>(count) * 2);
        for (long i = 0; i < count; ++i) {
            interleaved[static_cast<size_t>(2 * i)] = audio.left[static_cast<size_t>(start + i)];
            interleaved[static_cast<size_t>(2 * i + 1)] =
                audio.right[static_cast<size_t>(start + i)];
        }
        if (sf_writef_float(file, interleaved.data(), count) != count)
            return false;
    }
    return true;
}

std::string lowercase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

bool formatFromName(const std::string& name, AudioFormat& format) {
    const std::string lower = lowercase(name);
    if (lower == "mp3")
        format = AudioFormat::Mp3;
    else if (lower == "wav")
        format = AudioFormat::Wav;
    else if (lower == "flac")
        format = AudioFormat::Flac;
    else if (lower == "ogg")
        format = AudioFormat::Ogg;
    else
        return false;
    return true;
}

bool formatFromPath(const std::string& path, AudioFormat& format) {
    const size_t dot = path.find_last_of('.');
    const size_t slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return false;
    return formatFromName(path.substr(dot + 1), format);
}

void writeAudio(const AudioBuffer& audio, const std::string& path, AudioFormat format) {
    const std::string partial = path + ".part";
    SF_INFO info{};
    info.samplerate = audio.sampleRate;
    info.channels = 2;
    info.format = sndfileFormat(format);
    SNDFILE* file = sf_open(partial.c_str(), SFM_WRITE, &info);
    if (!file)
        throw std::runtime_error("cannot write '" + path + "': " + sf_strerror(nullptr));
    configureEncoder(file, format);
    const bool written = writeFrames(file, audio);
    const std::string problem = written ? "" : sf_strerror(file);
    const bool closed = sf_close(file) == 0;
    if (!written || !closed) {
        std::remove(partial.c_str());
        throw std::runtime_error("cannot write '" + path +
                                 "': " + (problem.empty() ? "error while closing" : problem));
    }
    if (std::rename(partial.c_str(), path.c_str()) != 0) {
        std::remove(partial.c_str());
        throw std::runtime_error("cannot move the finished file to '" + path + "'");
    }
}

AudioBuffer readAudio(const std::string& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file)
        throw std::runtime_error("cannot read '" + path + "': " + sf_strerror(nullptr));
    std::vector<float> interleaved(static_cast<size_t>(info.frames) * info.channels);
    const sf_count_t got = sf_readf_float(file, interleaved.data(), info.frames);
    sf_close(file);
    if (got <= 0 || info.channels < 1)
        throw std::runtime_error("cannot read '" + path + "': no audio in it");
    AudioBuffer audio;
    audio.sampleRate = info.samplerate;
    audio.left.resize(static_cast<size_t>(got));
    audio.right.resize(static_cast<size_t>(got));
    for (sf_count_t i = 0; i < got; ++i) {
        const size_t at = static_cast<size_t>(i * info.channels);
        audio.left[static_cast<size_t>(i)] = interleaved[at];
        audio.right[static_cast<size_t>(i)] = interleaved[at + (info.channels > 1 ? 1 : 0)];
    }
    return audio;
}

} // namespace synth
