#include "Analysis.h"

#include "Fft.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace synth {
namespace {

constexpr int kOnsetWindow = 1024;
constexpr double kOnsetHopSeconds = 0.01;
constexpr int kSpectrogramWindow = 4096;

double toDb(double value) {
    return 20.0 * std::log10(std::max(value, 1e-9));
}

std::vector<float> monoMix(const AudioBuffer& audio) {
    std::vector<float> mono(audio.left.size());
    for (size_t i = 0; i < mono.size(); ++i)
        mono[i] = 0.5f * (audio.left[i] + audio.right[i]);
    return mono;
}

// The frame of `size` samples centred on `centre`, zero outside the audio.
std::vector<float> frameAround(const std::vector<float>& mono, long centre, int size) {
    std::vector<float> frame(static_cast<size_t>(size), 0.0f);
    const long first = centre - size / 2;
    for (int i = 0; i < size; ++i) {
        const long at = first + i;
        if (at >= 0 && at < static_cast<long>(mono.size()))
            frame[static_cast<size_t>(i)] = mono[static_cast<size_t>(at)];
    }
    return frame;
}

void spectralShape(const std::vector<float>& mono, long begin, long end, int sampleRate,
                   double& centroid, double& bassShare) {
    const int size = 4096;
    double weighted = 0.0, total = 0.0, bass = 0.0;
    for (long at = begin + size / 2; at + size / 2 <= end; at += size) {
        const std::vector<float> frame = frameAround(mono, at, size);
        const std::vector<double> magnitudes = magnitudeSpectrum(frame.data(), size);
        for (size_t k = 1; k < magnitudes.size(); ++k) {
            const double hz = static_cast<double>(k) * sampleRate / size;
            const double power = magnitudes[k] * magnitudes[k];
            weighted += hz * power;
            total += power;
            if (hz < 150.0)
                bass += power;
        }
    }
    centroid = total > 0.0 ? weighted / total : 0.0;
    bassShare = total > 0.0 ? bass / total : 0.0;
}

// Spectral flux of the mono mix, one value every 10 ms: how much new energy each frame adds.
std::vector<double> onsetStrength(const AudioBuffer& audio) {
    const std::vector<float> mono = monoMix(audio);
    const long hop = std::lround(kOnsetHopSeconds * audio.sampleRate);
    std::vector<double> strength;
    std::vector<double> previous;
    for (long centre = 0; centre < audio.frames(); centre += hop) {
        const std::vector<float> frame = frameAround(mono, centre, kOnsetWindow);
        std::vector<double> magnitudes = magnitudeSpectrum(frame.data(), kOnsetWindow);
        // Compress the range first, so soft hats count as well as loud kicks.
        for (double& m : magnitudes)
            m = std::log1p(100.0 * m);
        double flux = 0.0;
        if (!previous.empty())
            for (size_t k = 0; k < magnitudes.size(); ++k)
                flux += std::max(0.0, magnitudes[k] - previous[k]);
        strength.push_back(flux);
        previous = std::move(magnitudes);
    }
    return strength;
}

} // namespace

Levels measureLevels(const AudioBuffer& audio, long begin, long end) {
    Levels levels;
    double sum = 0.0;
    begin = std::max(0L, begin);
    end = std::min(end, audio.frames());
    for (long i = begin; i < end; ++i) {
        const double l = audio.left[static_cast<size_t>(i)];
        const double r = audio.right[static_cast<size_t>(i)];
        levels.peak = std::max({levels.peak, std::fabs(l), std::fabs(r)});
        sum += l * l + r * r;
    }
    if (end > begin)
        levels.rms = std::sqrt(sum / (2.0 * static_cast<double>(end - begin)));
    return levels;
}

double estimateTempo(const AudioBuffer& audio, double slowest, double fastest) {
    std::vector<double> strength = onsetStrength(audio);
    double mean = 0.0;
    for (double s : strength)
        mean += s;
    mean /= std::max<size_t>(1, strength.size());
    for (double& s : strength)
        s -= mean;
    // Blur by a frame either side, so a beat period that falls between two whole frames
    // still lines its onsets up.
    std::vector<double> blurred = strength;
    for (size_t i = 1; i + 1 < strength.size(); ++i)
        blurred[i] = 0.25 * strength[i - 1] + 0.5 * strength[i] + 0.25 * strength[i + 1];
    strength = blurred;
    const double framesPerMinute = 60.0 / kOnsetHopSeconds;
    const int shortest = static_cast<int>(std::floor(framesPerMinute / fastest));
    const int longest = static_cast<int>(std::ceil(framesPerMinute / slowest));
    std::vector<double> correlation(static_cast<size_t>(longest + 2), 0.0);
    for (int lag = shortest - 1; lag <= longest + 1; ++lag)
        for (size_t i = static_cast<size_t>(lag); i < strength.size(); ++i)
            correlation[static_cast<size_t>(lag)] +=
                strength[i] * strength[i - static_cast<size_t>(lag)];
    int best = shortest;
    for (int lag = shortest; lag <= longest; ++lag)
        if (correlation[static_cast<size_t>(lag)] > correlation[static_cast<size_t>(best)])
            best = lag;
    // A parabola through the peak and its neighbours finds the lag between whole frames.
    const double a = correlation[static_cast<size_t>(best - 1)];
    const double b = correlation[static_cast<size_t>(best)];
    const double c = correlation[static_cast<size_t>(best + 1)];
    const double curve = a - 2.0 * b + c;
    const double shift = curve < 0.0 ? 0.5 * (a - c) / curve : 0.0;
    return framesPerMinute / (best + shift);
}

AnalysisReport analyse(const AudioBuffer& audio, const Song* song) {
    AnalysisReport report;
    report.frames = audio.frames();
    report.sampleRate = audio.sampleRate;
    report.levels = measureLevels(audio, 0, audio.frames());
    double sumLeft = 0.0, sumRight = 0.0;
    for (long i = 0; i < audio.frames(); ++i) {
        const float l = audio.left[static_cast<size_t>(i)], r = audio.right[static_cast<size_t>(i)];
        report.clippedSamples += (std::fabs(l) >= 1.0f) + (std::fabs(r) >= 1.0f);
        sumLeft += l;
        sumRight += r;
    }
    report.dcLeft = audio.frames() ? sumLeft / audio.frames() : 0.0;
    report.dcRight = audio.frames() ? sumRight / audio.frames() : 0.0;
    const long tail = std::lround(0.1 * audio.sampleRate);
    report.tailRms = measureLevels(audio, audio.frames() - tail, audio.frames()).rms;
    report.tempo = estimateTempo(audio);

    const std::vector<float> mono = monoMix(audio);
    const double seconds = static_cast<double>(audio.frames()) / audio.sampleRate;
    std::vector<Section> sections;
    if (song && !song->sections.empty())
        sections = song->sections;
    else
        sections.push_back({"whole", 1});
    for (size_t i = 0; i < sections.size(); ++i) {
        SectionReport section;
        section.name = sections[i].name;
        section.firstBar = sections[i].firstBar;
        section.startSeconds = song ? song->barToSeconds(sections[i].firstBar) : 0.0;
        section.endSeconds =
            i + 1 < sections.size() ? song->barToSeconds(sections[i + 1].firstBar) : seconds;
        section.lastBar = i + 1 < sections.size()
                              ? sections[i + 1].firstBar - 1
                              : (song ? static_cast<int>(std::ceil(
                                            seconds / (song->beatsPerBar * song->secondsPerBeat())))
                                      : 0);
        const long begin = std::lround(section.startSeconds * audio.sampleRate);
        const long end = std::lround(section.endSeconds * audio.sampleRate);
        section.levels = measureLevels(audio, begin, end);
        spectralShape(mono, begin, end, audio.sampleRate, section.centroidHz, section.bassShare);
        report.sections.push_back(section);
    }
    return report;
}

void printReport(const AnalysisReport& report, std::ostream& out) {
    const double seconds = static_cast<double>(report.frames) / report.sampleRate;
    out << std::fixed << std::setprecision(3);
    out << "length     " << seconds << " s (" << report.frames << " frames at " << report.sampleRate
        << " Hz)\n";
    out << std::setprecision(2);
    out << "peak       " << toDb(report.levels.peak) << " dBFS, RMS " << toDb(report.levels.rms)
        << " dBFS, samples at or over full scale: " << report.clippedSamples << "\n";
    out << std::setprecision(6);
    out << "DC offset  left " << report.dcLeft << ", right " << report.dcRight << "\n";
    out << std::setprecision(1);
    out << "last 0.1 s RMS " << toDb(report.tailRms) << " dBFS\n";
    out << "tempo      " << report.tempo << " BPM (onset autocorrelation)\n\n";
    out << std::left << std::setw(10) << "section" << std::right << std::setw(8) << "bars"
        << std::setw(18) << "time (s)" << std::setw(12) << "peak dBFS" << std::setw(11)
        << "RMS dBFS" << std::setw(14) << "centroid Hz" << std::setw(13) << "bass <150Hz"
        << "\n";
    for (const SectionReport& s : report.sections) {
        const std::string bars = std::to_string(s.firstBar) + "-" + std::to_string(s.lastBar);
        std::ostringstream span;
        span << std::fixed << std::setprecision(3) << s.startSeconds << "-" << s.endSeconds;
        out << std::left << std::setw(10) << s.name << std::right << std::setw(8) << bars
            << std::setw(18) << span.str() << std::setprecision(1) << std::setw(12)
            << toDb(s.levels.peak) << std::setw(11) << toDb(s.levels.rms) << std::setprecision(0)
            << std::setw(14) << s.centroidHz << std::setw(12) << std::setprecision(0)
            << 100.0 * s.bassShare << "%\n";
    }
}

double Spectrogram::rowOf(double hz) const {
    return rows * std::log(hz / kLowestHz) / std::log(kHighestHz / kLowestHz);
}

Spectrogram computeSpectrogram(const AudioBuffer& audio, int rows) {
    const std::vector<float> mono = monoMix(audio);
    const double seconds = static_cast<double>(audio.frames()) / audio.sampleRate;
    Spectrogram result;
    result.columns =
        std::max(1, static_cast<int>(std::ceil(seconds * Spectrogram::kColumnsPerSecond)));
    result.rows = rows;
    result.db.resize(static_cast<size_t>(result.columns) * static_cast<size_t>(rows));
    // Normalise so a full-scale sine reads 0 dB.
    const double scale = 4.0 / kSpectrogramWindow;
    const double binHz = static_cast<double>(audio.sampleRate) / kSpectrogramWindow;
    const double logRange = std::log(Spectrogram::kHighestHz / Spectrogram::kLowestHz);
    for (int x = 0; x < result.columns; ++x) {
        const long centre =
            std::lround((x + 0.5) / Spectrogram::kColumnsPerSecond * audio.sampleRate);
        const std::vector<float> frame = frameAround(mono, centre, kSpectrogramWindow);
        const std::vector<double> magnitudes = magnitudeSpectrum(frame.data(), kSpectrogramWindow);
        for (int y = 0; y < rows; ++y) {
            // Each row covers a slice of the log axis; keep the strongest bin in it.
            const double lowHz = Spectrogram::kLowestHz * std::exp(logRange * y / rows);
            const double highHz = Spectrogram::kLowestHz * std::exp(logRange * (y + 1) / rows);
            const size_t first = static_cast<size_t>(std::lround(lowHz / binHz));
            const size_t last = std::max(first, static_cast<size_t>(std::lround(highHz / binHz)));
            double strongest = 0.0;
            for (size_t k = first; k <= last && k < magnitudes.size(); ++k)
                strongest = std::max(strongest, magnitudes[k]);
            result.db[static_cast<size_t>(y) * static_cast<size_t>(result.columns) +
                      static_cast<size_t>(x)] = toDb(strongest * scale);
        }
    }
    return result;
}

} // namespace synth
