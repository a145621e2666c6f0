#include "MusicTimer.h"

#include "File.h"
#include "FrequencyAnalyser.h"
#include "KVTIO.h"
#include "SoundBuffer.h"
#include "SoundDevice.h"

#include <SDL_version.h>

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace {

// SDL's version as one decimal number: 2.26.5 is 22605.
int soundVersion() {
    SDL_version version{};
    SDL_GetVersion(&version);
    return version.major * 10000 + version.minor * 100 + version.patch;
}

} // namespace

MusicTimer::MusicTimer(std::string name, unsigned int rate)
    : Timer(rate), fileName(std::move(name)), sound(std::make_unique<SoundBuffer>()),
      device(std::make_unique<SoundDevice>()), spectrum(std::make_unique<FrequencyAnalyser>()),
      spectrumA(MAX_SPECTRUM), spectrumB(MAX_SPECTRUM) {}

MusicTimer::~MusicTimer() {
    dispose();
}

bool MusicTimer::fail(const std::string& line, const std::string& text) {
    std::cout << line << std::endl;
    message = text;
    return false;
}

bool MusicTimer::init() {
    result = device->startDriver();
    if (result != 0) {
        return fail("Failed to create the sound System object! Error code: " +
                        std::to_string(result),
                    "Failed to initialize sound!");
    }
    std::cout << "Sound Version = " << soundVersion() << std::endl;
    result = device->open();
    if (result != 0) {
        return fail("Failed to initialize sound! Error code: " + std::to_string(result),
                    "Failed to initialize sound!");
    }
    if (!loadSound()) {
        return false;
    }
    endTime = sound->getLengthMs();
    endRow = endTime / (1000 / rowRate);
    if (!sound->resample(device->getRate())) {
        result = -1;
        return fail("Failed to play sound! Error code: " + std::to_string(result),
                    "Failed to play sound!");
    }
    device->attach(sound.get());
    const unsigned int now = ticks();
    startTicks = now;
    pauseTicks = now;
    lastFrameTime = now;
    return true;
}

bool MusicTimer::decodeOnly() {
    return loadSound();
}

bool MusicTimer::loadSound() {
    bool decoded = false;
    if (KVTIO::ResourceType == KVTIO::KVT_RESOURCES_7Z) {
        std::unique_ptr<File> file(KVTIO::loadFile(fileName));
        if (file == nullptr || !file->exists()) {
            return fail("Error code: 0", "Sound Init : Failed to load soundfile from archive!");
        }
        decoded = sound->decodeMemory(file->getUnsigned(), fileName);
        result = sound->getErrorCode();
    } else {
        decoded = sound->decodeFile(fileName);
    }
    if (!decoded) {
        fail("Failed to create sound sysmte sound! Error code: " + std::to_string(result),
             "Sound Init : Failed to load soundfile!\nThe decoder cannot read it: " +
                 sound->getError());
        std::cout << "Sound : " << sound->getError() << std::endl;
    }
    return decoded;
}

bool MusicTimer::dispose() {
    if (!device->hasChannel()) {
        message = "Failed to shut down sound!";
        device->close();
        return true;
    }
    device->stop();
    device->close();
    sound->clear();
    return false;
}

unsigned int MusicTimer::getSoundChannel() const {
    return device->hasChannel() ? device->getDeviceID() : 0;
}

void MusicTimer::pause() {
    paused = true;
    device->setPaused(true);
    pauseTicks = ticks();
}

void MusicTimer::play() {
    paused = false;
    device->setPaused(false);
    const unsigned int position = getSoundTime();
    startTicks = ticks() - position;
    lastFrameTime = position;
}

void MusicTimer::setTime(unsigned int time) {
    device->seek(static_cast<long>(static_cast<std::uint64_t>(time) * device->getRate() / 1000));
    Timer::setTime(time);
}

void MusicTimer::updateSDLTime(unsigned int time) {
    Timer::setTime(time);
}

unsigned int MusicTimer::getSoundTime() {
    const int rate = device->getRate();
    return rate > 0 ? static_cast<unsigned int>(static_cast<std::uint64_t>(device->getPosition()) *
                                                1000 / rate)
                    : 0;
}

void MusicTimer::channelSpectrum(int offset, int count, float* out) {
    if (!device->hasChannel()) {
        std::fill(out, out + count, 0.0f);
        return;
    }
    spectrum->compute(sound->getSamples(), sound->getFrames(), sound->getChannels(),
                      offset % sound->getChannels(), device->getPosition(), count, out);
}

void MusicTimer::GetDirectSoundData(SoundChannel which, int count, float* out) {
    if (count < 1 || count > MAX_SPECTRUM) {
        return;
    }
    switch (which) {
    case LEFT:
        channelSpectrum(0, count, out);
        return;
    case RIGHT:
        channelSpectrum(1, count, out);
        return;
    case CHANNEL_2:
    case CHANNEL_3: {
        channelSpectrum(0, count, spectrumA.data());
        channelSpectrum(2, count, spectrumB.data());
        const float weight = which == CHANNEL_2 ? 1.0f : 0.5f;
        for (int i = 0; i < count; ++i) {
            out[i] = (spectrumA[i] + spectrumB[i]) * weight;
        }
        return;
    }
    }
}
