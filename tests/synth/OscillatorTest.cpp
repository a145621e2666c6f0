#include "Oscillator.h"
#include "Fft.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace synth;
using namespace synth_test;

namespace {

std::vector<float> generate(Waveform shape, double hz, int count) {
    Oscillator oscillator;
    oscillator.setWaveform(shape);
    oscillator.setFrequency(hz, kRate);
    std::vector<float> out(static_cast<size_t>(count));
    for (float& sample : out)
        sample = static_cast<float>(oscillator.next());
    return out;
}

// The naive (not band-limited) waveforms, the references that alias.
std::vector<float> naive(Waveform shape, double hz, int count) {
    std::vector<float> out(static_cast<size_t>(count));
    double phase = 0.0;
    for (float& sample : out) {
        if (shape == Waveform::Saw)
            sample = static_cast<float>(2.0 * phase - 1.0);
        else if (shape == Waveform::Square)
            sample = phase < 0.5 ? 1.0f : -1.0f;
        else
            sample = static_cast<float>(phase < 0.5 ? 4.0 * phase - 1.0 : 3.0 - 4.0 * phase);
        phase += hz / kRate;
        phase -= std::floor(phase);
    }
    return out;
}

// Share of the power below 10 kHz (where the ear is most sensitive) that lies away from the
// harmonics of `hz`: folded-back (aliased) partials land between them.
double inharmonicShareDb(const std::vector<float>& samples, double hz) {
    const int size = static_cast<int>(samples.size());
    const std::vector<double> spectrum = magnitudeSpectrum(samples.data(), size);
    const double binHz = kRate / size;
    double harmonic = 0.0, other = 0.0;
    for (size_t k = 1; k < spectrum.size() && k * binHz < 10000.0; ++k) {
        const double f = k * binHz;
        const double nearest = std::round(f / hz) * hz;
        const double power = spectrum[k] * spectrum[k];
        (std::fabs(f - nearest) <= 4.0 * binHz ? harmonic : other) += power;
    }
    return 10.0 * std::log10(other / harmonic);
}

} // namespace

TEST(Oscillator, EveryWaveformCyclesAtItsFrequency) {
    for (Waveform shape : {Waveform::Sine, Waveform::Saw, Waveform::Square, Waveform::Triangle}) {
        const std::vector<float> second = generate(shape, 440.0, 44100);
        EXPECT_NEAR(risingZeroCrossings(second), 440, 1) << static_cast<int>(shape);
    }
    EXPECT_NEAR(risingZeroCrossings(generate(Waveform::Saw, 55.0, 44100)), 55, 1);
}

TEST(Oscillator, SpectrumPeaksAtTheFundamental) {
    const int size = 65536;
    const std::vector<float> samples = generate(Waveform::Saw, 1234.5, size);
    const std::vector<double> spectrum = magnitudeSpectrum(samples.data(), size);
    const auto peak = std::max_element(spectrum.begin() + 1, spectrum.end()) - spectrum.begin();
    EXPECT_NEAR(peak * kRate / size, 1234.5, kRate / size);
}

TEST(Oscillator, HighNotesAliasFarLessThanNaiveWaveforms) {
    const int size = 32768;
    const double hz = 2960.0;
    // The naive triangle's corners alias much less than a jump, so it has less to gain.
    const std::pair<Waveform, double> shapes[] = {
        {Waveform::Saw, 20.0}, {Waveform::Square, 20.0}, {Waveform::Triangle, 5.0}};
    for (const auto& [shape, gain] : shapes) {
        const double bandLimited = inharmonicShareDb(generate(shape, hz, size), hz);
        const double reference = inharmonicShareDb(naive(shape, hz, size), hz);
        EXPECT_LT(bandLimited, -40.0) << static_cast<int>(shape);
        EXPECT_LT(bandLimited, reference - gain)
            << static_cast<int>(shape) << " naive " << reference;
    }
}

TEST(Oscillator, WaveformsStayWithinFullScale) {
    for (Waveform shape : {Waveform::Sine, Waveform::Saw, Waveform::Square, Waveform::Triangle})
        for (double hz : {30.0, 440.0, 3000.0, 12000.0}) {
            const std::vector<float> samples = generate(shape, hz, 8192);
            const float peak = std::max(*std::max_element(samples.begin(), samples.end()),
                                        -*std::min_element(samples.begin(), samples.end()));
            EXPECT_LT(peak, 1.1f) << static_cast<int>(shape) << " at " << hz;
            EXPECT_GT(peak, 0.5f) << static_cast<int>(shape) << " at " << hz;
        }
}

TEST(Noise, SeedDecidesTheSequenceAndValuesStayInRange) {
    Noise a(42), b(42), c(43);
    double sum = 0.0;
    bool differs = false;
    for (int i = 0; i < 100000; ++i) {
        const float x = a.next();
        EXPECT_EQ(x, b.next());
        differs |= x != c.next();
        ASSERT_GE(x, -1.0f);
        ASSERT_LT(x, 1.0f);
        sum += x;
    }
    EXPECT_TRUE(differs);
    EXPECT_NEAR(sum / 100000.0, 0.0, 0.01);
    EXPECT_NE(mixSeed(1, 2), mixSeed(2, 1));
}

TEST(Pitch, MidiKeysFollowEqualTemperamentFromA440) {
    EXPECT_DOUBLE_EQ(midiToHz(69), 440.0);
    EXPECT_DOUBLE_EQ(midiToHz(57), 220.0);
    EXPECT_NEAR(midiToHz(60), 261.6256, 1e-3);
}
