// The two particle creatures (the jellyfish and the siphonophore) drawn with the production's
// sprite shader and picture into a small square framebuffer, as the production's are, and
// read back. Renders are left in /tmp as creatures_*.png to look at.
#include "FBO.h"
#include "GLTestSupport.h"
#include "ParticleCreatures2Effect.h"
#include "ParticleCreaturesEffect.h"
#include "ProductionFiles.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <GL/glew.h>

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using allocationcount::allocations;
using allocationcount::counting;

namespace {

using Picture = std::vector<unsigned char>;

const int SIZE = 192;
const unsigned int FRAME_MS = 40;
// A pixel is lit when a channel is above this.
const int LIT = 8;
// The part of the light left outside each side of a creature's box.
const double TRIM = 0.02;

// Where the light is: the box that holds all but TRIM of it at each side (pixels, y from
// the bottom; the faint tips of tentacles come and go across any threshold, so a plain
// box of lit pixels would jitter), the centre of the light and its sum, and the number of
// lit pixels.
struct Extent {
    int left = SIZE, bottom = SIZE, right = -1, top = -1;
    int lit = 0;
    double centreX = 0, centreY = 0, brightness = 0;

    int width() const { return right - left + 1; }
    int height() const { return top - bottom + 1; }
    double middleX() const { return 0.5 * (left + right); }
    double middleY() const { return 0.5 * (bottom + top); }
};

// The first and last places where the running sum of `light` passes TRIM of its total.
void trimmedRange(const std::vector<double>& light, double total, int& first, int& last) {
    double sum = 0;
    first = -1;
    for (int i = 0; i < SIZE; ++i) {
        sum += light[i];
        if (first < 0 && sum > TRIM * total) {
            first = i;
        }
        if (sum >= (1.0 - TRIM) * total) {
            last = i;
            return;
        }
    }
}

Extent extentOf(const Picture& picture) {
    Extent e;
    std::vector<double> columns(SIZE), rows(SIZE);
    for (int y = 0; y < SIZE; ++y) {
        for (int x = 0; x < SIZE; ++x) {
            const unsigned char* p = &picture[(static_cast<std::size_t>(y) * SIZE + x) * 4];
            const int light = p[0] + p[1] + p[2];
            columns[x] += light;
            rows[y] += light;
            e.brightness += light;
            e.centreX += static_cast<double>(light) * x;
            e.centreY += static_cast<double>(light) * y;
            e.lit += std::max({p[0], p[1], p[2]}) > LIT;
        }
    }
    if (e.brightness > 0) {
        e.centreX /= e.brightness;
        e.centreY /= e.brightness;
        trimmedRange(columns, e.brightness, e.left, e.right);
        trimmedRange(rows, e.brightness, e.bottom, e.top);
    }
    return e;
}

int differingPixels(const Picture& a, const Picture& b) {
    int differing = 0;
    for (std::size_t i = 0; i < a.size(); i += 4) {
        differing += a[i] != b[i] || a[i + 1] != b[i + 1] || a[i + 2] != b[i + 2];
    }
    return differing;
}

// A linear track through (seconds, value) keys.
std::unique_ptr<TrackInterpolate> ramp(std::initializer_list<std::pair<float, float>> keys) {
    auto track = std::make_unique<TrackInterpolate>("value");
    for (const auto& [seconds, value] : keys) {
        track->addKeyframe(new TrackKeyFrameInterpolate(static_cast<unsigned int>(seconds * 20.0f),
                                                        TrackInterpolate::LINEAR, value));
    }
    return track;
}

// Both creatures share these tests; each has a size that keeps it well inside the picture.
template <class Creature> struct Shape;
template <> struct Shape<ParticleCreaturesEffect> {
    static constexpr float size = 0.15f;
    static constexpr float count = 1.0f;
    static constexpr const char* name = "jellyfish";
};
template <> struct Shape<ParticleCreatures2Effect> {
    static constexpr float size = 0.4f;
    static constexpr float count = 20.0f;
    static constexpr const char* name = "siphonophore";
};

template <class Creature> class Creatures : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(SIZE, SIZE);
        shader = gltest::productionShader("particlesprite");
        sprite = gltest::productionPicture("Particle.png", GL_TEXTURE_2D, false);
        ASSERT_TRUE(shader && sprite);
        target = gltest::rgbaTarget(SIZE, SIZE);
        prepare(effect);
        place(Shape<Creature>::count, 0.0f, 0.0f, Shape<Creature>::size, 0.0f);
    }

    void TearDown() override { gltest::resetState(SIZE, SIZE); }

    void prepare(Creature& creature) {
        creature.shader = shader.get();
        creature.sprite = sprite.get();
        creature.init();
        if constexpr (std::is_same_v<Creature, ParticleCreatures2Effect>) {
            tracks.set(creature.spread, 0.0f);
        }
    }

    void place(float count, float x, float y, float size, float pulse) {
        tracks.set(effect.count, count);
        tracks.set(effect.x, x);
        tracks.set(effect.y, y);
        tracks.set(effect.size, size);
        tracks.set(effect.pulse, pulse);
    }

    // The target cleared, then the creature drawn at that time, read back.
    Picture render(unsigned int time, Creature& creature) {
        glClearColor(0, 0, 0, 0);
        FBO::clearNow(target.get());
        creature.draw(time, FRAME_MS, target.get());
        FBO::bind(target.get());
        return gltest::readRgba(0, 0, SIZE, SIZE);
    }
    Picture render(unsigned int time) { return render(time, effect); }

    // Opaque, as the glow reads it: the sprites' own alpha would hide them in a viewer.
    void save(const std::string& what, Picture picture) {
        for (std::size_t i = 3; i < picture.size(); i += 4) {
            picture[i] = 255;
        }
        gltest::savePng("/tmp/creatures_" + std::string(Shape<Creature>::name) + "_" + what +
                            ".png",
                        SIZE, SIZE, picture);
    }

    std::unique_ptr<Shader> shader;
    std::unique_ptr<Texture> sprite;
    std::unique_ptr<FBO> target;
    gltest::TrackValues tracks;
    Creature effect;
};

using BothCreatures = testing::Types<ParticleCreaturesEffect, ParticleCreatures2Effect>;
TYPED_TEST_SUITE(Creatures, BothCreatures);

TYPED_TEST(Creatures, TheSameTimeDrawsTheSamePictureWhateverCameBefore) {
    const Picture first = this->render(5000);
    this->save("5s", first);
    EXPECT_GT(extentOf(first).lit, 100);
    for (unsigned int time : {0u, 12345u, 4960u, 90000u}) {
        this->render(time);
    }
    EXPECT_EQ(this->render(5000), first);

    TypeParam fresh;
    this->prepare(fresh);
    fresh.count = this->effect.count;
    fresh.x = this->effect.x;
    fresh.y = this->effect.y;
    fresh.size = this->effect.size;
    fresh.pulse = this->effect.pulse;
    EXPECT_EQ(this->render(5000, fresh), first) << "a new instance seeking straight there";
}

TYPED_TEST(Creatures, CountOrSizeZeroDrawsNothing) {
    this->place(0.0f, 0.0f, 0.0f, Shape<TypeParam>::size, 0.0f);
    EXPECT_EQ(extentOf(this->render(3000)).brightness, 0.0);
    EXPECT_EQ(this->effect.getSpriteCount(), 0);
    this->place(Shape<TypeParam>::count, 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(extentOf(this->render(3000)).brightness, 0.0);
}

TYPED_TEST(Creatures, TheLitRegionFollowsThePositionTracks) {
    // Moving by 0.4 of the half-width or half-height moves 0.4 of half the picture (the
    // parts nearer the camera a little more, the further ones a little less).
    const double shift = 0.4 * SIZE / 2;
    const double slack = 0.08 * shift;
    const float size = Shape<TypeParam>::size;
    const float count = Shape<TypeParam>::count;
    this->place(count, -0.2f, 0.0f, size, 0.0f);
    const Extent left = extentOf(this->render(3000));
    this->place(count, 0.2f, 0.0f, size, 0.0f);
    const Extent right = extentOf(this->render(3000));
    this->place(count, 0.0f, -0.2f, size, 0.0f);
    const Extent low = extentOf(this->render(3000));
    this->place(count, 0.0f, 0.2f, size, 0.0f);
    const Picture highPicture = this->render(3000);
    const Extent high = extentOf(highPicture);
    this->save("moved_up", highPicture);

    EXPECT_NEAR(right.middleX() - left.middleX(), shift, slack);
    EXPECT_NEAR(right.middleY(), left.middleY(), 1.0);
    EXPECT_NEAR(high.middleY() - low.middleY(), shift, slack);
    EXPECT_NEAR(high.middleX(), low.middleX(), 1.0);
}

TYPED_TEST(Creatures, TheLitRegionGrowsWithTheSizeTrack) {
    const float size = Shape<TypeParam>::size;
    this->place(Shape<TypeParam>::count, 0.0f, 0.0f, size, 0.0f);
    const Extent small = extentOf(this->render(3000));
    this->place(Shape<TypeParam>::count, 0.0f, 0.0f, 2.0f * size, 0.0f);
    const Picture largePicture = this->render(3000);
    const Extent large = extentOf(largePicture);
    this->save("large", largePicture);

    EXPECT_NEAR(static_cast<double>(large.width()) / small.width(), 2.0, 0.2);
    EXPECT_NEAR(static_cast<double>(large.height()) / small.height(), 2.0, 0.2);
    EXPECT_GT(large.lit, 2 * small.lit);
}

TYPED_TEST(Creatures, DrawingAFrameAllocatesNothing) {
    this->place(Shape<TypeParam>::count, 0.1f, 0.0f, Shape<TypeParam>::size, 0.3f);
    this->effect.draw(1000, FRAME_MS, this->target.get());
    allocations = 0;
    counting = true;
    for (unsigned int time = 1040; time < 1400; time += FRAME_MS) {
        this->effect.draw(time, FRAME_MS, this->target.get());
    }
    counting = false;
    EXPECT_EQ(allocations.load(), 0);

    counting = true;
    auto probe = std::make_unique<int>(1);
    counting = false;
    EXPECT_EQ(allocations.load(), 1) << "the counter must see allocations when they happen";
}

TYPED_TEST(Creatures, DrawBindsAndFlagsTheTargetAndRestoresTheState) {
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-2, 2, -1, 1, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(0.25f, 0.5f, 0.0f);
    float projection[16], modelView[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView);

    FBO::bind(nullptr);
    this->effect.draw(2000, FRAME_MS, this->target.get());

    EXPECT_EQ(FBO::currentFBO, FBO::getID(this->target.get()));
    EXPECT_TRUE(FBO::hasClearFlag(this->target.get()));
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    float projectionAfter[16], modelViewAfter[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projectionAfter);
    glGetFloatv(GL_MODELVIEW_MATRIX, modelViewAfter);
    EXPECT_TRUE(std::equal(projection, projection + 16, projectionAfter));
    EXPECT_TRUE(std::equal(modelView, modelView + 16, modelViewAfter));
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// Two seconds at 25 frames a second with every track moving as in the break (a pulse every
// two seconds): from frame to frame the centre of the light and its sum change only a
// little. A jump (a phase that wraps, a part that appears at once) would show as a step.
TYPED_TEST(Creatures, MovesSmoothlyFromFrameToFrame) {
    std::vector<std::unique_ptr<TrackInterpolate>> moving;
    const auto use = [&moving](TrackInterpolate*& slot, std::unique_ptr<TrackInterpolate> track) {
        moving.push_back(std::move(track));
        slot = moving.back().get();
    };
    const float count = Shape<TypeParam>::count;
    use(this->effect.count, ramp({{0.0f, 0.0f}, {2.0f, count}}));
    use(this->effect.x, ramp({{0.0f, -0.3f}, {3.0f, 0.0f}}));
    use(this->effect.y, ramp({{0.0f, 0.1f}, {3.0f, -0.1f}}));
    use(this->effect.size, ramp({{0.0f, Shape<TypeParam>::size}}));
    use(this->effect.pulse, ramp({{0.0f, 0.0f}, {3.0f, 1.5f}}));

    std::vector<Extent> frames;
    for (unsigned int time = 1000; time <= 3000; time += FRAME_MS) {
        const Picture picture = this->render(time);
        frames.push_back(extentOf(picture));
        if (time % 400 == 0) {
            this->save("frame_" + std::to_string(time), picture);
        }
    }
    double brightest = 0;
    for (const Extent& frame : frames) {
        brightest = std::max(brightest, frame.brightness);
    }
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const Extent& before = frames[i - 1];
        const Extent& now = frames[i];
        EXPECT_LT(std::hypot(now.centreX - before.centreX, now.centreY - before.centreY), 2.0)
            << "frame " << i;
        EXPECT_LT(std::abs(now.brightness - before.brightness), 0.08 * brightest) << "frame " << i;
    }
}

// ---------------------------------------------------------------- the jellyfish

using Jellyfish = Creatures<ParticleCreaturesEffect>;

TEST_F(Jellyfish, EachUnitOfCountAddsOneJellyfish) {
    place(1.0f, 0.0f, 0.0f, 0.2f, 0.0f);
    const Extent one = extentOf(render(3000));
    const int spritesOfOne = effect.getSpriteCount();
    place(2.0f, 0.0f, 0.0f, 0.2f, 0.0f);
    render(3000);
    EXPECT_EQ(effect.getSpriteCount(), 2 * spritesOfOne);
    place(2.5f, 0.0f, 0.0f, 0.2f, 0.0f);
    const Picture threePicture = render(3000);
    const Extent three = extentOf(threePicture);
    save("three", threePicture);
    EXPECT_EQ(effect.getSpriteCount(), 3 * spritesOfOne) << "the third fades in";
    EXPECT_GT(three.lit, one.lit + one.lit / 2);
    EXPECT_GT(three.width(), one.width());
}

// A contraction pushes the bell up its axis and changes its shape; a whole pulse later
// the leader is exactly as it was.
TEST_F(Jellyfish, APulseContractsAndPushesTheBellAndComesBack) {
    place(1.0f, 0.0f, 0.0f, 0.2f, 0.0f);
    const Picture rest = render(3000);
    const Extent atRest = extentOf(rest);
    place(1.0f, 0.0f, 0.0f, 0.2f, 0.25f);
    const Picture contracted = render(3000);
    save("contracted", contracted);
    EXPECT_GE(extentOf(contracted).top, atRest.top + 3);
    EXPECT_GT(differingPixels(rest, contracted), 300);

    place(1.0f, 0.0f, 0.0f, 0.2f, 1.0f);
    EXPECT_EQ(render(3000), rest);
}

// ---------------------------------------------------------------- the siphonophore

using Siphonophore = Creatures<ParticleCreatures2Effect>;

TEST_F(Siphonophore, EachUnitOfCountAddsOneBodyToTheChain) {
    std::vector<int> sprites;
    std::vector<int> lit;
    for (float count : {1.0f, 2.0f, 3.0f, 12.0f}) {
        place(count, 0.0f, 0.0f, 0.4f, 0.0f);
        lit.push_back(extentOf(render(3000)).lit);
        sprites.push_back(effect.getSpriteCount());
    }
    const int perBody = sprites[1] - sprites[0];
    EXPECT_GT(perBody, 0);
    EXPECT_EQ(sprites[2] - sprites[1], perBody);
    EXPECT_EQ(sprites[3] - sprites[2], 9 * perBody);
    EXPECT_GT(lit[3], lit[0] * 2) << "a longer chain covers more of the picture";
}

// On the beat the bells contract and a wave of light runs down the chain (half a pulse
// later it has lit the front half); a whole pulse later it is as it was.
TEST_F(Siphonophore, APulseBrightensTheChainAndComesBack) {
    place(20.0f, 0.0f, 0.0f, 0.4f, 0.0f);
    const Picture rest = render(3000);
    place(20.0f, 0.0f, 0.0f, 0.4f, 0.5f);
    const Picture beat = render(3000);
    save("beat", beat);
    EXPECT_GT(extentOf(beat).brightness, 1.3 * extentOf(rest).brightness);
    place(20.0f, 0.0f, 0.0f, 0.4f, 1.0f);
    EXPECT_EQ(render(3000), rest);
}

TEST_F(Siphonophore, SpreadScattersTheColony) {
    place(20.0f, 0.0f, 0.0f, 0.4f, 0.0f);
    const Extent together = extentOf(render(3000));
    tracks.set(effect.spread, 1.0f);
    const Picture apartPicture = render(3000);
    const Extent apart = extentOf(apartPicture);
    save("spread", apartPicture);
    EXPECT_GT(apart.width() * apart.height(), 3 * together.width() * together.height() / 2);
}

} // namespace
