#pragma once

#include "Renderer.h"
#include "Song.h"

#include <ostream>
#include <string>
#include <vector>

namespace synth {

struct Levels {
    double peak = 0.0; // largest absolute sample, either side
    double rms = 0.0;  // over both sides
};

struct SectionReport {
    std::string name;
    int firstBar, lastBar;
    double startSeconds, endSeconds;
    Levels levels;
    double centroidHz; // where the spectrum's weight lies: brighter sections sit higher
    double bassShare;  // fraction of the energy below 150 Hz
};

struct AnalysisReport {
    long frames = 0;
    int sampleRate = 0;
    Levels levels;
    long clippedSamples = 0; // at or beyond full scale
    double dcLeft = 0.0, dcRight = 0.0;
    double tailRms = 0.0; // over the last 100 ms
    double tempo = 0.0;   // beats per minute from onset detection
    std::vector<SectionReport> sections;
};

Levels measureLevels(const AudioBuffer& audio, long begin, long end);

// Tempo in beats per minute between `slowest` and `fastest`, from the strongest periodicity
// (autocorrelation) of the onset strength.
double estimateTempo(const AudioBuffer& audio, double slowest = 80.0, double fastest = 160.0);

// Sections are taken from the song when given; without one the whole file is one section.
AnalysisReport analyse(const AudioBuffer& audio, const Song* song);
void printReport(const AnalysisReport& report, std::ostream& out);

// Levels in time and frequency: 10 columns a second; rows on a log scale from 30 Hz (row 0)
// to 16 kHz, each the strongest bin in its slice, in dB (a full-scale sine reads 0).
struct Spectrogram {
    static constexpr double kColumnsPerSecond = 10.0;
    static constexpr double kLowestHz = 30.0, kHighestHz = 16000.0;

    int columns = 0;
    int rows = 0;
    std::vector<double> db; // row after row, from row 0

    double at(int column, int row) const {
        return db[static_cast<size_t>(row) * static_cast<size_t>(columns) +
                  static_cast<size_t>(column)];
    }
    // Where a frequency lies, in rows from the bottom edge of row 0.
    double rowOf(double hz) const;
};

Spectrogram computeSpectrogram(const AudioBuffer& audio, int rows);

} // namespace synth
