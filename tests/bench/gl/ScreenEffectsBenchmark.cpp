// One frame of each screen effect with the production's shaders and pictures, with the
// framebuffer sizes of a quality level (the argument): the glow, the radial blur (thirty
// zoom passes, the heaviest pass of the production), and the post-processing and credits
// into a 640 x 360 target. Every figure ends with glFinish, so the software renderer's
// deferred work is counted.
#include "BenchResources.h"
#include "BrinovaResources.h"
#include "CreditsEffect.h"
#include "FBO.h"
#include "GlowEffect.h"
#include "PostProcessEffect.h"
#include "RadialBlurEffect.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

const int SCREEN_WIDTH = 640;
const int SCREEN_HEIGHT = 360;

// Draws the effect frame after frame into target, as the frame loop would.
void drawFrames(benchmark::State& state, BenchResources& resources, Effect& effect, FBO* target) {
    if (!resources.error().empty()) {
        state.SkipWithError(resources.error().c_str());
        return;
    }
    effect.draw(0, 16, target);
    glFinish();
    for (auto _ : state) {
        effect.draw(0, 16, target);
        glFinish();
    }
}

BrinovaResources::ScreenBufferSizes sizesOf(const benchmark::State& state) {
    return BrinovaResources::screenBufferSizes(static_cast<int>(state.range(0)), SCREEN_WIDTH);
}

void GlowFrame(benchmark::State& state) {
    const BrinovaResources::ScreenBufferSizes size = sizesOf(state);
    BenchResources r;
    GlowEffect glow;
    glow.source = r.framebuffer(size.main, size.main);
    glow.horizontal = r.framebuffer(size.half, size.half);
    glow.blurred = r.framebuffer(size.half, size.half);
    glow.blurXShader = r.shader("Gaussian_x");
    glow.blurYShader = r.shader("Gaussian_y");
    glow.screenShader = r.shader("Screen");
    glow.kernel = r.picture("Kernel.png");
    r.set(glow.pre_brightness, 1.0f);
    r.set(glow.pre_contrast, 1.8f);
    r.set(glow.post_brightness, 1.1f);
    r.set(glow.post_contrast, 1.0f);
    r.set(glow.blur_radius, 2.0f);
    r.set(glow.kernel_amp, 1.0f);
    drawFrames(state, r, glow, r.framebuffer(size.main, size.main));
}
BENCHMARK(GlowFrame)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void RadialBlurFrame(benchmark::State& state) {
    const BrinovaResources::ScreenBufferSizes size = sizesOf(state);
    BenchResources r;
    RadialBlurEffect radial;
    radial.source = r.framebuffer(size.main, size.main);
    radial.scene = r.framebuffer(size.main, size.main);
    radial.accumulator = r.framebuffer(size.half, size.half);
    radial.work = r.framebuffer(size.half, size.half);
    radial.zoomBlendShader = r.shader("ZoomBlend");
    radial.screenShader = r.shader("Screen");
    r.set(radial.num_passes, 30.0f);
    r.set(radial.multiply, 0.95f);
    radial.init();
    drawFrames(state, r, radial, r.framebuffer(size.main, size.main));
}
BENCHMARK(RadialBlurFrame)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void PostProcessFrame(benchmark::State& state) {
    const BrinovaResources::ScreenBufferSizes size = sizesOf(state);
    BenchResources r;
    PostProcessEffect post;
    post.source = r.framebuffer(size.main, size.main);
    post.shader = r.shader("PostProcess");
    post.noiseTexture = r.picture("Noise.png");
    post.overlayTexture = r.picture("FrameOverlay.png");
    post.thresholdTexture = r.picture("Threshold.png", GL_TEXTURE_1D);
    for (TrackInterpolate** track :
         {&post.brightness, &post.contrast, &post.fade_r, &post.fade_g, &post.fade_b}) {
        r.set(*track, 1.0f);
    }
    r.set(post.negative, 0.0f);
    r.set(post.fade, 0.0f);
    r.set(post.noise_strength, 0.06f);
    r.set(post.vignett_radius, 0.45f);
    post.init();
    drawFrames(state, r, post, r.framebuffer(SCREEN_WIDTH, SCREEN_HEIGHT));
}
BENCHMARK(PostProcessFrame)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void CreditsFrame(benchmark::State& state) {
    const BrinovaResources::ScreenBufferSizes size = sizesOf(state);
    BenchResources r;
    CreditsEffect credits;
    const char* files[CreditsEffect::PICTURE_COUNT] = {
        "Vask.png", "Lumo.png", "Orin.png", "Quillet.png", "KorvathLogo.png", "BrinovaLogo.png"};
    for (int i = 0; i < CreditsEffect::PICTURE_COUNT; ++i) {
        credits.pictures[i] = r.picture(files[i]);
    }
    credits.shader = r.shader("ScreenOpacity");
    credits.background = r.framebuffer(size.main, size.main);
    credits.offscreen = r.framebuffer(size.main, size.main);
    r.set(credits.index, 1.0f);
    r.set(credits.xpos, 0.0f);
    r.set(credits.ypos, 0.0f);
    r.set(credits.scale, 1.4f);
    r.set(credits.alpha, 1.0f);
    credits.init();
    drawFrames(state, r, credits, r.framebuffer(size.main, size.main));
}
BENCHMARK(CreditsFrame)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace
