#include "Dynamics.h"
#include "Effects.h"
#include "Loudness.h"
#include "SignalHelpers.h"
#include "Song.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace synth;
using namespace synth_test;

TEST(Limiter, NothingPassesTheCeilingWhateverComesIn) {
    Limiter limiter(-1.0, 0.005, 0.08, kRate);
    const float ceiling = static_cast<float>(std::pow(10.0, -1.0 / 20.0));
    AudioBuffer audio;
    std::vector<float>&left = audio.left, &right = audio.right;
    for (size_t i = 0; i < 88000; ++i) {
        // A loud sine with sudden spikes, different on each side; from half way, a high sine
        // whose crests fall between the samples.
        left.push_back(static_cast<float>(3.0 * std::sin(2.0 * kPi * 110.0 * i / kRate)));
        right.push_back(i % 20000 == 0 ? 20.0f
                        : i < 44000    ? 0.2f
                                    : static_cast<float>(2.0 * std::sin(kPi * (i / 2.0 + 0.25))));
    }
    for (size_t start = 0; start < left.size(); start += 1000)
        limiter.process(left.data() + start, right.data() + start, 1000);
    for (size_t i = 0; i < left.size(); ++i) {
        ASSERT_LE(std::fabs(left[i]), ceiling) << i;
        ASSERT_LE(std::fabs(right[i]), ceiling) << i;
    }
    EXPECT_LE(LoudnessMeter(audio).truePeak(0, audio.frames()), -1.0 + 0.02) << "between too";
    EXPECT_GT(settledPeak(left), 0.8 * ceiling) << "loud material is held near the ceiling";
}

TEST(Limiter, QuietMaterialPassesUntouchedButLate) {
    Limiter limiter(-1.0, 0.005, 0.08, kRate);
    std::vector<float> left(4000), right(4000);
    for (size_t i = 0; i < left.size(); ++i)
        left[i] = right[i] = static_cast<float>(0.5 * std::sin(0.01 * i));
    const std::vector<float> original = left;
    limiter.process(left.data(), right.data(), static_cast<int>(left.size()));
    const size_t late = static_cast<size_t>(limiter.latency());
    EXPECT_EQ(late, 221u + 7u) << "5 ms, and the samples the true-peak interpolation reads ahead";
    for (size_t i = late; i < left.size(); ++i)
        ASSERT_FLOAT_EQ(left[i], original[i - late]);
}

TEST(Compressor, ReducesLevelsAboveTheThresholdByTheRatio) {
    Compressor compressor(-20.0, 4.0, 0.001, 0.05, 0.0, kRate);
    auto settledDb = [&](double amplitude) {
        std::vector<float> left(44100), right(44100);
        for (size_t i = 0; i < left.size(); ++i)
            left[i] = right[i] =
                static_cast<float>(amplitude * std::sin(2.0 * kPi * 500.0 * i / kRate));
        compressor.process(left.data(), right.data(), static_cast<int>(left.size()));
        return toDb(settledPeak(left));
    };
    EXPECT_NEAR(settledDb(0.01), -40.0, 0.1) << "far below the threshold nothing changes";
    EXPECT_NEAR(settledDb(1.0), -15.0, 1.0) << "20 dB over at 4:1 leaves 5 dB over";
}

TEST(StereoDelay, EchoesOnTheBeatFractionAndAlternatesSides) {
    ParamSet params(delayParams());
    params.set("beats", 0.5);
    params.set("feedback", 0.5);
    params.set("volume", 0.0);
    params.set("lowcut", 20.0);
    params.set("damping", 20000.0);
    StereoDelay delay(params, 0.5, kRate);
    const size_t length = 44100;
    std::vector<float> inLeft(length, 0.0f), inRight(length, 0.0f), outLeft(length, 0.0f),
        outRight(length, 0.0f);
    inLeft[0] = inRight[0] = 1.0f;
    delay.process(inLeft.data(), inRight.data(), outLeft.data(), outRight.data(), length);
    const auto loudest = [](const std::vector<float>& v, size_t from, size_t to) {
        return static_cast<size_t>(
            std::max_element(v.begin() + from, v.begin() + to,
                             [](float a, float b) { return std::fabs(a) < std::fabs(b); }) -
            v.begin());
    };
    // A quarter-second delay: 11025 frames, first on the left, then the right.
    EXPECT_NEAR(static_cast<double>(loudest(outLeft, 0, 15000)), 11025.0, 3.0);
    EXPECT_NEAR(static_cast<double>(loudest(outRight, 15000, 30000)), 22050.0, 3.0);
    EXPECT_LT(std::fabs(outRight[loudest(outRight, 15000, 30000)]),
              std::fabs(outLeft[loudest(outLeft, 0, 15000)]));
}

TEST(Reverb, TailDecaysAtTheRequestedTime) {
    ParamSet params(reverbParams());
    params.set("decay", 2.0);
    params.set("damping", 20000.0);
    params.set("lowcut", 20.0);
    Reverb reverb(params, kRate);
    const size_t length = 3 * 44100;
    std::vector<float> inLeft(length, 0.0f), inRight(length, 0.0f), outLeft(length, 0.0f),
        outRight(length, 0.0f);
    for (size_t i = 0; i < 441; ++i)
        inLeft[i] = inRight[i] = 0.5f;
    reverb.process(inLeft.data(), inRight.data(), outLeft.data(), outRight.data(), length);
    auto energyDb = [&](double from, double to) {
        double sum = 0.0;
        for (size_t i = static_cast<size_t>(from * kRate); i < static_cast<size_t>(to * kRate); ++i)
            sum += outLeft[i] * outLeft[i] + outRight[i] * outRight[i];
        return 10.0 * std::log10(sum);
    };
    // 60 dB in 2 s is 30 dB per second.
    const double drop = energyDb(0.3, 0.5) - energyDb(1.3, 1.5);
    EXPECT_NEAR(drop, 30.0, 5.0);
    double correlation = 0.0, power = 0.0;
    for (size_t i = 4410; i < length; ++i) {
        correlation += outLeft[i] * outRight[i];
        power += outLeft[i] * outLeft[i];
    }
    EXPECT_LT(std::fabs(correlation / power), 0.3) << "the two sides differ: a wide tail";
}

TEST(Chorus, KeepsLevelAndSpreadsTheSides) {
    Chorus chorus(0.5, kRate);
    std::vector<float> left(44100), right(44100);
    for (size_t i = 0; i < left.size(); ++i)
        left[i] = right[i] = static_cast<float>(0.5 * std::sin(2.0 * kPi * 300.0 * i / kRate));
    chorus.process(left.data(), right.data(), static_cast<int>(left.size()));
    EXPECT_NEAR(settledPeak(left), 0.5, 0.2);
    bool sidesDiffer = false;
    for (size_t i = 22050; i < left.size(); ++i)
        sidesDiffer |= std::fabs(left[i] - right[i]) > 0.01f;
    EXPECT_TRUE(sidesDiffer);
}
