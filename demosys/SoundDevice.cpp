#include "SoundDevice.h"

#include "SoundBuffer.h"

#include <SDL.h>

#include <algorithm>
#include <iostream>

namespace {

const int OUTPUT_CHANNELS = 2;
// About 23 ms at 44.1 kHz: the delay between the position and what is heard.
const Uint16 BUFFER_FRAMES = 1024;
const char* const SILENT_DRIVER = "dummy";

// Holds the device lock for one scope, so the audio thread never sees half a change.
class DeviceLock {
public:
    explicit DeviceLock(SDL_AudioDeviceID id) : device(id) {
        if (device != 0) {
            SDL_LockAudioDevice(device);
        }
    }
    ~DeviceLock() {
        if (device != 0) {
            SDL_UnlockAudioDevice(device);
        }
    }
    DeviceLock(const DeviceLock&) = delete;
    DeviceLock& operator=(const DeviceLock&) = delete;

private:
    SDL_AudioDeviceID device;
};

} // namespace

SoundDevice::~SoundDevice() {
    close();
}

bool SoundDevice::fallBackToSilence(const char* reason) {
    std::cout << "Warning: no sound device (" << reason << "), the music plays silently"
              << std::endl;
    silent = true;
    SDL_AudioQuit();
    return SDL_AudioInit(SILENT_DRIVER) == 0;
}

int SoundDevice::startDriver() {
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) == 0) {
        driver = Driver::SUBSYSTEM;
        return 0;
    }
    // SDL's subsystem count was not raised: the silent driver is then ours to stop.
    if (fallBackToSilence(SDL_GetError())) {
        driver = Driver::SILENT_ONLY;
        return 0;
    }
    return -1;
}

unsigned int SoundDevice::openDevice() {
    SDL_AudioSpec wanted{};
    wanted.freq = REQUESTED_RATE;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = OUTPUT_CHANNELS;
    wanted.samples = BUFFER_FRAMES;
    wanted.callback = fill;
    wanted.userdata = this;
    SDL_AudioSpec obtained{};
    const SDL_AudioDeviceID id =
        SDL_OpenAudioDevice(nullptr, 0, &wanted, &obtained, SDL_AUDIO_ALLOW_FREQUENCY_CHANGE);
    rate = id != 0 ? obtained.freq : 0;
    return id;
}

int SoundDevice::open() {
    device = openDevice();
    if (device == 0 && !silent && fallBackToSilence(SDL_GetError())) {
        device = openDevice();
    }
    if (device == 0) {
        return -1;
    }
    SDL_PauseAudioDevice(device, 0);
    return 0;
}

void SoundDevice::attach(const SoundBuffer* music) {
    DeviceLock lock(device);
    sound = music;
    position = 0;
    paused = true;
}

void SoundDevice::setPaused(bool flag) {
    DeviceLock lock(device);
    paused = flag;
}

void SoundDevice::seek(long frame) {
    DeviceLock lock(device);
    const long end = sound != nullptr ? sound->getFrames() : 0;
    position = std::clamp(frame, 0L, end);
}

long SoundDevice::getPosition() {
    DeviceLock lock(device);
    return position;
}

void SoundDevice::stop() {
    DeviceLock lock(device);
    sound = nullptr;
    position = 0;
    paused = true;
}

void SoundDevice::close() {
    if (device != 0) {
        SDL_CloseAudioDevice(device);
        device = 0;
    }
    sound = nullptr;
    if (driver == Driver::SUBSYSTEM) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    } else if (driver == Driver::SILENT_ONLY) {
        SDL_AudioQuit();
    }
    driver = Driver::NONE;
}

void SoundDevice::fill(void* user, unsigned char* stream, int length) {
    const int frames = length / static_cast<int>(OUTPUT_CHANNELS * sizeof(float));
    static_cast<SoundDevice*>(user)->mix(reinterpret_cast<float*>(stream), frames);
}

void SoundDevice::mix(float* out, int frames) {
    long playing = 0;
    if (sound != nullptr && !paused) {
        playing = std::clamp(sound->getFrames() - position, 0L, static_cast<long>(frames));
        const int channels = sound->getChannels();
        const float* in = sound->getSamples() + position * channels;
        for (long i = 0; i < playing; ++i) {
            out[2 * i] = in[i * channels];
            out[2 * i + 1] = in[i * channels + channels - 1];
        }
        position += playing;
    }
    std::fill(out + 2 * playing, out + 2 * static_cast<long>(frames), 0.0f);
}
