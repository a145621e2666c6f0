#pragma once

#include "Analysis.h"

#include <string>

namespace synth {

// A spectrogram picture: time to the right (10 columns a second) over an mm:ss axis, frequency
// upwards on a log scale from 30 Hz to 16 kHz with labelled ticks from 50 Hz to 10 kHz. With a
// song, its sections are full-height lines named along the top, and its bars are ticked and
// numbered every four bars. Throws std::runtime_error naming the file when the picture cannot be
// written or the font cannot be read.
void writeSpectrogram(const AudioBuffer& audio, const Song* song, const std::string& path);

} // namespace synth
