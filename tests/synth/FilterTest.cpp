#include "Filter.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>

using namespace synth;
using namespace synth_test;

namespace {

enum class Output { Low, Band, High };

// Gain in dB of the filter for a sine at `hz`, measured once it has settled.
double gainDb(double cutoff, double q, double hz, Output output = Output::Low) {
    StateVariableFilter filter;
    filter.setup(cutoff, q, kRate);
    std::vector<float> out(44100);
    for (size_t i = 0; i < out.size(); ++i) {
        const auto y = filter.process(std::sin(2.0 * kPi * hz * i / kRate));
        out[i] = static_cast<float>(output == Output::Low    ? y.low
                                    : output == Output::Band ? y.band
                                                             : y.high);
    }
    return toDb(settledPeak(out));
}

} // namespace

TEST(StateVariableFilter, ButterworthLowPassIsThreeDecibelsDownAtCutoff) {
    for (double cutoff : {200.0, 1000.0, 8000.0}) {
        EXPECT_NEAR(gainDb(cutoff, 0.7071, cutoff), -3.01, 0.1) << cutoff;
        EXPECT_NEAR(gainDb(cutoff, 0.7071, cutoff / 8.0), 0.0, 0.1) << cutoff;
    }
    EXPECT_NEAR(gainDb(1000.0, 0.7071, 1000.0, Output::High), -3.01, 0.1);
}

TEST(StateVariableFilter, FallsTwelveDecibelsPerOctaveAboveCutoff) {
    const double oneOctave = gainDb(500.0, 0.7071, 1000.0);
    const double twoOctaves = gainDb(500.0, 0.7071, 2000.0);
    EXPECT_NEAR(oneOctave, -12.3, 0.5);
    EXPECT_NEAR(twoOctaves - oneOctave, -12.0, 0.6);
}

TEST(StateVariableFilter, ResonanceRaisesTheCutoffByQ) {
    EXPECT_NEAR(gainDb(1000.0, 4.0, 1000.0), toDb(4.0), 0.15);
    EXPECT_GT(gainDb(1000.0, 4.0, 1000.0), gainDb(1000.0, 4.0, 800.0));
    EXPECT_GT(gainDb(1000.0, 4.0, 1000.0), gainDb(1000.0, 4.0, 1250.0));
}

TEST(StateVariableFilter, StaysStableAtTheTopOfTheRange) {
    StateVariableFilter filter;
    filter.setup(30000.0, 20.0, kRate);
    double peak = 0.0;
    for (int i = 0; i < 44100; ++i)
        peak = std::fmax(peak, std::fabs(filter.lowPass(i % 2 ? 1.0 : -1.0)));
    EXPECT_LT(peak, 100.0);
}

TEST(OnePoleFilters, ThreeDecibelsDownAtCutoffAndPassingTheOtherBand) {
    OnePoleLowPass low;
    low.setup(200.0, kRate);
    OnePoleHighPass high;
    high.setup(20.0, kRate);
    std::vector<float> lowOut(44100), highOut(44100);
    for (size_t i = 0; i < lowOut.size(); ++i) {
        lowOut[i] = static_cast<float>(low.process(std::sin(2.0 * kPi * 200.0 * i / kRate)));
        highOut[i] = static_cast<float>(high.process(std::sin(2.0 * kPi * 1000.0 * i / kRate)));
    }
    EXPECT_NEAR(toDb(settledPeak(lowOut)), -3.0, 0.2);
    EXPECT_NEAR(toDb(settledPeak(highOut)), 0.0, 0.1);
    double dc = 1.0;
    for (int i = 0; i < 44100; ++i)
        dc = high.process(1.0);
    EXPECT_LT(std::fabs(dc), 1e-3) << "DC is removed";
}
