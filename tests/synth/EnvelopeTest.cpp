#include "Envelope.h"
#include "SignalHelpers.h"

#include <gtest/gtest.h>

using namespace synth;
using namespace synth_test;

namespace {

Envelope make(double attack, double decay, double sustain, double release) {
    Envelope envelope;
    envelope.setSampleRate(kRate);
    envelope.set(attack, decay, sustain, release);
    return envelope;
}

// Samples until the envelope first reaches `level` (from below when rising, above when falling).
int samplesUntil(Envelope& envelope, double level, bool rising, int limit = 1000000) {
    for (int n = 1; n <= limit; ++n) {
        const double value = envelope.next();
        if (rising ? value >= level : value <= level)
            return n;
    }
    return -1;
}

} // namespace

TEST(Envelope, EachSegmentTakesExactlyItsTime) {
    Envelope envelope = make(0.1, 0.2, 0.5, 0.3);
    envelope.noteOn();
    EXPECT_EQ(samplesUntil(envelope, 1.0, true), 4410);
    EXPECT_EQ(envelope.stage(), Envelope::Stage::Decay);
    EXPECT_EQ(samplesUntil(envelope, 0.5, false), 8820);
    EXPECT_EQ(envelope.stage(), Envelope::Stage::Sustain);
    for (int i = 0; i < 1000; ++i)
        ASSERT_DOUBLE_EQ(envelope.next(), 0.5);
    envelope.noteOff();
    EXPECT_EQ(samplesUntil(envelope, 0.0, false), 13230);
    EXPECT_FALSE(envelope.active());
    EXPECT_EQ(envelope.next(), 0.0);
}

TEST(Envelope, DecayAndReleaseFallFasterAtFirst) {
    Envelope envelope = make(0.001, 1.0, 0.0, 0.1);
    envelope.noteOn();
    samplesUntil(envelope, 1.0, true);
    double halfway = 0.0;
    for (int i = 0; i < 22050; ++i)
        halfway = envelope.next();
    EXPECT_LT(halfway, 0.2) << "an exponential fall is far below the straight line's 0.5";
    EXPECT_GT(halfway, 0.0);
}

TEST(Envelope, ZeroTimesStillRampInsteadOfClicking) {
    Envelope envelope = make(0.0, 0.0, 1.0, 0.0);
    envelope.noteOn();
    EXPECT_LT(envelope.next(), 0.05);
    samplesUntil(envelope, 1.0, true);
    envelope.noteOff();
    EXPECT_GT(envelope.next(), 0.9);
    EXPECT_GT(samplesUntil(envelope, 0.0, false), 100);
}

TEST(Envelope, RetriggerAndEarlyReleaseStartFromThePresentLevel) {
    Envelope envelope = make(0.05, 0.1, 0.6, 0.2);
    envelope.noteOn();
    for (int i = 0; i < 1000; ++i)
        envelope.next();
    const double before = envelope.level();
    envelope.noteOff();
    EXPECT_NEAR(envelope.next(), before, 0.01);
    for (int i = 0; i < 1000; ++i)
        envelope.next();
    const double released = envelope.level();
    envelope.noteOn();
    EXPECT_NEAR(envelope.next(), released, 0.01);
    EXPECT_EQ(samplesUntil(envelope, 1.0, true), 2204) << "the attack keeps its full length";
}

TEST(Envelope, SilentOnceSustainingAtZero) {
    Envelope envelope = make(0.001, 0.01, 0.0, 1.0);
    envelope.noteOn();
    EXPECT_FALSE(envelope.silent());
    for (int i = 0; i < 1000; ++i)
        envelope.next();
    EXPECT_TRUE(envelope.active());
    EXPECT_TRUE(envelope.silent());
}
