#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <string>
#include <vector>

// Small measurements shared by the synthesizer tests.
namespace synth_test {

constexpr double kRate = 44100.0;
constexpr double kPi = 3.141592653589793;

inline int risingZeroCrossings(const std::vector<float>& samples) {
    int count = 0;
    for (size_t i = 1; i < samples.size(); ++i)
        if (samples[i - 1] < 0.0f && samples[i] >= 0.0f)
            ++count;
    return count;
}

// Steady-state amplitude: the largest magnitude over the second half of the buffer.
inline double settledPeak(const std::vector<float>& samples) {
    double peak = 0.0;
    for (size_t i = samples.size() / 2; i < samples.size(); ++i)
        peak = std::fmax(peak, std::fabs(samples[i]));
    return peak;
}

inline double toDb(double ratio) {
    return 20.0 * std::log10(ratio);
}

// A scratch file name of its own for this process and test, so parallel runs never share one.
inline std::string scratchPath(const std::string& name) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    return testing::TempDir() + "synth_" + std::to_string(getpid()) + "_" + test->name() + "_" +
           name;
}

} // namespace synth_test
