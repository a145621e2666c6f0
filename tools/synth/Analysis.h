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

// A spectrogram picture: time to the right (10 columns a second), frequency upwards on a
// log scale from 30 Hz to 16 kHz, with section starts as full-height lines and bars as ticks.
// Throws std::runtime_error naming the file when it cannot be written.
void writeSpectrogram(const AudioBuffer& audio, const Song* song, const std::string& path);

} // namespace synth
