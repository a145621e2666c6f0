#include "SoundBuffer.h"

#include <SDL_audio.h>
#include <sndfile.h>

#include <algorithm>
#include <memory>

namespace {

// Frames read from the decoder, and fed to the resampler, per call.
const sf_count_t CHUNK_FRAMES = 1 << 16;
// Stereo at most: further channels (centre, surround) are dropped.
const int MAX_CHANNELS = 2;
// A header claiming more frames than this (an hour at 192 kHz) is not trusted for reserving.
const sf_count_t MAX_RESERVED_FRAMES = 3600LL * 192000;

using SoundFile = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

// The file's bytes in memory, read through libsndfile's virtual I/O.
struct MemoryStream {
    const std::vector<unsigned char>& bytes;
    sf_count_t position = 0;

    sf_count_t size() const { return static_cast<sf_count_t>(bytes.size()); }
};

sf_count_t memoryLength(void* user) {
    return static_cast<MemoryStream*>(user)->size();
}

sf_count_t memorySeek(sf_count_t offset, int whence, void* user) {
    auto* stream = static_cast<MemoryStream*>(user);
    const sf_count_t base = whence == SEEK_CUR   ? stream->position
                            : whence == SEEK_END ? stream->size()
                                                 : 0;
    stream->position = std::clamp<sf_count_t>(base + offset, 0, stream->size());
    return stream->position;
}

sf_count_t memoryRead(void* out, sf_count_t count, void* user) {
    auto* stream = static_cast<MemoryStream*>(user);
    const sf_count_t taken = std::clamp<sf_count_t>(count, 0, stream->size() - stream->position);
    std::copy_n(stream->bytes.data() + stream->position, taken, static_cast<unsigned char*>(out));
    stream->position += taken;
    return taken;
}

sf_count_t memoryWrite(const void*, sf_count_t, void*) {
    return 0;
}

sf_count_t memoryTell(void* user) {
    return static_cast<MemoryStream*>(user)->position;
}

// Every frame of the file, keeping at most MAX_CHANNELS channels.
std::vector<float> readAllFrames(SNDFILE* file, const SF_INFO& info) {
    const int kept = std::min(info.channels, MAX_CHANNELS);
    std::vector<float> samples;
    if (info.frames > 0 && info.frames <= MAX_RESERVED_FRAMES) {
        samples.reserve(static_cast<std::size_t>(info.frames) * kept);
    }
    std::vector<float> chunk(static_cast<std::size_t>(CHUNK_FRAMES) * info.channels);
    for (sf_count_t got; (got = sf_readf_float(file, chunk.data(), CHUNK_FRAMES)) > 0;) {
        if (kept == info.channels) {
            samples.insert(samples.end(), chunk.begin(), chunk.begin() + got * info.channels);
            continue;
        }
        for (sf_count_t frame = 0; frame < got; ++frame) {
            const float* first = &chunk[static_cast<std::size_t>(frame * info.channels)];
            samples.insert(samples.end(), first, first + kept);
        }
    }
    return samples;
}

void drain(SDL_AudioStream* stream, std::vector<float>& out) {
    for (int available; (available = SDL_AudioStreamAvailable(stream)) > 0;) {
        const std::size_t old = out.size();
        out.resize(old + static_cast<std::size_t>(available) / sizeof(float));
        const int got = SDL_AudioStreamGet(stream, &out[old], available);
        out.resize(old + static_cast<std::size_t>(std::max(got, 0)) / sizeof(float));
        if (got <= 0) {
            return;
        }
    }
}

} // namespace

bool SoundBuffer::fail(const std::string& name, const std::string& reason, int code) {
    clear();
    errorCode = code;
    error = "'" + name + "' : " + reason;
    return false;
}

bool SoundBuffer::keep(std::vector<float> decoded, int decodedChannels, int decodedRate,
                       int decodeError, const std::string& name) {
    if (decoded.empty() && decodeError != SF_ERR_NO_ERROR) {
        return fail(name, sf_error_number(decodeError), decodeError);
    }
    if (decodedRate <= 0) {
        return fail(name, "no sample rate", SF_ERR_MALFORMED_FILE);
    }
    samples = std::move(decoded);
    channels = std::min(decodedChannels, MAX_CHANNELS);
    rate = decodedRate;
    errorCode = 0;
    error.clear();
    return true;
}

bool SoundBuffer::decodeFile(const std::string& path) {
    SF_INFO info{};
    SoundFile file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
    if (file == nullptr) {
        return fail(path, sf_strerror(nullptr), sf_error(nullptr));
    }
    std::vector<float> decoded = readAllFrames(file.get(), info);
    return keep(std::move(decoded), info.channels, info.samplerate, sf_error(file.get()), path);
}

bool SoundBuffer::decodeMemory(const std::vector<unsigned char>& bytes, const std::string& name) {
    SF_VIRTUAL_IO io{memoryLength, memorySeek, memoryRead, memoryWrite, memoryTell};
    MemoryStream stream{bytes};
    SF_INFO info{};
    SoundFile file(sf_open_virtual(&io, SFM_READ, &info, &stream), sf_close);
    if (file == nullptr) {
        return fail(name, sf_strerror(nullptr), sf_error(nullptr));
    }
    std::vector<float> decoded = readAllFrames(file.get(), info);
    return keep(std::move(decoded), info.channels, info.samplerate, sf_error(file.get()), name);
}

bool SoundBuffer::resample(int newRate) {
    if (newRate == rate) {
        return true;
    }
    SDL_AudioStream* stream =
        SDL_NewAudioStream(AUDIO_F32SYS, channels, rate, AUDIO_F32SYS, channels, newRate);
    if (stream == nullptr) {
        return false;
    }
    std::vector<float> converted;
    converted.reserve(
        static_cast<std::size_t>(static_cast<double>(samples.size()) * newRate / rate) +
        static_cast<std::size_t>(channels));
    const std::size_t chunk = static_cast<std::size_t>(CHUNK_FRAMES) * channels;
    bool fed = true;
    for (std::size_t start = 0; fed && start < samples.size(); start += chunk) {
        const std::size_t count = std::min(chunk, samples.size() - start);
        fed = SDL_AudioStreamPut(stream, &samples[start],
                                 static_cast<int>(count * sizeof(float))) == 0;
        drain(stream, converted);
    }
    fed = fed && SDL_AudioStreamFlush(stream) == 0;
    drain(stream, converted);
    SDL_FreeAudioStream(stream);
    if (!fed) {
        return false;
    }
    samples = std::move(converted);
    rate = newRate;
    return true;
}

void SoundBuffer::clear() {
    samples.clear();
    samples.shrink_to_fit();
    channels = 1;
    rate = 0;
}

unsigned int SoundBuffer::getLengthMs() const {
    return rate > 0 ? static_cast<unsigned int>(static_cast<long long>(getFrames()) * 1000 / rate)
                    : 0;
}
