#pragma once

#include "Analysis.h"
#include "Renderer.h"
#include "Song.h"

#include <ostream>
#include <string>
#include <vector>

namespace synth {

// Loudness as ITU-R BS.1770 defines it: both channels K-weighted (a high shelf for the head,
// a high-pass below the bass), the power taken in 400 ms blocks every 100 ms, and blocks under
// -70 LUFS or 10 LU under the rest left out. Also the true peak, between samples included.
// Measures the whole audio once; any stretch of it can then be asked for.
class LoudnessMeter {
public:
    explicit LoudnessMeter(const AudioBuffer& audio);
    // Integrated loudness in LUFS of the frames [begin, end); minus infinity when every block
    // is gated out (silence, or too short for one block).
    double integrated(long begin, long end) const;
    // The largest true peak in dBTP (0 dB is full scale) of the frames [begin, end).
    double truePeak(long begin, long end) const;

private:
    int sampleRate;
    std::vector<float> power; // K-weighted, both channels summed, per frame
    std::vector<float> peaks; // true peak per frame: the gap before it and the frame itself
};

struct SectionLoudness {
    std::string name;
    double lufs, truePeakDb;
};

struct LoudnessReport {
    double lufs = 0.0, truePeakDb = 0.0;
    std::vector<SectionLoudness> sections;
};

LoudnessReport measureLoudness(const AudioBuffer& audio,
                               const std::vector<SectionReport>& sections);
void printLoudness(const LoudnessReport& report, std::ostream& out);

// The bars in which an instrument starts notes, and how many of them start exactly the same
// notes (places in the bar, lengths and keys; loudness aside) as some earlier bar.
struct BarRepeats {
    int bars = 0;
    int repeats = 0;
    double share() const { return bars ? static_cast<double>(repeats) / bars : 0.0; }
};

BarRepeats repeatedBars(const Song& song, const Instrument& instrument);
// One line for each pitched instrument: how much of its line is a copy of itself.
void printRepeats(const Song& song, std::ostream& out);

} // namespace synth
