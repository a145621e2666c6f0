#pragma once

#include <string>
#include <vector>

// A whole piece of music decoded into memory: interleaved float samples, mono or stereo.
// Decodes whatever libsndfile reads (MP3, Ogg Vorbis, FLAC, WAV and more), from a path or
// from the file's bytes in memory. Files with more than two channels keep the first two.
class SoundBuffer {
public:
    // False with getError() set (naming the file) when it cannot be opened or decoded.
    bool decodeFile(const std::string& path);
    bool decodeMemory(const std::vector<unsigned char>& bytes, const std::string& name);
    // Converts the samples to another rate; false when no conversion can be built.
    bool resample(int newRate);
    void clear();

    int getChannels() const { return channels; }
    int getRate() const { return rate; }
    long getFrames() const { return static_cast<long>(samples.size()) / channels; }
    // Length in milliseconds, rounded down.
    unsigned int getLengthMs() const;
    const float* getSamples() const { return samples.data(); }
    // libsndfile's code and text for the last failure (0 and "" after success).
    int getErrorCode() const { return errorCode; }
    std::string getError() const { return error; }

private:
    bool fail(const std::string& name, const std::string& reason, int code);
    // Takes over what the decoder read; false with the error set when it failed before
    // delivering anything.
    bool keep(std::vector<float> decoded, int decodedChannels, int decodedRate, int decodeError,
              const std::string& name);

    std::vector<float> samples;
    int channels = 1;
    int rate = 0;
    int errorCode = 0;
    std::string error;
};
