#pragma once

#include "Timer.h"

#include <memory>
#include <string>
#include <vector>

class SoundBuffer;
class SoundDevice;
class FrequencyAnalyser;

// The music clock: plays the production's music and serves as the demo clock while it
// plays. The whole file is decoded into memory at init(), from the path in folder mode or
// from the archive entry of that name in archive mode, and converted to the output rate.
// The clock itself counts ticks like the plain Timer; the music position is read only at
// play(), so picture and sound are locked together there and then run side by side.
// setTime() moves both. Without a sound device the music plays on a silent one.
class MusicTimer : public Timer {
public:
    // The spectrum's largest count.
    static constexpr int MAX_SPECTRUM = 8192;

    MusicTimer(std::string fileName, unsigned int rowRate);
    // Calls dispose().
    ~MusicTimer() override;
    MusicTimer(const MusicTimer&) = delete;
    MusicTimer& operator=(const MusicTimer&) = delete;

    // Starts the sound system, decodes the music and sets it up paused at its start.
    // False with a printed line and getMessage() on failure.
    bool init() override;
    // Only decodes the music, without a sound device: an offline run checks the music and
    // spends the time a real run would. False with getMessage() when it cannot be decoded.
    bool decodeOnly();
    // Stops the music and releases it and the device: false after a clean shutdown, true
    // (with a message) when no music was set up; whatever a failed init() started is
    // released all the same. Callers ignore the result.
    bool dispose() override;
    void pause() override;
    // Starts the music and sets the clock to the music's position at that moment.
    void play() override;
    // Moves the music and the clock.
    void setTime(unsigned int time) override;
    // Moves the clock only.
    void updateSDLTime(unsigned int time);
    // The music's play position in milliseconds.
    unsigned int getSoundTime();
    // The handle of the channel that plays the music. Over SDL's audio the music has an
    // audio device of its own, so this is that device's id (an SDL_AudioDeviceID), for
    // SDL's device calls; 0 while no music is set up to play, before init() and after
    // dispose().
    unsigned int getSoundChannel() const;
    // count (1 to MAX_SPECTRUM) magnitudes of the music just before its play position:
    // LEFT and RIGHT read channel offsets 0 and 1, CHANNEL_2 the sum of the spectra of
    // offsets 0 and 2, CHANNEL_3 their average. Offsets wrap round the file's channels, so
    // offset 2 is the left channel again, and a mono file gives the same for all.
    // Other selections or counts write nothing.
    void GetDirectSoundData(SoundChannel which, int count, float* out) override;

private:
    bool loadSound();
    bool fail(const std::string& line, const std::string& text);
    void channelSpectrum(int offset, int count, float* out);

    std::string fileName;
    // The last result of the sound layer, printed with failures.
    int result = 0;
    // Declared before the device, so the device stops before the music it plays is freed.
    std::unique_ptr<SoundBuffer> sound;
    std::unique_ptr<SoundDevice> device;
    std::unique_ptr<FrequencyAnalyser> spectrum;
    std::vector<float> spectrumA;
    std::vector<float> spectrumB;
};
