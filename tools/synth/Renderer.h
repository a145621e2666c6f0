#pragma once

#include "Song.h"

#include <vector>

namespace synth {

struct AudioBuffer {
    int sampleRate = 44100;
    std::vector<float> left, right;
    long frames() const { return static_cast<long>(left.size()); }
};

// Renders the whole song: every instrument, the reverb and delay buses and the master chain
// (compressor, then a look-ahead limiter under the master ceiling). The result is exactly the
// song's length, and the same song always gives the same samples, whatever `threads` is.
AudioBuffer renderSong(const Song& song, int threads = 2);

} // namespace synth
