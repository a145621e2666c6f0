#include "BrinovaResources.h"

#include "CameraLensEffect.h"
#include "CreditsEffect.h"
#include "FBO.h"
#include "GlowEffect.h"
#include "KVTDemosys.h"
#include "PostProcessEffect.h"
#include "RadialBlurEffect.h"
#include "UnderwaterEffect.h"
#include "ScreenMetrics.h"

#include <GL/glew.h>

namespace {

struct Picture {
    const char* key;
    const char* file;
};

// Two-dimensional pictures without mipmaps; the ocean surface and the tone curve differ.
const Picture Pictures[] = {
    {"wave_normals0", "Waves1Normals.png"},
    {"wave_normals1", "Waves2Normals.png"},
    {"wave_normals2", "Waves3Normals.png"},
    {"overlay", "FrameOverlay.png"},
    {"color_noise", "Noise.png"},
    {"gaussian_kernel", "Kernel.png"},
    {"particle", "light.png"},
    {"particle2", "Particle.png"},
    {"puff_particle", "Puff.png"},
    {"u_source", "Velocities.png"},
    {"v_source", "Velocities2.png"},
    {"u_source2", "Velocities3.png"},
    {"v_source2", "Velocities4.png"},
    {"u_source3", "Velocities5.png"},
    {"v_source3", "Velocities6.png"},
    {"vask", "Vask.png"},
    {"lumo", "Lumo.png"},
    {"orin", "Orin.png"},
    {"quillet", "Quillet.png"},
    {"korvathlogo", "KorvathLogo.png"},
    {"brinovalogo", "BrinovaLogo.png"},
    {"vask_small", "VaskSmall.png"},
    {"lumo_small", "LumoSmall.png"},
    {"orin_small", "OrinSmall.png"},
    {"quillet_small", "QuilletSmall.png"},
    {"korvathlogo_small", "KorvathLogoSmall.png"},
    {"brinovalogo_small", "BrinovaLogoSmall.png"},
};

struct ShaderFile {
    const char* key;
    const char* file;
};

// In the order they are loaded.
const ShaderFile Shaders[] = {
    {"standard_light", "standard_light"},
    {"point_light", "point_light"},
    {"laplace", "Laplacian"},
    {"dilate", "Dilate"},
    {"waves", "Waves"},
    {"b_n_c_shader", "BrightnessContrast"},
    {"blur_x", "Gaussian_x"},
    {"blur_y", "Gaussian_y"},
    {"copy", "Copy"},
    {"screen", "Screen"},
    {"screen_opacity", "ScreenOpacity"},
    {"post_process_shader", "PostProcess"},
    {"particlesprite_shader", "particlesprite"},
    {"zoom_blend", "ZoomBlend"},
};

FBO* screenBuffer(int side, bool depth) {
    return new FBO(side, side, depth, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
}

} // namespace

BrinovaResources::ScreenBufferSizes BrinovaResources::screenBufferSizes(int quality,
                                                                        int screenWidth) {
    switch (quality) {
    case 0:
        return {256, 128};
    case 1:
        return {512, 256};
    case 2:
        return {1024, 512};
    default:
        return {screenWidth, 1024};
    }
}

void BrinovaResources::DefineDemoParameters(ScreenMetrics* metrics) {
    metrics->setNear(1.0f);
    metrics->setFar(200.0f);
    KVTDemosys::DemoStartTime.setTimeAsString("00:00:00");
    KVTDemosys::DemoEndTime.setTimeAsString("02:30:850");
}

void BrinovaResources::DefineResouces() {
    SetMusic("brinova_final_c.mp3");
    defineTextures();
    defineShaders();
    // Every effect draws through framebuffers; the fluid simulates in float R and RGB ones.
    RequireExtension("GL_EXT_framebuffer_object");
    RequireExtension("GL_ARB_texture_float");
    RequireExtension("GL_ARB_texture_rg");
    defineScreenFramebuffers();
}

void BrinovaResources::defineTextures() {
    AddTexture({"ocean_surface_texture", "OceanSurface.png", GL_TEXTURE_2D, true});
    for (const Picture& picture : Pictures) {
        AddTexture({picture.key, picture.file, GL_TEXTURE_2D, false});
    }
    AddTexture({"threshold", "Threshold.png", GL_TEXTURE_1D, true});
}

void BrinovaResources::defineShaders() {
    for (const ShaderFile& shader : Shaders) {
        AddShader({shader.key, shader.file, {}});
    }
}

void BrinovaResources::defineScreenFramebuffers() {
    const ScreenMetrics* metrics = KVTDemosys::screenMetrics;
    const ScreenBufferSizes size = screenBufferSizes(metrics->getQuality(), metrics->getWidth());
    AddFBO("offscreen0", screenBuffer(size.main, true));
    AddFBO("offscreen1", screenBuffer(size.main, true));
    AddFBO("staging0", screenBuffer(size.main, true));
    AddFBO("staging1", screenBuffer(size.main, true));
    AddFBO("glow_pre", screenBuffer(size.main, false));
    AddFBO("blur_pre", screenBuffer(size.half, false));
    AddFBO("blurx", screenBuffer(size.half, false));
    AddFBO("blury", screenBuffer(size.half, false));
}

void BrinovaResources::DefineEffects() {
    AddEffect("UnderwaterEffect", new UnderwaterEffect);
    AddEffect("PostProcessEffect", new PostProcessEffect);
    AddEffect("GlowEffect", new GlowEffect);
    AddEffect("CameraLensEffect", new CameraLensEffect);
    AddEffect("CreditsEffect", new CreditsEffect);
    AddEffect("RadialBlurEffect", new RadialBlurEffect);
}

void BrinovaResources::DefineEffectInstances() {
    defineUnderwaterInstance();
    defineScreenEffectInstances();
}

void BrinovaResources::defineUnderwaterInstance() {
    auto* underwater = static_cast<UnderwaterEffect*>(
        CreateEffectInstance("UnderwaterEffect", "underwater_effect", true));
    underwater->floorShader = GetShader("point_light");
    underwater->laplaceShader = GetShader("laplace");
    underwater->dilateShader = GetShader("dilate");
    underwater->wavesShader = GetShader("waves");
    underwater->spriteShader = GetShader("particlesprite_shader");
    underwater->sceneTarget = GetFBO("offscreen0");
    underwater->filterTarget = GetFBO("offscreen1");
    underwater->oceanSurfaceTexture = GetTexture("ocean_surface_texture");
    underwater->waveNormals0 = GetTexture("wave_normals0");
    underwater->waveNormals1 = GetTexture("wave_normals1");
    underwater->waveNormals2 = GetTexture("wave_normals2");
    underwater->particleTexture = GetTexture("particle");
    underwater->debrisTexture = GetTexture("puff_particle");
}

void BrinovaResources::defineScreenEffectInstances() {
    auto* post = static_cast<PostProcessEffect*>(
        CreateEffectInstance("PostProcessEffect", "postprocess_effect", true));
    post->overlayTexture = GetTexture("overlay");
    post->noiseTexture = GetTexture("color_noise");
    post->thresholdTexture = GetTexture("threshold");
    post->shader = GetShader("post_process_shader");
    post->source = GetFBO("staging0");

    auto* glow = static_cast<GlowEffect*>(CreateEffectInstance("GlowEffect", "glow_effect", true));
    glow->blurred = GetFBO("blur_pre");
    glow->blurX = GetFBO("blurx");
    glow->horizontal = GetFBO("blury");
    glow->source = GetFBO("glow_pre");
    glow->blurXShader = GetShader("blur_x");
    glow->blurYShader = GetShader("blur_y");
    glow->screenShader = GetShader("screen");
    glow->brightnessContrastShader = GetShader("b_n_c_shader");
    glow->kernel = GetTexture("gaussian_kernel");

    CreateEffectInstance("CameraLensEffect", "camera", true);

    auto* credits =
        static_cast<CreditsEffect*>(CreateEffectInstance("CreditsEffect", "credits_effect", true));
    const char* names[CreditsEffect::PICTURE_COUNT] = {"vask",    "lumo",        "orin",
                                                       "quillet", "korvathlogo", "brinovalogo"};
    for (int i = 0; i < CreditsEffect::PICTURE_COUNT; ++i) {
        credits->pictures[i] = GetTexture(names[i]);
    }
    credits->shader = GetShader("screen_opacity");
    credits->background = GetFBO("staging0");
    credits->offscreen = GetFBO("staging1");

    auto* radial = static_cast<RadialBlurEffect*>(
        CreateEffectInstance("RadialBlurEffect", "radial_blur_effect", true));
    radial->source = GetFBO("staging0");
    radial->scene = GetFBO("offscreen0");
    radial->accumulator = GetFBO("blurx");
    radial->work = GetFBO("blury");
    radial->zoomBlendShader = GetShader("zoom_blend");
    radial->screenShader = GetShader("screen");
}
