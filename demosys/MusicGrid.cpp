#include "MusicGrid.h"

#include <cmath>

MusicGrid::MusicGrid(double beatsPerMinute)
    : beat(beatsPerMinute > 0.0 ? 60000.0 / beatsPerMinute : 500.0) {}

unsigned int MusicGrid::step(unsigned int time, double unitMs, int count) {
    // Grid lines fall on whole milliseconds only at some tempos: a time within a millisecond
    // of a line counts as on it.
    const double position = time / unitMs;
    const double tolerance = 1.0 / unitMs;
    const double line = count > 0 ? std::floor(position + tolerance) + count
                                  : std::ceil(position - tolerance) + count;
    return line <= 0.0 ? 0u : static_cast<unsigned int>(std::llround(line * unitMs));
}

std::string MusicGrid::barBeat(unsigned int time) const {
    const long beats = static_cast<long>(std::floor(time / beat + 1.0 / beat));
    return std::to_string(beats / BeatsPerBar + 1) + "." + std::to_string(beats % BeatsPerBar + 1);
}
