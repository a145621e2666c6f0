#pragma once

class SoundBuffer;

// The audio output and the one channel that plays the music on it, through SDL's audio.
// The device runs from opening to closing; the channel's pause only silences it, so the
// play position stands still while paused. When no real device can be started or opened,
// one warning line is printed and SDL's silent "dummy" driver is used instead: it consumes
// samples at the same pace, so the music clock and the demo run as usual.
class SoundDevice {
public:
    // Asked for; a device that runs at another rate is taken as it is.
    static constexpr int REQUESTED_RATE = 44100;

    SoundDevice() = default;
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;

    // Starts SDL's audio driver; 0 on success, else SDL's negative result.
    int startDriver();
    // Opens a stereo float device; 0 on success, else SDL's negative result.
    int open();
    // Output rate of the open device.
    int getRate() const { return rate; }
    bool usesSilentDevice() const { return silent; }

    // Gives the sound (at the device's rate) to the channel, paused at its start. The sound
    // must outlive the channel: stop() or close() end it.
    void attach(const SoundBuffer* sound);
    bool hasChannel() const { return device != 0 && sound != nullptr; }
    // SDL's id of the open audio device, 0 when none is open.
    unsigned int getDeviceID() const { return device; }
    void setPaused(bool flag);
    // In frames at the device's rate; a position past the end stops at the end.
    void seek(long frame);
    long getPosition();
    void stop();
    // Closes the device and stops the driver; safe to call at any time, also twice.
    void close();

private:
    enum class Driver { NONE, SUBSYSTEM, SILENT_ONLY };

    // SDL's audio callback, on SDL's audio thread with the device locked.
    static void fill(void* user, unsigned char* stream, int length);
    void mix(float* out, int frames);
    bool fallBackToSilence(const char* reason);
    unsigned int openDevice();

    Driver driver = Driver::NONE;
    bool silent = false;
    unsigned int device = 0;
    int rate = 0;
    // Shared with the audio thread: changed only under the device lock.
    const SoundBuffer* sound = nullptr;
    long position = 0;
    bool paused = true;
};
