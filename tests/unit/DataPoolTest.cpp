#include "Animation.h"
#include "Binary.h"
#include "DataAnimationPool.h"
#include "DataBinaryPool.h"
#include "DataEffectPool.h"
#include "Effect.h"

#include <gtest/gtest.h>

namespace {

// Counts its destructions, so a test sees what a pool deleted.
class CountedEffect : public Effect {
public:
    explicit CountedEffect(int* deaths) : deaths(deaths) {}
    ~CountedEffect() override { ++*deaths; }

private:
    int* deaths;
};

} // namespace

TEST(DataBinaryPool, ReportsWithItsCountLabelAndWalksInKeyOrder) {
    testing::internal::CaptureStdout();
    {
        DataBinaryPool pool;
        pool.addData("zz", new Binary({1, 2, 3}));
        pool.addData("aa", new Binary({4}));
        EXPECT_EQ(pool.getData(0)->size(), 1);
        EXPECT_EQ(pool.getData("zz")->size(), 3);
        EXPECT_EQ(pool.getData("none"), nullptr);
        EXPECT_EQ(pool.toString(), "DataBinaryPool {\n    num3dObjects = 2\n"
                                   "    aa = Binary { size = 1 }\n"
                                   "    zz = Binary { size = 3 }\n}\n");
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Dispose binaryPool]\n");
}

TEST(DataAnimationPool, ReportsEachAnimationOnItsOwnLine) {
    testing::internal::CaptureStdout();
    {
        DataAnimationPool pool;
        pool.addAnimation("path", new Animation);
        EXPECT_TRUE(pool.exist("path"));
        EXPECT_EQ(pool.toString(), "AnimationPool {\n    path = Animation { keyframes = 0\n}\n");
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Dispose animationPool]\n");
}

TEST(DataEffectPool, RemovingAKeyKeepsTheEffectOwnedUntilThePoolGoes) {
    int deaths = 0;
    testing::internal::CaptureStdout();
    {
        DataEffectPool pool;
        pool.addEffect("glow", new CountedEffect(&deaths));
        pool.addEffect("blur", new CountedEffect(&deaths));
        pool.addEffect("blur2", pool.getEffect("blur")); // one effect under two names
        EXPECT_EQ(pool.getKey(0), "blur");
        pool.removeEffect("glow");
        EXPECT_FALSE(pool.exist("glow"));
        EXPECT_EQ(pool.toString(), "EffectPool {\n    blur = Effect\n    blur2 = Effect\n}\n");
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Dispose effectPool]\n");
}
