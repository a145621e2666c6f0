#pragma once

#include <string>

// Beats and bars (four beats a bar) of the music at the production's tempo, for stepping
// through time and for naming a time as bar.beat. Without a tempo a beat is half a second.
class MusicGrid {
public:
    static constexpr int BeatsPerBar = 4;

    explicit MusicGrid(double beatsPerMinute);

    double beatMs() const { return beat; }
    double barMs() const { return beat * BeatsPerBar; }
    // count grid lines of unitMs on from time: forward to the count-th line after time,
    // backward to the count-th line before it, so a time between lines first snaps to the
    // neighbouring one. Never before 0.
    static unsigned int step(unsigned int time, double unitMs, int count);
    // "bar.beat" of time, both counted from 1 as the sync text writes them.
    std::string barBeat(unsigned int time) const;

private:
    double beat;
};
