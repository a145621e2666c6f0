// The production's screen effects drawn with their real shaders into small framebuffers and
// read back: post-processing, glow, radial blur, credits and the camera lens.
#include "CameraLensEffect.h"
#include "CreditsEffect.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "GlowEffect.h"
#include "KVTDemosys.h"
#include "PostProcessEffect.h"
#include "ProductionFiles.h"
#include "RadialBlurEffect.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackGroup.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using gltest::pixelAt;
using gltest::Rgba;

namespace {

const int SIZE = 64;

class ScreenEffects : public testing::Test {
protected:
    void SetUp() override { gltest::resetState(SIZE, SIZE); }
    void TearDown() override {
        FBO::bind(nullptr);
        gltest::resetState(SIZE, SIZE);
    }

    // Fills a framebuffer with black and then the given rectangles of colour, in pixels.
    struct Box {
        int x, y, width, height;
        float r, g, b;
    };
    static void paint(FBO* fbo, std::initializer_list<Box> boxes) {
        glClearColor(0, 0, 0, 0);
        FBO::clearNow(fbo);
        glEnable(GL_SCISSOR_TEST);
        for (const Box& box : boxes) {
            glScissor(box.x, box.y, box.width, box.height);
            glClearColor(box.r, box.g, box.b, 1);
            glClear(GL_COLOR_BUFFER_BIT);
        }
        glDisable(GL_SCISSOR_TEST);
        glClearColor(0, 0, 0, 0);
    }

    static std::vector<unsigned char> readBack(FBO* fbo) {
        FBO::bind(fbo);
        return gltest::readRgba(0, 0, FBO::getWidth(fbo), FBO::getHeight(fbo));
    }

    gltest::TrackValues tracks;
};

int channel(const std::vector<unsigned char>& rgba, int width, int x, int y, int c) {
    return rgba[(static_cast<std::size_t>(y) * width + x) * 4 + c];
}

// ---------------------------------------------------------------- post-processing

class PostProcessing : public ScreenEffects {
protected:
    void SetUp() override {
        ScreenEffects::SetUp();
        shader = gltest::productionShader("PostProcess");
        noise = gltest::productionPicture("Noise.png", GL_TEXTURE_2D, false);
        overlay = gltest::productionPicture("FrameOverlay.png", GL_TEXTURE_2D, false);
        threshold = gltest::productionPicture("Threshold.png", GL_TEXTURE_1D, true);
        ASSERT_TRUE(shader && noise && overlay && threshold);
        source = gltest::rgbaTarget(SIZE, SIZE);
        target = gltest::rgbaTarget(SIZE, SIZE);
        effect.shader = shader.get();
        effect.noiseTexture = noise.get();
        effect.overlayTexture = overlay.get();
        effect.thresholdTexture = threshold.get();
        effect.source = source.get();
        effect.init();
        setLook(1, 1, 0, 0, 0, 1.5f);
        tracks.set(effect.fade_r, 0.2f);
        tracks.set(effect.fade_g, 0.4f);
        tracks.set(effect.fade_b, 0.6f);
    }

    void setLook(float brightness, float contrast, float negative, float fade, float noise,
                 float vignette) {
        tracks.set(effect.brightness, brightness);
        tracks.set(effect.contrast, contrast);
        tracks.set(effect.negative, negative);
        tracks.set(effect.fade, fade);
        tracks.set(effect.noise_strength, noise);
        tracks.set(effect.vignett_radius, vignette);
    }

    // Four colour quadrants and a grey ramp along the bottom: dark, mid and bright values.
    void paintTestPicture() {
        paint(source.get(), {{0, 0, 32, 32, 0.1f, 0.2f, 0.3f},
                             {32, 0, 32, 32, 0.8f, 0.5f, 0.2f},
                             {0, 32, 32, 32, 0.5f, 0.5f, 0.5f},
                             {32, 32, 32, 32, 0.05f, 0.6f, 0.9f}});
    }

    std::unique_ptr<Shader> shader;
    std::unique_ptr<Texture> noise, overlay, threshold;
    std::unique_ptr<FBO> source, target;
    PostProcessEffect effect;
};

TEST_F(PostProcessing, AccumulatorsAdvanceByTheFrameTimeAfterEachFrame) {
    effect.draw(0, 0, target.get());
    EXPECT_FLOAT_EQ(effect.gradientScroll[0], 0.5f);
    EXPECT_FLOAT_EQ(effect.gradientScroll[1], -0.125f);
    EXPECT_FLOAT_EQ(effect.noiseOffset, 0.0f);
    for (unsigned int frameTime : {16u, 17u, 300u, 667u}) {
        effect.draw(0, frameTime, target.get());
    }
    EXPECT_NEAR(effect.gradientScroll[0], 0.55f, 1e-6);
    EXPECT_NEAR(effect.gradientScroll[1], -0.175f, 1e-6);
    EXPECT_NEAR(effect.noiseOffset, 0.25f, 1e-6);
}

// Neutral tracks: the picture comes through within 2 of 255 (the gradient's faint tint)
// inside the overlay's darkened frame, which takes the outer eighth of each side.
TEST_F(PostProcessing, NeutralTracksLeaveThePictureAsItIs) {
    paintTestPicture();
    const std::vector<unsigned char> before = readBack(source.get());
    glEnable(GL_DEPTH_TEST);
    effect.draw(0, 16, target.get());
    const std::vector<unsigned char> after = readBack(target.get());
    int worst = 0;
    for (int y = 12; y < SIZE - 12; ++y) {
        for (int x = 12; x < SIZE - 12; ++x) {
            for (int c = 0; c < 3; ++c) {
                worst = std::max(worst, std::abs(channel(after, SIZE, x, y, c) -
                                                 channel(before, SIZE, x, y, c)));
            }
        }
    }
    EXPECT_LE(worst, 2);
}

TEST_F(PostProcessing, FadeOneGivesTheFadeColourAndContrastGradesTheTones) {
    paintTestPicture();
    setLook(1, 1, 0, 1, 0.2f, 0.2f);
    effect.draw(0, 16, target.get());
    FBO::bind(target.get());
    EXPECT_EQ(pixelAt(16, 16), (Rgba{51, 102, 153, 255}));
    EXPECT_EQ(pixelAt(48, 48), (Rgba{51, 102, 153, 255}));

    // Contrast above 1 is the tone curve: darks go darker, brights brighter, shadows lift
    // towards blue.
    setLook(1, 1.5f, 0, 0, 0, 1.5f);
    effect.draw(0, 16, target.get());
    FBO::bind(target.get());
    const Rgba orange = pixelAt(48, 16);
    EXPECT_GT(orange.r, 204 + 5);
    const Rgba dark = pixelAt(16, 16);
    EXPECT_LT(dark.r, 25);
    EXPECT_GT(dark.b, 77 + 3);
}

TEST_F(PostProcessing, OverlayIsDrawnOverBlackAndStateIsRestored) {
    paintTestPicture();
    setLook(0, 0, 0, 0, 0, 0);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    effect.draw(0, 16, target.get());
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));

    const std::vector<unsigned char> picture = readBack(target.get());
    int framePixels = 0;
    int litInside = 0;
    for (int y = 0; y < SIZE; ++y) {
        for (int x = 0; x < SIZE; ++x) {
            const bool lit = channel(picture, SIZE, x, y, 2) > 0;
            const bool border = x < 12 || y < 12 || x >= SIZE - 12 || y >= SIZE - 12;
            framePixels += lit && border;
            litInside += lit && !border;
        }
    }
    EXPECT_GT(framePixels, 20) << "the frame overlay is drawn with every track at 0";
    EXPECT_EQ(litInside, 0) << "its clear middle leaves the black picture alone";
}

// ---------------------------------------------------------------- glow

class Glow : public ScreenEffects {
protected:
    void SetUp() override {
        ScreenEffects::SetUp();
        blurX = gltest::productionShader("Gaussian_x");
        blurY = gltest::productionShader("Gaussian_y");
        screen = gltest::productionShader("Screen");
        kernel = gltest::productionPicture("Kernel.png", GL_TEXTURE_2D, false);
        ASSERT_TRUE(blurX && blurY && screen && kernel);
        effect.blurXShader = blurX.get();
        effect.blurYShader = blurY.get();
        effect.screenShader = screen.get();
        effect.kernel = kernel.get();
        tracks.set(effect.pre_brightness, 1);
        tracks.set(effect.pre_contrast, 1);
        tracks.set(effect.post_brightness, 1);
        tracks.set(effect.post_contrast, 1);
        tracks.set(effect.kernel_amp, 5);
    }

    // A glow over framebuffers of one size, with a white 1-texel dot in the middle.
    void drawDot(int size, float radius) {
        source = gltest::rgbaTarget(size, size);
        horizontal = gltest::rgbaTarget(size, size);
        blurred = gltest::rgbaTarget(size, size);
        target = gltest::rgbaTarget(size, size);
        effect.source = source.get();
        effect.horizontal = horizontal.get();
        effect.blurred = blurred.get();
        paint(source.get(), {{size / 2, size / 2, 1, 1, 1, 1, 1}});
        tracks.set(effect.blur_radius, radius);
        effect.draw(0, 16, target.get());
    }

    // Red along the dot's row of a framebuffer, from the dot outwards to the right.
    std::vector<int> rowProfile(FBO* fbo) {
        const int size = FBO::getWidth(fbo);
        const std::vector<unsigned char> picture = readBack(fbo);
        std::vector<int> profile;
        for (int x = size / 2; x < size; ++x) {
            profile.push_back(channel(picture, size, x, size / 2, 0));
        }
        return profile;
    }

    static int reach(const std::vector<int>& profile) {
        int last = 0;
        for (int i = 0; i < static_cast<int>(profile.size()); ++i) {
            last = profile[i] > 0 ? i : last;
        }
        return last;
    }

    std::unique_ptr<Shader> blurX, blurY, screen;
    std::unique_ptr<Texture> kernel;
    std::unique_ptr<FBO> source, horizontal, blurred, target;
    GlowEffect effect;
};

TEST_F(Glow, ADotSpreadsIntoASymmetricBlobShapedByTheKernel) {
    drawDot(SIZE, 1.0f);
    const std::vector<unsigned char> blur = readBack(blurred.get());
    const int c = SIZE / 2;
    for (int k = 1; k <= 8; ++k) {
        EXPECT_NEAR(channel(blur, SIZE, c + k, c, 0), channel(blur, SIZE, c - k, c, 0), 1) << k;
        EXPECT_NEAR(channel(blur, SIZE, c, c + k, 0), channel(blur, SIZE, c, c - k, 0), 1) << k;
        EXPECT_NEAR(channel(blur, SIZE, c + k, c, 0), channel(blur, SIZE, c, c + k, 0), 1) << k;
    }
    // Along a row through the dot the blur falls as the kernel picture does, scaled by
    // the centre's weight: the bell read from its file at each tap's distance.
    std::vector<unsigned char> weights(256 * 4);
    kernel->bind();
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, weights.data());
    kernel->release();
    auto weight = [&](int k) { return weights[std::size_t((k + 0.5) / 9.0 * 256) * 4]; };
    const int centre = channel(blur, SIZE, c, c, 0);
    ASSERT_GT(centre, 100);
    for (int k = 1; k <= 8; ++k) {
        EXPECT_NEAR(channel(blur, SIZE, c + k, c, 0), centre * weight(k) / weight(0), 4) << k;
    }
    EXPECT_EQ(channel(blur, SIZE, c + 9, c, 0), 0) << "eight taps each side, one texel apart";

    FBO::bind(target.get());
    EXPECT_EQ(pixelAt(c, c), (Rgba{255, 255, 255, 255})) << "the sharp dot shows through";
    EXPECT_EQ(pixelAt(c + 3, c).r, channel(blur, SIZE, c + 3, c, 0));
}

TEST_F(Glow, StepFollowsTheRadiusAndTheRealFramebufferWidth) {
    drawDot(SIZE, 1.0f);
    const int narrow = reach(rowProfile(horizontal.get()));
    drawDot(SIZE, 2.0f);
    const int wide = reach(rowProfile(horizontal.get()));
    EXPECT_EQ(narrow, 8);
    EXPECT_EQ(wide, 16);
    // Twice the width: the step is still one texel per unit of radius.
    drawDot(2 * SIZE, 2.0f);
    EXPECT_EQ(reach(rowProfile(horizontal.get())), 16);
}

// ---------------------------------------------------------------- radial blur

class RadialBlur : public ScreenEffects {
protected:
    void SetUp() override {
        ScreenEffects::SetUp();
        zoomBlend = gltest::productionShader("ZoomBlend");
        screen = gltest::productionShader("Screen");
        ASSERT_TRUE(zoomBlend && screen);
        for (auto* fbo : {&source, &scene, &accumulator, &work, &target}) {
            *fbo = gltest::rgbaTarget(SIZE, SIZE);
        }
        effect.zoomBlendShader = zoomBlend.get();
        effect.screenShader = screen.get();
        effect.source = source.get();
        effect.scene = scene.get();
        effect.accumulator = accumulator.get();
        effect.work = work.get();
        effect.init();
        tracks.set(effect.multiply, 1.0f);
    }

    struct Centroid {
        double x, y, weight;
    };
    // The brightness-weighted centre of the smeared picture, without the dot itself: a 2x2
    // dot whose centre is the corner (dotX, dotY), so the middle one sits on the zoom centre.
    Centroid smearOf(int dotX, int dotY, float passes) {
        paint(source.get(), {{dotX - 1, dotY - 1, 2, 2, 1, 1, 1}});
        tracks.set(effect.num_passes, passes);
        effect.draw(0, 16, target.get());
        const std::vector<unsigned char> picture = readBack(work.get());
        Centroid c{0, 0, 0};
        for (int y = 0; y < SIZE; ++y) {
            for (int x = 0; x < SIZE; ++x) {
                const bool dot = (x == dotX - 1 || x == dotX) && (y == dotY - 1 || y == dotY);
                const double v = dot ? 0 : channel(picture, SIZE, x, y, 0);
                c.x += v * (x + 0.5);
                c.y += v * (y + 0.5);
                c.weight += v;
            }
        }
        c.x /= c.weight;
        c.y /= c.weight;
        return c;
    }

    std::unique_ptr<Shader> zoomBlend, screen;
    std::unique_ptr<FBO> source, scene, accumulator, work, target;
    RadialBlurEffect effect;
};

TEST_F(RadialBlur, ThirtyPassesWhateverTheTrackSays) {
    tracks.set(effect.num_passes, 10.0f);
    effect.draw(0, 16, target.get());
    EXPECT_NEAR(effect.zoom, 1.0f + 30 * 0.033333335f, 1e-5);
    EXPECT_NEAR(effect.alpha, -2.0f, 1e-5) << "the weight went below zero after the tenth pass";
    tracks.set(effect.num_passes, 30.0f);
    effect.draw(0, 16, target.get());
    EXPECT_NEAR(effect.alpha, 0.0f, 1e-5);
}

TEST_F(RadialBlur, DotsSmearOutwardsAlongTheirRay) {
    const Centroid centred = smearOf(SIZE / 2, SIZE / 2, 30);
    EXPECT_NEAR(centred.x, SIZE / 2, 0.1);
    EXPECT_NEAR(centred.y, SIZE / 2, 0.1);

    const int dotX = SIZE / 2 + 12;
    const Centroid aside = smearOf(dotX, SIZE / 2, 30);
    EXPECT_NEAR(aside.y, SIZE / 2, 0.1) << "stays on its ray";
    EXPECT_GT(aside.x, dotX + 2.0) << "and reaches outwards";

    // A weight that falls three times as fast leaves the later, larger copies out.
    const Centroid shortSmear = smearOf(dotX, SIZE / 2, 10);
    EXPECT_LT(shortSmear.x, aside.x - 1.0);
    EXPECT_LT(shortSmear.weight, aside.weight);

    FBO::bind(target.get());
    EXPECT_EQ(pixelAt(dotX, SIZE / 2), (Rgba{255, 255, 255, 255})) << "over the sharp scene";
}

// ---------------------------------------------------------------- credits

class Credits : public ScreenEffects {
protected:
    static constexpr int W = 80;

    void SetUp() override {
        ScreenEffects::SetUp();
        shader = gltest::productionShader("ScreenOpacity");
        ASSERT_TRUE(shader);
        background = gltest::rgbaTarget(W, W);
        offscreen = gltest::rgbaTarget(W, W);
        target = gltest::rgbaTarget(W, W);
        paint(background.get(), {{0, 0, W, W, 0, 0, 0.25f}});
        for (int i = 0; i < CreditsEffect::PICTURE_COUNT; ++i) {
            std::vector<unsigned char> texels;
            for (int t = 0; t < 4; ++t) {
                for (int c : {colours[i].r, colours[i].g, colours[i].b, 255}) {
                    texels.push_back(static_cast<unsigned char>(c));
                }
            }
            pictures[i] =
                std::make_unique<Texture>(2, 2, GL_TEXTURE_2D, GL_RGBA, GL_RGBA, texels.data());
            effect.pictures[i] = pictures[i].get();
        }
        effect.shader = shader.get();
        effect.background = background.get();
        effect.offscreen = offscreen.get();
        effect.init();
        place(0, 0, 1, 1);
    }

    void place(float index, float x, float y, float scale) {
        tracks.set(effect.index, index);
        tracks.set(effect.xpos, x);
        tracks.set(effect.ypos, y);
        tracks.set(effect.scale, scale);
        tracks.set(effect.alpha, 1);
    }

    Rgba drawnAt(int x, int y) {
        effect.draw(0, 16, target.get());
        FBO::bind(target.get());
        return pixelAt(x, y);
    }

    // The picture laid over the dark blue background with the screen blend.
    static Rgba over(Rgba c) { return Rgba{c.r, c.g, 255 - (255 - c.b) * 191 / 255, 255}; }

    const Rgba colours[CreditsEffect::PICTURE_COUNT] = {{200, 0, 0, 255},   {0, 200, 0, 255},
                                                        {0, 0, 200, 255},   {200, 200, 0, 255},
                                                        {0, 200, 200, 255}, {200, 0, 200, 255}};
    std::unique_ptr<Shader> shader;
    std::unique_ptr<Texture> pictures[CreditsEffect::PICTURE_COUNT];
    std::unique_ptr<FBO> background, offscreen, target;
    CreditsEffect effect;
};

TEST_F(Credits, EachIndexShowsItsPictureAndOthersNone) {
    for (int i = 0; i < CreditsEffect::PICTURE_COUNT; ++i) {
        place(static_cast<float>(i), 0, 0, 1);
        const Rgba seen = drawnAt(W / 2, W / 2);
        const Rgba expected = over(colours[i]);
        EXPECT_NEAR(seen.r, expected.r, 2) << i;
        EXPECT_NEAR(seen.g, expected.g, 2) << i;
        EXPECT_NEAR(seen.b, expected.b, 2) << i;
    }
    // Between two pictures nothing is bound to the picture's unit: the background alone.
    place(2.5f, 0, 0, 1);
    EXPECT_EQ(drawnAt(W / 2, W / 2), (Rgba{0, 0, 64, 255}));
}

TEST_F(Credits, PositionAndScalePlaceThePicture) {
    // Half the screen wide, a tenth high (five times the horizontal scale), centred at
    // three quarters across: columns 40 to 79, rows 36 to 43.
    place(0, 0.5f, 0, 2);
    const Rgba inside = drawnAt(60, 40);
    EXPECT_NEAR(inside.r, 200, 2);
    const Rgba background{0, 0, 64, 255};
    EXPECT_EQ(drawnAt(20, 40), background);
    EXPECT_EQ(drawnAt(60, 50), background);
    EXPECT_EQ(drawnAt(60, 30), background);
    EXPECT_NEAR(drawnAt(42, 38).r, 200, 2);
    EXPECT_NEAR(drawnAt(77, 42).r, 200, 2);
}

// ---------------------------------------------------------------- camera lens

// Writes down the camera and field of view it finds when it draws.
class CameraProbe : public Effect {
public:
    void draw(unsigned int, unsigned int, FBO*) override {
        seenPosition = KVTDemosys::camera.getPosition();
        seenHeading = KVTDemosys::camera.getHeading();
        seenFov = KVTDemosys::screenMetrics->getFov();
    }
    Vector<float, 3> seenPosition;
    float seenHeading = 0;
    float seenFov = 0;
};

TrackGroup* activeGroup(const std::string& name, int priority, Effect* effect) {
    auto* startStop = new TrackStartStop(priority);
    startStop->insertInterval(new TrackStartStopKeyFrame(0, TrackKeyFrame::START),
                              new TrackStartStopKeyFrame(100, TrackKeyFrame::STOP));
    auto* group = new TrackGroup(name);
    group->setStartStopTrack(startStop);
    group->effect = effect;
    return group;
}

TEST(CameraLens, EffectsDrawnEarlierAlreadySeeTheNewCamera) {
    CameraLensEffect lens;
    gltest::TrackValues values;
    values.set(lens.fov, 70);
    values.set(lens.head, 30);
    values.set(lens.pitch, -10);
    values.set(lens.x, 1);
    values.set(lens.y, 2);
    values.set(lens.z, 3);
    CameraProbe probe;
    TrackSystem system;
    system.addTrackGroup(activeGroup("probe", 1, &probe));
    system.addTrackGroup(activeGroup("camera", 5, &lens));
    system.createPrioritySystem();
    const float fovBefore = KVTDemosys::screenMetrics->getFov();

    system.processSystem(1000, 20, 16);
    EXPECT_FLOAT_EQ(probe.seenFov, 70);
    EXPECT_FLOAT_EQ(probe.seenHeading, 30);
    EXPECT_FLOAT_EQ(KVTDemosys::camera.getPitch(), -10);
    EXPECT_FLOAT_EQ(probe.seenPosition[0], 1);
    EXPECT_FLOAT_EQ(probe.seenPosition[1], 2);
    EXPECT_FLOAT_EQ(probe.seenPosition[2], 3);
    KVTDemosys::screenMetrics->setFov(fovBefore);
    KVTDemosys::camera.reset();
}

} // namespace
