#include "Loudness.h"

#include "TruePeak.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <map>
#include <set>
#include <tuple>

namespace synth {
namespace {

constexpr double kBlockSeconds = 0.4;
constexpr int kHopsPerBlock = 4; // blocks overlap by 75 %
constexpr double kAbsoluteGate = -70.0;
constexpr double kRelativeGate = -10.0;
// The rate the standard tabulates its filters at.
constexpr double kTableRate = 48000.0;

// A second-order section, y = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2) x.
struct Biquad {
    double b0, b1, b2, a1, a2;
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;

    double process(double x) {
        const double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// The two K-weighting stages at 48 kHz: the head's high shelf and the revised low-frequency
// B-curve high-pass.
constexpr Biquad kShelfAt48k{1.53512485958697, -2.69169618940638, 1.19839281085285,
                             -1.69065929318241, 0.73248077421585};
constexpr Biquad kHighPassAt48k{1.0, -2.0, 1.0, -1.99004745483398, 0.99007225036621};

// The same analogue response at another rate: undoing the bilinear transform at 48 kHz and
// redoing it at `rate` replaces z^-1 by (k + z^-1) / (1 + k z^-1).
Biquad atRate(const Biquad& table, double rate) {
    const double r = rate / kTableRate;
    const double k = (1.0 - r) / (1.0 + r);
    const auto substitute = [k](double c0, double c1, double c2) {
        return std::array<double, 3>{c0 + c1 * k + c2 * k * k,
                                     2.0 * k * c0 + c1 * (1.0 + k * k) + 2.0 * k * c2,
                                     c0 * k * k + c1 * k + c2};
    };
    const auto b = substitute(table.b0, table.b1, table.b2);
    const auto a = substitute(1.0, table.a1, table.a2);
    return {b[0] / a[0], b[1] / a[0], b[2] / a[0], a[1] / a[0], a[2] / a[0]};
}

class KWeighting {
public:
    explicit KWeighting(double rate)
        : shelf(atRate(kShelfAt48k, rate)), highPass(atRate(kHighPassAt48k, rate)) {}
    double process(double x) { return highPass.process(shelf.process(x)); }

private:
    Biquad shelf, highPass;
};

double blockLoudness(double meanPower) {
    return -0.691 + 10.0 * std::log10(meanPower);
}

// The mean power of the blocks louder than `gate`, and how many there were.
std::pair<double, int> gatedMean(const std::vector<double>& blocks, double gate) {
    double sum = 0.0;
    int count = 0;
    for (double block : blocks)
        if (block > 0.0 && blockLoudness(block) > gate) {
            sum += block;
            ++count;
        }
    return {count ? sum / count : 0.0, count};
}

double decibels(double gain) {
    return 20.0 * std::log10(std::max(gain, 1e-10));
}

using BarNotes = std::vector<std::tuple<long, long, int>>;

// Each bar's note starts, as (place in the bar, length, key), in millionths of a beat.
std::map<long, BarNotes> notesByBar(const Song& song, const Instrument& instrument) {
    std::map<long, BarNotes> bars;
    for (const Note& note : instrument.notes) {
        const long bar = static_cast<long>(std::floor(note.beat / song.beatsPerBar + 1e-9));
        const double place = note.beat - static_cast<double>(bar) * song.beatsPerBar;
        bars[bar].emplace_back(std::lround(place * 1e6), std::lround(note.length * 1e6), note.key);
    }
    for (auto& entry : bars)
        std::sort(entry.second.begin(), entry.second.end());
    return bars;
}

} // namespace

LoudnessMeter::LoudnessMeter(const AudioBuffer& audio) : sampleRate(audio.sampleRate) {
    KWeighting left(sampleRate), right(sampleRate);
    TruePeakDetector peakLeft, peakRight;
    const long frames = audio.frames();
    const long late = TruePeakDetector::latency();
    power.resize(static_cast<size_t>(frames));
    peaks.resize(static_cast<size_t>(frames));
    for (long n = 0; n < frames + late; ++n) {
        const bool inside = n < frames;
        const float l = inside ? audio.left[static_cast<size_t>(n)] : 0.0f;
        const float r = inside ? audio.right[static_cast<size_t>(n)] : 0.0f;
        const double peak = std::max(peakLeft.push(l), peakRight.push(r));
        if (n >= late)
            peaks[static_cast<size_t>(n - late)] = static_cast<float>(peak);
        if (inside) {
            const double wl = left.process(l), wr = right.process(r);
            power[static_cast<size_t>(n)] = static_cast<float>(wl * wl + wr * wr);
        }
    }
}

double LoudnessMeter::integrated(long begin, long end) const {
    begin = std::max(0L, begin);
    end = std::min(end, static_cast<long>(power.size()));
    const long hop = std::lround(kBlockSeconds / kHopsPerBlock * sampleRate);
    std::vector<double> hops;
    for (long at = begin; at + hop <= end; at += hop) {
        double sum = 0.0;
        for (long n = at; n < at + hop; ++n)
            sum += power[static_cast<size_t>(n)];
        hops.push_back(sum);
    }
    std::vector<double> blocks;
    for (size_t i = 0; i + kHopsPerBlock <= hops.size(); ++i) {
        double sum = 0.0;
        for (size_t j = i; j < i + kHopsPerBlock; ++j)
            sum += hops[j];
        blocks.push_back(sum / static_cast<double>(hop * kHopsPerBlock));
    }
    const auto [ungated, loud] = gatedMean(blocks, kAbsoluteGate);
    if (loud == 0)
        return -std::numeric_limits<double>::infinity();
    const double gate = std::max(kAbsoluteGate, blockLoudness(ungated) + kRelativeGate);
    return blockLoudness(gatedMean(blocks, gate).first);
}

double LoudnessMeter::truePeak(long begin, long end) const {
    begin = std::max(0L, begin);
    end = std::min(end, static_cast<long>(peaks.size()));
    float peak = 0.0f;
    for (long n = begin; n < end; ++n)
        peak = std::max(peak, peaks[static_cast<size_t>(n)]);
    return decibels(peak);
}

LoudnessReport measureLoudness(const AudioBuffer& audio,
                               const std::vector<SectionReport>& sections) {
    const LoudnessMeter meter(audio);
    LoudnessReport report;
    report.lufs = meter.integrated(0, audio.frames());
    report.truePeakDb = meter.truePeak(0, audio.frames());
    for (const SectionReport& section : sections) {
        const long begin = std::lround(section.startSeconds * audio.sampleRate);
        const long end = std::lround(section.endSeconds * audio.sampleRate);
        report.sections.push_back(
            {section.name, meter.integrated(begin, end), meter.truePeak(begin, end)});
    }
    return report;
}

void printLoudness(const LoudnessReport& report, std::ostream& out) {
    out << std::fixed << std::setprecision(2) << "\nloudness   " << report.lufs
        << " LUFS integrated (ITU-R BS.1770 gating), true peak " << report.truePeakDb << " dBTP\n";
    out << std::left << std::setw(10) << "section" << std::right << std::setw(8) << "LUFS"
        << std::setw(16) << "true peak dBTP"
        << "\n";
    for (const SectionLoudness& section : report.sections)
        out << std::left << std::setw(10) << section.name << std::right << std::setw(8)
            << section.lufs << std::setw(16) << section.truePeakDb << "\n";
}

BarRepeats repeatedBars(const Song& song, const Instrument& instrument) {
    BarRepeats result;
    std::set<BarNotes> heard;
    for (const auto& entry : notesByBar(song, instrument)) {
        ++result.bars;
        if (!heard.insert(entry.second).second)
            ++result.repeats;
    }
    return result;
}

void printRepeats(const Song& song, std::ostream& out) {
    out << "\nbars that repeat an earlier bar exactly (notes, places and lengths)\n";
    for (const Instrument& instrument : song.instruments) {
        if (instrument.kind != InstrumentKind::Synth && instrument.kind != InstrumentKind::Pluck)
            continue;
        const BarRepeats repeats = repeatedBars(song, instrument);
        if (repeats.bars == 0)
            continue;
        out << std::left << std::setw(10) << instrument.name << std::right << std::setw(4)
            << repeats.repeats << " of " << std::setw(3) << repeats.bars << " bars ("
            << std::setprecision(0) << 100.0 * repeats.share() << "%)\n";
    }
}

} // namespace synth
