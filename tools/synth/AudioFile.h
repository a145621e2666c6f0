#pragma once

#include "Renderer.h"

#include <string>

namespace synth {

enum class AudioFormat { Mp3, Wav, Flac, Ogg };

// The format a file name's extension asks for (.mp3, .wav, .flac, .ogg); false if none.
bool formatFromPath(const std::string& path, AudioFormat& format);
bool formatFromName(const std::string& name, AudioFormat& format);

// Writes through libsndfile: MP3 at 256 kbit/s, 16-bit WAV and FLAC, or Ogg Vorbis. The file
// is written beside its final name and renamed at the end, so a failure never leaves a
// half-written file under that name. Throws std::runtime_error naming the file.
void writeAudio(const AudioBuffer& audio, const std::string& path, AudioFormat format);

// Reads any file libsndfile understands, as stereo (a mono file is copied to both sides).
AudioBuffer readAudio(const std::string& path);

} // namespace synth
